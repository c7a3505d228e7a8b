#include "directSupport.h"
#include "loading/loading.h"

#include <QtTest>

using namespace DirectSupport;
using namespace PictureSupport;

namespace {

/// The rows of a bitmap from the top, its height negative.
QByteArray topDown(QByteArray bitmap, int height)
{
    put32(bitmap, 22, static_cast<quint32>(-height));
    return bitmap;
}

}  // namespace

class TestDirectReader : public QObject
{
    Q_OBJECT

    Folder m_cFolder;

    void compare(const QString& path, QSize size)
    {
        for (const bool grey : {false, true}) {
            const QByteArray pixels = direct(path, grey, size);
            QVERIFY2(!pixels.isEmpty(), qPrintable(path));
            QVERIFY2(pixels == byQt(path, grey), qPrintable(path));
        }
    }

private Q_SLOTS:
    void plainFilesGiveWhatQtGives_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<int>("format");
        QTest::newRow("bitmap, 24 bits") << "bmp" << int{QImage::Format_RGB888};
        QTest::newRow("bitmap, 8 bits") << "bmp" << int{QImage::Format_Indexed8};
        QTest::newRow("jpeg, colour") << "jpg" << int{QImage::Format_RGB888};
        QTest::newRow("jpeg, grey") << "jpeg" << int{QImage::Format_Grayscale8};
        QTest::newRow("png, colour") << "png" << int{QImage::Format_RGB888};
        QTest::newRow("png, with opacity") << "PNG" << int{QImage::Format_ARGB32};
        QTest::newRow("png, grey") << "png" << int{QImage::Format_Grayscale8};
        QTest::newRow("png, palette") << "png" << int{QImage::Format_Indexed8};
    }

    void plainFilesGiveWhatQtGives()
    {
        QFETCH(QString, suffix);
        QFETCH(int, format);
        for (const QSize& size : {QSize(1, 1), QSize(3, 2), QSize(4, 5), QSize(15, 3), QSize(16, 16), QSize(17, 9),
                                  QSize(33, 31), QSize(641, 207)}) {
            const QImage picture = mixedPicture(static_cast<QImage::Format>(format), size.width(), size.height());
            compare(m_cFolder.save(picture, "plain." + suffix), size);
            if (QTest::currentTestFailed())
                return;
        }
    }

    void jpegOfEveryQualityGivesWhatQtGives()
    {
        // Low qualities halve the colours, the highest do not.
        const QImage picture = mixedPicture(QImage::Format_RGB888, 101, 67);
        for (const int quality : {0, 10, 50, 75, 90, 95, 100}) {
            QVERIFY(picture.save(m_cFolder.path("q.jpg"), "jpg", quality));
            compare(m_cFolder.path("q.jpg"), picture.size());
        }
    }

    void bitmapFromTheTopGivesWhatQtGives()
    {
        const QImage picture = mixedPicture(QImage::Format_RGB888, 7, 5);
        const QByteArray bytes = bytesOf(m_cFolder.save(picture, "up.bmp"));
        compare(m_cFolder.write(topDown(bytes, 5), "down.bmp"), picture.size());
    }

    void orientationInAJpegIsIgnored()
    {
        QByteArray bytes = bytesOf(m_cFolder.save(mixedPicture(QImage::Format_RGB888, 21, 13), "turn.jpg"));
        bytes.insert(2, QByteArray::fromHex("ffe10022457869660000"
                                            "4d4d002a00000008000101120003000000010006000000000000"));
        compare(m_cFolder.write(bytes, "turn.jpg"), QSize(21, 13));
    }

    void unusualOrDamagedFilesAreLeftToQt_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("suffix");
        const Folder folder;
        const QImage picture = mixedPicture(QImage::Format_RGB888, 40, 30);
        const QByteArray bmp = bytesOf(folder.save(picture, "a.bmp"));
        const QByteArray jpg = bytesOf(folder.save(picture, "a.jpg"));
        const QByteArray png = bytesOf(folder.save(picture, "a.png"));
        QTest::newRow("empty") << QByteArray() << "png";
        QTest::newRow("text") << QByteArray("no picture at all") << "jpg";
        QTest::newRow("other suffix") << png << "bmp";
        QTest::newRow("unknown suffix") << bmp << "tif";
        QTest::newRow("png of unknown suffix") << png << "tif";
        QTest::newRow("bitmap without its end") << bmp.left(bmp.size() - 1) << "bmp";
        QTest::newRow("bitmap header only") << bmp.left(54) << "bmp";
        QTest::newRow("half a bitmap header") << bmp.left(30) << "bmp";
        QTest::newRow("jpeg without its end") << jpg.left(jpg.size() - 2) << "jpg";
        QTest::newRow("jpeg with bytes behind") << jpg + "more"
                                                << "jpg";
        QTest::newRow("half a jpeg with an end") << jpg.left(jpg.size() / 2) + QByteArray("\xFF\xD9") << "jpg";
        QTest::newRow("jpeg that lacks its last pixels") << jpg.left(jpg.size() - 40) + QByteArray("\xFF\xD9") << "jpg";
        QTest::newRow("png without its end") << png.left(png.size() - 12) << "png";
        QTest::newRow("half a png") << png.left(png.size() / 2) << "png";
        QTest::newRow("png header only") << png.left(8) << "png";
        for (const int offset : {18, 22}) {
            for (const quint32 number : {0U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU, 70000U}) {
                QByteArray changed = bmp;
                put32(changed, offset, number);
                if (offset == 22 && number == 0xFFFFFFFFU)
                    continue;  // one row from the top
                QTest::addRow("bitmap, %u at %d", number, offset) << changed << "bmp";
            }
        }
        QByteArray compressed = bmp;
        put32(compressed, 30, 1);
        QTest::newRow("bitmap of another compression") << compressed << "bmp";
        QByteArray inside = bytesOf(folder.save(mixedPicture(QImage::Format_Indexed8, 40, 30), "b.bmp"));
        put32(inside, 10, 54 + 1023);
        QTest::newRow("bitmap whose pixels begin inside its palette") << inside << "bmp";
        QByteArray early = bmp;
        put32(early, 10, 53);
        QTest::newRow("bitmap whose pixels begin inside its header") << early << "bmp";
        QByteArray damaged = png;
        damaged[png.size() / 2] = static_cast<char>(damaged.at(png.size() / 2) ^ 0x55);
        QTest::newRow("png with a wrong byte") << damaged << "png";
        QByteArray warns = png;
        const int resolution = png.indexOf("pHYs");
        QVERIFY(resolution > 0);
        warns[resolution + 6] = static_cast<char>(warns.at(resolution + 6) ^ 0x55);
        QTest::newRow("png with a wrong byte in what is not needed") << warns << "png";
    }

    void unusualOrDamagedFilesAreLeftToQt()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, suffix);
        const QString path = m_cFolder.write(bytes, "bad." + suffix);
        for (const bool grey : {false, true}) {
            SparePicture picture(grey);
            QVERIFY(!DirectReader::read(path, picture));
        }
    }

    void unusualPngIsLeftToQt()
    {
        for (const QImage::Format format : {QImage::Format_RGBA64, QImage::Format_Mono, QImage::Format_Grayscale16}) {
            SparePicture picture(false);
            QVERIFY(!DirectReader::read(m_cFolder.save(QImage(5, 5, format), "unusual.png"), picture));
        }
    }

    void whatIsNoFileIsLeftToQt()
    {
        SparePicture picture(false);
        QVERIFY(QDir().mkpath(m_cFolder.path("folder.png")));
        QVERIFY(!DirectReader::read(m_cFolder.path("folder.png"), picture));
        QVERIFY(!DirectReader::read(m_cFolder.path("missing.png"), picture));
        QVERIFY(!DirectReader::read(QString(), picture));
    }

    void readingLeavesNoFileOpen()
    {
        const auto openFiles = [] {
            return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
        };
        const QString path = m_cFolder.save(mixedPicture(QImage::Format_RGB888, 9, 7), "a.png");
        const int before = openFiles();
        for (int i = 0; i < 20; ++i) {
            SparePicture picture(false);
            QVERIFY(DirectReader::read(path, picture));
            QVERIFY(!DirectReader::read(m_cFolder.path("missing.png"), picture));
        }
        QCOMPARE(openFiles(), before);
    }

    void damagedFileLeavesTheRecordAsItWas()
    {
        const Store store = makeStore();
        const QImage good = mixedPicture(QImage::Format_RGB888, 40, 30);
        const auto load = [&store](const QString& path) {
            execute<Loading>("<FilePath>" + path + "</FilePath><PicID>1</PicID>", store.get());
        };
        load(m_cFolder.save(good, "good.png"));
        const QByteArray before = bytesOf(*store->getParamDIB(1));
        for (const char* suffix : {"jpg", "png", "bmp"}) {
            const QByteArray bytes = bytesOf(m_cFolder.save(good.mirrored(), QStringLiteral("half.") + suffix));
            load(m_cFolder.write(bytes.left(bytes.size() * 2 / 3), QStringLiteral("half.") + suffix));
            QCOMPARE(store->getParamDIB(1)->getWidth(), 40);
            QCOMPARE(bytesOf(*store->getParamDIB(1)), before);
        }
    }

    void recordsOfOneStepAfterAnotherKeepTheirPictures()
    {
        const Store store = makeStore();
        for (int id = 1; id <= 3; ++id) {
            const QString path = m_cFolder.save(plainPicture(10 + id, 4, qRgb(id, 2, 3)), "one.png");
            const QString option = QStringLiteral("<FilePath>%1</FilePath><PicID>%2</PicID>").arg(path).arg(id);
            execute<Loading>(option, store.get());
        }
        for (int id = 1; id <= 3; ++id) {
            QCOMPARE(store->getParamDIB(id)->getWidth(), 10 + id);
            QCOMPARE(int{store->getParamDIB(id)->getDIB()[0]}, id);
        }
    }
};

QTEST_APPLESS_MAIN(TestDirectReader)
#include "testDirectReader.moc"
