#include "loading/loading.h"
#include "loading/pictureReader.h"
#include "memoryLimit.h"
#include "pictureSupport.h"

#include <QtEndian>
#include <QtTest>

#include <sys/stat.h>

using namespace PictureSupport;

namespace {

QByteArray encoded(const QImage& picture, const char* format)
{
    const Folder folder;
    return bytesOf(folder.save(picture, QStringLiteral("a.") + format));
}

/// A bitmap header of any size and depth with few bytes behind it.
QByteArray bitmap(qint32 width, qint32 height, quint16 bits, quint32 compression, int pixelBytes)
{
    QByteArray bytes(54, '\0');
    char* header = bytes.data();
    header[0] = 'B';
    header[1] = 'M';
    qToLittleEndian<quint32>(static_cast<quint32>(54 + pixelBytes), header + 2);
    qToLittleEndian<quint32>(54, header + 10);
    qToLittleEndian<quint32>(40, header + 14);
    qToLittleEndian<qint32>(width, header + 18);
    qToLittleEndian<qint32>(height, header + 22);
    qToLittleEndian<quint16>(1, header + 26);
    qToLittleEndian<quint16>(bits, header + 28);
    qToLittleEndian<quint32>(compression, header + 30);
    return bytes + QByteArray(pixelBytes, '\x40');
}

/// Two rows of 200 equal pixels, each in four bytes: the file is shorter than its pixels.
QByteArray runLengthBitmap()
{
    constexpr quint32 PixelsAt = 54 + 1024;
    QByteArray bytes = bitmap(200, 2, 8, 1, 0) + QByteArray(1024, '\x30');
    qToLittleEndian<quint32>(PixelsAt, bytes.data() + 10);
    return bytes + QByteArray("\xC8\x05\0\0\xC8\x05\0\0\0\x01", 10);
}

/// 4 x 3 pixels of four bytes, with masks that say where the colours are.
QByteArray maskedBitmap()
{
    QByteArray bytes = bitmap(4, 3, 32, 3, 0) + QByteArray::fromHex("0000ff0000ff0000ff000000");
    qToLittleEndian<quint32>(66, bytes.data() + 10);
    return bytes + QByteArray(48, '\x40');
}

/// 4 x 3 pixels of three bytes behind the header of the oldest kind, which has shorter fields.
QByteArray oldestBitmap()
{
    QByteArray bytes = bitmap(4, 3, 24, 0, 0).left(26);
    char* header = bytes.data();
    qToLittleEndian<quint32>(26, header + 10);
    qToLittleEndian<quint32>(12, header + 14);
    qToLittleEndian<quint16>(4, header + 18);
    qToLittleEndian<quint16>(3, header + 20);
    qToLittleEndian<quint16>(1, header + 22);
    qToLittleEndian<quint16>(24, header + 24);
    return bytes + QByteArray(36, '\x40');
}

/// 64 x 32 pixels of one bit; taken for the list of an icon it leads to a picture of absurd size.
QByteArray wirelessBitmap()
{
    QByteArray bytes = QByteArray::fromHex("00004020") + QByteArray(64 * 32 / 8, '\x40');
    qToLittleEndian<quint32>(22, bytes.data() + 18);
    return bytes;
}

QByteArray hugeBlackAndWhitePng(int width, int height)
{
    QImage picture(width, height, QImage::Format_Mono);
    picture.fill(0);
    return encoded(picture, "png");
}

/// A GIF of one black pixel on a canvas of any size.
QByteArray gif(quint16 width, quint16 height)
{
    QByteArray bytes = QByteArray::fromHex(
        "474946383961"
        "01000100800100"
        "000000ffffff"
        "2c00000000010001000002024401003b");
    qToLittleEndian<quint16>(width, bytes.data() + 6);
    qToLittleEndian<quint16>(height, bytes.data() + 8);
    return bytes;
}

/// A picture of an icon file, as a bitmap without its file header, with as many bytes behind as 16 x 16 pixels have.
QByteArray iconBitmap(qint32 width, qint32 height)
{
    QByteArray bytes = bitmap(width, 2 * height, 32, 0, 16 * 16 * 5).mid(14);  // its mask counts as rows
    qToLittleEndian<quint16>(0, bytes.data() + 12);                            // planes, which nobody looks at
    return bytes;
}

/// An icon file that lists a picture of 16x16 pixels.
QByteArray icon(const QByteArray& picture)
{
    QByteArray list = QByteArray::fromHex(
        "000001000100"
        "10100000010020000000000016000000");
    qToLittleEndian<quint32>(static_cast<quint32>(picture.size()), list.data() + 14);
    return list + picture;
}

/// Some bytes lie between the list and the picture.
QByteArray spacedIcon(const QByteArray& picture)
{
    QByteArray bytes = icon(picture).insert(22, "anything");
    qToLittleEndian<quint32>(30, bytes.data() + 18);
    return bytes;
}

/// The most that the process has had mapped so far.
qint64 mostAddressSpaceKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    const QByteArray all = status.readAll();
    const QByteArray name("VmPeak:");
    const int start = all.indexOf(name) + name.size();
    return all.mid(start, all.indexOf("kB", start) - start).trimmed().toLongLong();
}

