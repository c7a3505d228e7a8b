#include "loading/loading.h"
#include "loading/sparePicture.h"
#include "paramStore/arithmParamMgr.h"
#include "pictureSupport.h"

#include <QSet>
#include <QtTest>

#include <thread>

using namespace PictureSupport;

/// What a thread that loads pictures keeps for the next ones. Each test has a thread of its own, with nothing kept yet.
class TestSparePicture : public QObject
{
    Q_OBJECT

    Folder m_cFolder;

    QString write(const char* name, int width, int height)
    {
        const QString path = m_cFolder.path(name);
        QImage picture(width, height, QImage::Format_RGB888);
        picture.fill(Qt::red);
        if (!picture.save(path))
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    /// Loads a file some times into record 1 of a store.
    static void load(ArithmParamMgr& store, const QString& path, bool grey, int times)
    {
        QByteArray option = QStringLiteral("<FilePath>%1</FilePath><BeGray>%2</BeGray><PicID>1</PicID>")
                                .arg(path)
                                .arg(grey ? 1 : 0)
                                .toUtf8();
        for (int i = 0; i < times; ++i)
            Loading::execute(option.data(), &store);
    }

    template <typename Test>
    static void onThreadOfItsOwn(Test test)
    {
        std::thread thread([&] {
            const Store store = makeStore();
            test(*store);
        });
        thread.join();
    }

private Q_SLOTS:
    void equalPicturesUseTwoBuffersInTurn()
    {
        const QString path = write("a.bmp", 1000, 1000);
        QSet<const void*> buffers;
        std::size_t kept = 0;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            for (int i = 0; i < 200; ++i) {
                load(store, path, false, 1);
                buffers.insert(store.findParamDIB(1)->getDIB());
            }
            kept = SparePicture::keptBytes(false);
        });
        QCOMPARE(buffers.size(), 2);
        QVERIFY(kept >= 3000 * 1000 && kept < 4 * MiB);
    }

    void picturesOfTwoSizesInTurnAllocateNothing()
    {
        const QString large = write("a.bmp", 1000, 1000);
        const QString small = write("b.bmp", 100, 100);
        QSet<const void*> buffers;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, large, false, 2);
            for (int i = 0; i < 200; ++i) {
                load(store, i % 2 ? large : small, false, 1);
                buffers.insert(store.findParamDIB(1)->getDIB());
            }
        });
        QCOMPARE(buffers.size(), 2);
    }

    void oneHugePictureIsLetGoAfterManySmallOnes_data()
    {
        QTest::addColumn<bool>("grey");
        QTest::newRow("colour") << false;
        QTest::newRow("grey") << true;
    }

    void oneHugePictureIsLetGoAfterManySmallOnes()
    {
        QFETCH(bool, grey);
        const QString huge = write("a.bmp", 4000, 2000);
        const QString small = write("b.bmp", 100, 100);
        std::size_t before = 0;
        std::size_t evenAfter = 0;
        std::size_t oddAfter = 0;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, huge, grey, 3);
            before = SparePicture::keptBytes(grey);
            load(store, small, grey, 3 * SparePicture::LookEvery + 1);
            evenAfter = SparePicture::keptBytes(grey);
            load(store, small, grey, 1);
            oddAfter = SparePicture::keptBytes(grey);
        });
        QVERIFY(before >= (grey ? 8000000U : 24000000U));
        QVERIFY2(evenAfter < MiB && oddAfter < MiB, "one of the two buffers is still the large one");
    }

    void pictureOfTheOtherKindIsLetGo()
    {
        const QString large = write("a.bmp", 4000, 1000);
        std::size_t before = 0;
        std::size_t after = 0;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, large, false, 3);
            before = SparePicture::keptBytes(false);
            load(store, large, true, 2 * SparePicture::LookEvery);
            after = SparePicture::keptBytes(false);
        });
        QVERIFY(before >= 12000000);
        QCOMPARE(after, std::size_t{0});
    }

    void absurdPictureIsNeverKept()
    {
        const QString path = write("a.bmp", 6000, 4000);  // 72 million bytes as colour
        std::size_t kept = 1;
        std::size_t keptGrey = 0;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, path, false, 3);
            kept = SparePicture::keptBytes(false);
            load(store, path, true, 3);
            keptGrey = SparePicture::keptBytes(true);
        });
        QCOMPARE(kept, std::size_t{0});
        QVERIFY(keptGrey >= 24000000);
    }

    void absurdPictureThatIsCutShortIsNotKeptEither()
    {
        const QString path = write("a.png", 6000, 4000);
        QFile file(path);
        QVERIFY(file.resize(file.size() - 40));
        std::size_t kept = 1;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, path, false, 1);
            kept = SparePicture::keptBytes(false);
        });
        QCOMPARE(kept, std::size_t{0});
    }
};

QTEST_GUILESS_MAIN(TestSparePicture)
#include "testSparePicture.moc"
