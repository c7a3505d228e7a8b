#include "loading/loading.h"
#include "loading/sparePicture.h"
#include "paramStore/arithmParamMgr.h"
#include "pictureSupport.h"

#include <QSet>
#include <QtTest>

#include <algorithm>
#include <cstdint>
#include <thread>
#include <vector>

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

    /// What is kept now and after one picture more: the record's buffer and the spare one take turns.
    static std::vector<std::size_t> keptOfBothBuffers(ArithmParamMgr& store, const QString& path, bool grey)
    {
        const std::size_t one = SparePicture::keptBytes(grey);
        load(store, path, grey, 1);
        return {one, SparePicture::keptBytes(grey)};
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

    static void addKinds()
    {
        QTest::addColumn<bool>("grey");
        QTest::newRow("colour") << false;
        QTest::newRow("grey") << true;
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
        std::size_t leastKept = SIZE_MAX;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, large, false, 2);
            for (int i = 0; i < 200; ++i) {
                load(store, i % 2 ? large : small, false, 1);
                buffers.insert(store.findParamDIB(1)->getDIB());
                leastKept = std::min(leastKept, SparePicture::keptBytes(false));
            }
        });
        QCOMPARE(buffers.size(), 2);
        QVERIFY2(leastKept >= 3000 * 1000, "one of the two buffers was let go and made again");
    }

    void nothingIsKeptBeforeTheFirstPicture_data() { addKinds(); }
    void nothingIsKeptBeforeTheFirstPicture()
    {
        QFETCH(bool, grey);
        std::size_t kept = 1;
        onThreadOfItsOwn([&](ArithmParamMgr&) { kept = SparePicture::keptBytes(grey); });
        QCOMPARE(kept, std::size_t{0});
    }

    void oneHugePictureIsLetGoAfterManySmallOnes_data() { addKinds(); }

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

    void onlyWhatIsMoreThanTwiceTheLastPicturesIsLetGo_data() { addKinds(); }
    void onlyWhatIsMoreThanTwiceTheLastPicturesIsLetGo()
    {
        QFETCH(bool, grey);
        const QString large = write("a.bmp", 1000, 1000);
        const QString half = write("b.bmp", 800, 800);   // 0.64 of its pixels
        const QString third = write("c.bmp", 650, 650);  // 0.42
        std::vector<std::size_t> keptOfHalf;
        std::vector<std::size_t> keptOfThird;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, large, grey, 2);
            load(store, half, grey, 3 * SparePicture::LookEvery);
            keptOfHalf = keptOfBothBuffers(store, half, grey);
            load(store, third, grey, 3 * SparePicture::LookEvery);
            keptOfThird = keptOfBothBuffers(store, third, grey);
        });
        const std::size_t bytes = grey ? 1000 * 1000 : 3000 * 1000;
        QVERIFY(keptOfHalf[0] >= bytes && keptOfHalf[1] >= bytes);
        QVERIFY(keptOfThird[0] < bytes && keptOfThird[1] < bytes);
    }

    void fewBytesAreAlwaysKept_data() { addKinds(); }
    void fewBytesAreAlwaysKept()
    {
        QFETCH(bool, grey);
        const QString small = write("a.bmp", 100, 100);
        const QString pixel = write("b.bmp", 1, 1);
        std::vector<std::size_t> kept;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, small, grey, 2);
            load(store, pixel, grey, 3 * SparePicture::LookEvery);
            kept = keptOfBothBuffers(store, pixel, grey);
        });
        const std::size_t bytes = grey ? 100 * 100 : 300 * 100;
        QVERIFY(kept[0] >= bytes && kept[1] >= bytes);
    }

    void memoryOfARecordThatIsEmptyAtTheMomentCounts_data() { addKinds(); }
    void memoryOfARecordThatIsEmptyAtTheMomentCounts()
    {
        QFETCH(bool, grey);
        const QString large = write("a.bmp", 1000, 1000);
        const QString small = write("b.bmp", 100, 100);
        std::size_t kept = 0;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, large, grey, 1);
            if (grey)
                store.findParamGray8(1)->resize(0, 0);
            else
                store.findParamDIB(1)->resize(0, 0);
            load(store, small, grey, 1);
            kept = SparePicture::keptBytes(grey);
        });
        QVERIFY(kept >= (grey ? 1000000U : 3000000U));
    }

    void pictureOfTheOtherKindIsLetGo()
    {
        const QString large = write("a.bmp", 2000, 1000);
        std::size_t before = 0;
        std::size_t after = 0;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, large, false, 3);
            before = SparePicture::keptBytes(false);
            load(store, large, true, 2 * SparePicture::LookEvery);
            after = SparePicture::keptBytes(false);
        });
        QVERIFY(before >= 6000000);
        QCOMPARE(after, std::size_t{0});
    }

    void absurdPictureIsNeverKept()
    {
        const QString path = write("a.bmp", 4722, 4800);  // 68 million bytes as colour, just above the limit
        std::size_t kept = 1;
        std::size_t keptGrey = 0;
        onThreadOfItsOwn([&](ArithmParamMgr& store) {
            load(store, path, false, 2);
            kept = SparePicture::keptBytes(false);
            load(store, path, true, 2);
            keptGrey = SparePicture::keptBytes(true);
        });
        QCOMPARE(kept, std::size_t{0});
        QVERIFY(keptGrey >= 4722 * 4800);
    }

    void absurdPictureThatIsCutShortIsNotKeptEither()
    {
        const QString path = m_cFolder.path("a.png");
        QImage picture(6000, 4000, QImage::Format_Grayscale8);
        picture.fill(90);
        QVERIFY(picture.save(path, nullptr, 100));  // quick, as nothing is compressed
        QVERIFY(QFile::resize(path, 1000));
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