QByteArray changed(QByteArray bytes, int position, char value)
{
    bytes[position] = value;
    return bytes;
}

}  // namespace

class TestBadPictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badFileLeavesTheRecordAsItWas_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("name");
        const QImage picture = numberedPicture(40, 30);
        const QByteArray png = encoded(picture, "png");
        const QByteArray bmp = encoded(picture, "bmp");
        const QByteArray jpg = encoded(picture, "jpg");
        const QByteArray pal = encoded(palettePicture(40, 30), "bmp");
        QTest::newRow("empty png") << QByteArray() << "a.png";
        QTest::newRow("empty bmp") << QByteArray() << "a.bmp";
        QTest::newRow("empty jpg") << QByteArray() << "a.jpg";
        QTest::newRow("text") << QByteArray("not a picture") << "a.png";
        QTest::newRow("foreign") << QByteArray(
                                        "\x7F"
                                        "ELF\x02\x01\x01",
                                        7)
                                 << "a.bmp";
        QTest::newRow("png, half") << png.left(png.size() / 2) << "a.png";
        QTest::newRow("png, header only") << png.left(33) << "a.png";
        QTest::newRow("png, damaged header") << changed(png, 20, '\x7F') << "a.png";
        QTest::newRow("png, damaged data") << changed(png, png.size() / 2, char(~png[png.size() / 2])) << "a.png";
        QTest::newRow("bmp, half") << bmp.left(bmp.size() / 2) << "a.bmp";
        QTest::newRow("bmp, one byte short") << bmp.left(bmp.size() - 1) << "a.bmp";
        const QByteArray odd = encoded(numberedPicture(41, 30), "bmp");
        QTest::newRow("bmp of padded rows, one byte short") << odd.left(odd.size() - 1) << "a.bmp";
        QTest::newRow("bmp with masks, one byte short") << maskedBitmap().left(66 + 47) << "a.bmp";
        QTest::newRow("bmp of the oldest kind, one byte short") << oldestBitmap().left(26 + 35) << "a.bmp";
        QTest::newRow("bmp, header only") << bmp.left(54) << "a.bmp";
        QTest::newRow("bmp, half a header") << bmp.left(30) << "a.bmp";
        QTest::newRow("bmp with palette, half") << pal.left(pal.size() - 300) << "a.bmp";
        QTest::newRow("jpg, half") << jpg.left(jpg.size() / 2) << "a.jpg";
        QTest::newRow("jpg, without its end") << jpg.left(jpg.size() - 2) << "a.jpg";
        QTest::newRow("jpg, two bytes") << jpg.left(2) << "a.jpg";
        QTest::newRow("bmp that claims to be huge") << bitmap(60000, 60000, 24, 0, 300) << "a.bmp";
        QTest::newRow("bmp of no width") << bitmap(0, 5, 24, 0, 300) << "a.bmp";
        QTest::newRow("bmp of no height") << bitmap(5, 0, 24, 0, 300) << "a.bmp";
        QTest::newRow("bmp of negative width") << bitmap(-5, 5, 24, 0, 300) << "a.bmp";
        QTest::newRow("bmp of the smallest height")
            << bitmap(5, std::numeric_limits<qint32>::min(), 24, 0, 300) << "a.bmp";
        QTest::newRow("small gif on a huge canvas") << gif(9000, 9000) << "a.gif";
        QTest::newRow("small gif on a huge canvas of round numbers") << gif(0x2400, 0x2000) << "a.gif";
        QTest::newRow("small gif on a huge canvas, called png") << gif(9000, 9000) << "a.png";
        QTest::newRow("small gif of no known version on a huge canvas") << changed(gif(9000, 9000), 4, '?') << "a.gif";
        QTest::newRow("what is only called gif, on a huge canvas") << changed(gif(9000, 9000), 2, '?') << "a.GIF";
        QTest::newRow("gif, half a header") << gif(5, 5).left(9) << "a.gif";
        QTest::newRow("small icon that is a huge png") << icon(hugeBlackAndWhitePng(8193, 8192)) << "a.ico";
        QTest::newRow("small icon that says it is huge") << icon(iconBitmap(9000, 8320)) << "a.ico";
        QTest::newRow("icon without a picture") << icon({}) << "a.ico";
        QTest::newRow("icon with half a header") << icon(QByteArray(10, 'x')) << "a.ico";
        QTest::newRow("icon with a header only") << icon(iconBitmap(16, 16).left(24)) << "a.ico";
        QTest::newRow("png that is huge") << hugeBlackAndWhitePng(8193, 8192) << "a.png";
    }

    void badFileLeavesTheRecordAsItWas()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, name);
        const Store store = makeStore();
        const Folder folder;
        store->getParamDIB(3)->resize(2, 1);
        std::memset(store->getParamDIB(3)->getDIB(), 0x5A, 8);
        store->getParamDIB(3)->setName(QStringLiteral("kept"));
        const QString path = folder.write(bytes, name);

        for (const char* beGray : {"0", "1"}) {
            const QString text = QStringLiteral(
                                     "<FilePath>%1</FilePath><OutputName>new</OutputName><BeGray>%2</BeGray>"
                                     "<PicID>3</PicID>")
                                     .arg(path, beGray);
            QCOMPARE(execute<Loading>(text, store.get()), QString());
        }
        QCOMPARE(bytesOf(*store->findParamDIB(3)), QByteArray(8, 0x5A));
        QCOMPARE(store->findParamDIB(3)->getName(), QStringLiteral("kept"));
        QVERIFY(!store->findParamGray8(3));
    }

    void picturesOnReasonableCanvasesAreRead()
    {
        const Folder folder;
        QCOMPARE(PictureReader::read(folder.write(gif(30, 20), "a.gif")).size(), QSize(30, 20));
        const QImage picture = numberedPicture(40, 30);
        QCOMPARE(PictureReader::read(folder.save(picture, "b.ico")).size(), QSize(40, 30));
        QCOMPARE(PictureReader::read(folder.write(icon(iconBitmap(16, 16)), "f.ico")).size(), QSize(16, 16));
        QCOMPARE(PictureReader::read(folder.write(icon(encoded(picture, "png")), "c.ico")).size(), QSize(40, 30));
        QCOMPARE(PictureReader::read(folder.write(spacedIcon(encoded(picture, "png")), "e.ico")).size(), QSize(40, 30));
        const QByteArray wide = icon(hugeBlackAndWhitePng(16384, 512));
        QCOMPARE(PictureReader::read(folder.write(wide, "d.ico")).size(), QSize(16384, 512));
    }

    void pictureThatIsOnlyCalledGifIsRead()
    {
        const Folder folder;
        for (const char* format : {"bmp", "png", "jpg", "tif"}) {
            const QByteArray bytes = encoded(numberedPicture(40, 30), format);
            QCOMPARE(PictureReader::read(folder.write(bytes, "a.gif")).size(), QSize(40, 30));
        }
    }

    void hugeCanvasIsRefusedBeforeMemoryIsTaken()
    {
        const Folder folder;
        const QString path = folder.write(gif(9000, 9000), "a.gif");
        const QString called = folder.write(changed(gif(9000, 9000), 2, '?'), "c.gif");
        QVERIFY(PictureReader::read(folder.write(gif(3, 3), "b.gif")).size() == QSize(3, 3));  // loads the decoder
        const qint64 before = mostAddressSpaceKiB();
        QVERIFY(PictureReader::read(path).isNull());
        QVERIFY(PictureReader::read(called).isNull());
        QVERIFY(before > 0);
        QVERIFY(mostAddressSpaceKiB() - before < 100 * 1024);
    }

    void nameWithoutAnEndingIsLookedForWithEachEnding()
    {
        const Folder folder;
        folder.save(numberedPicture(40, 30), "a.png");
        QCOMPARE(PictureReader::read(folder.path("a")).size(), QSize(40, 30));
    }

    void pathThatIsNoRegularFileIsRefusedAtOnce()
    {
        const Folder folder;
        const QString pipe = folder.path("pipe.png");
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(PictureReader::read(pipe).isNull());
        QVERIFY(PictureReader::read(folder.path()).isNull());
        QVERIFY(PictureReader::read(folder.path("missing.png")).isNull());
        QVERIFY(PictureReader::read(QString()).isNull());
    }

    void missingFileLeavesThePreviousPicture()
    {
        const Store store = makeStore();
        const Folder folder;
        const QString path = folder.save(plainPicture(4, 4, 0xFF102030), "a.png");
        const QString text = "<FilePath>" + path + "</FilePath><PicID>3</PicID>";
        execute<Loading>(text, store.get());
        QVERIFY(QFile::remove(path));
        QCOMPARE(execute<Loading>(text, store.get()), QString());
        QCOMPARE(bytesOf(*store->findParamDIB(3)).left(3), QByteArray("\x10\x20\x30"));
    }

    void largestPictureIsStillRead()
    {
        const Folder folder;
        const QString path = folder.write(hugeBlackAndWhitePng(8192, 8192), "largest.png");
        QCOMPARE(PictureReader::read(path).size(), QSize(8192, 8192));
        QCOMPARE(PictureReader::read(folder.write(gif(8192, 8192), "largest.gif")).size(), QSize(8192, 8192));
    }

    void smallestPictureThatQtDecodesIsLoadedIntoItsRecordAlone()
    {
        QImage pixel(1, 1, QImage::Format_RGBA64);
        pixel.fill(QColor(0x10, 0x20, 0x30));
        const Folder folder;
        const QString text = "<FilePath>" + folder.save(pixel, "a.png") + "</FilePath><PicID>3</PicID>";
        const Store colour = makeStore();
        execute<Loading>(text, colour.get());
        QCOMPARE(bytesOf(*colour->findParamDIB(3)).left(3), QByteArray("\x10\x20\x30"));
        QVERIFY(!colour->findParamGray8(3));
        const Store grey = makeStore();
        execute<Loading>(text + "<BeGray>1</BeGray>", grey.get());
        QCOMPARE(bytesOf(*grey->findParamGray8(3)), QByteArray(1, 0x22));  // 0.587 * 32 + 0.299 * 48 + 0.114 * 16
        QVERIFY(!grey->findParamDIB(3));
    }

    void pictureThatMemoryDoesNotSufficeForGivesAnEmptyRecord_data()
    {
        QTest::addColumn<bool>("grey");
        QTest::addColumn<int>("limitMiB");
        QTest::newRow("colour") << false << 100;
        QTest::newRow("grey") << true << 40;
    }

    void pictureThatMemoryDoesNotSufficeForGivesAnEmptyRecord()
    {
        if (!MemoryLimit::works())
            QSKIP("Memory cannot be limited under a sanitizer.");
        QFETCH(bool, grey);
        QFETCH(int, limitMiB);
        const Store store = makeStore();
        const Folder folder;
        const QString path = folder.write(hugeBlackAndWhitePng(8192, 8192), "largest.png");
        const QString text =
            QStringLiteral("<FilePath>%1</FilePath><BeGray>%2</BeGray><PicID>3</PicID>").arg(path).arg(grey ? 1 : 0);
        const auto width = [&] {
            return grey ? store->findParamGray8(3)->getWidth() : store->findParamDIB(3)->getWidth();
        };
        {
            const MemoryLimit limit(static_cast<std::size_t>(limitMiB) * MiB);
            QCOMPARE(execute<Loading>(text, store.get()), QString());
        }
        QCOMPARE(width(), 0);
        QCOMPARE(execute<Loading>(text, store.get()), QString());
        QCOMPARE(width(), 8192);
    }

    void goodFilesOfOddMakeAreRead_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QSize>("size");
        const QByteArray jpg = encoded(numberedPicture(40, 30), "jpg");
        QTest::newRow("top-down bitmap") << bitmap(4, -3, 24, 0, 36) << QSize(4, 3);
        QTest::newRow("bitmap with masks") << maskedBitmap() << QSize(4, 3);
        QTest::newRow("bitmap of the oldest kind") << oldestBitmap() << QSize(4, 3);
        QTest::newRow("bitmap of runs, shorter than its pixels") << runLengthBitmap() << QSize(200, 2);
        QTest::newRow("bitmap with bytes behind it") << bitmap(4, 3, 24, 0, 99) << QSize(4, 3);
        QTest::newRow("jpg with bytes behind it") << jpg + QByteArray(500, 'x') << QSize(40, 30);
        QTest::newRow("two jpgs in one file") << jpg + jpg << QSize(40, 30);
        QTest::newRow("wireless bitmap, which begins as an icon does") << wirelessBitmap() << QSize(64, 32);
        QTest::newRow("png under a foreign suffix") << encoded(numberedPicture(6, 5), "png") << QSize(6, 5);
    }

    void goodFilesOfOddMakeAreRead()
    {
        QFETCH(QByteArray, bytes);
        const Folder folder;
        QTEST(PictureReader::read(folder.write(bytes, "odd.bmp")).size(), "size");
    }

    void runLengthEncodedBitmapIsRead()
    {
        const Folder folder;
        // 4 x 2 pixels of 8 bits, the lower row white, the upper one black.
        const QByteArray bytes = QByteArray::fromHex(
            "424d48000000000000003e000000"
            "28000000040000000200000001000800010000000a000000130b0000130b00000200000000000000"
            "00000000ffffff00"
            "04010000040000000001");
        const QImage picture = PictureReader::read(folder.write(bytes, "a.bmp"));
        QCOMPARE(picture.size(), QSize(4, 2));
        for (int x = 0; x < 4; ++x) {
            QCOMPARE(picture.pixel(x, 0), 0xFF000000);
            QCOMPARE(picture.pixel(x, 1), 0xFFFFFFFF);
        }
    }

    void torsosOfEveryLengthNeverCrash()
    {
        const Folder folder;
        for (const char* format : {"png", "bmp", "jpg"}) {
            const QByteArray whole = encoded(numberedPicture(16, 9), format);
            for (int length = 0; length < whole.size(); length += 7) {
                const QString path = folder.write(whole.left(length), QStringLiteral("torso.") + format);
                const QSize size = PictureReader::read(path).size();
                QVERIFY(size.isEmpty() || size == QSize(16, 9));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestBadPictures)
#include "testBadPictures.moc"
