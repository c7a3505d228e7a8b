#include "directSupport.h"
#include "loading/fileFormats.h"
#include "memoryLimit.h"

#include <QImageWriter>
#include <QtTest>

#include <array>

#include <cstdio>

#include <jpeglib.h>
#include <png.h>

using namespace DirectSupport;
using namespace PictureSupport;

namespace {

const QSize Size(24, 17);

QByteArray bytesAs(const QImage& picture, const char* suffix)
{
    const Folder folder;
    return bytesOf(folder.save(picture, QStringLiteral("a.") + suffix));
}

QByteArray changed(QByteArray bytes, int offset, int value)
{
    bytes[offset] = static_cast<char>(value);
    return bytes;
}

QByteArray changed32(QByteArray bytes, int offset, quint32 number)
{
    put32(bytes, offset, number);
    return bytes;
}

QByteArray progressiveJpeg()
{
    const Folder folder;
    QImageWriter writer(folder.path("a.jpg"));
    writer.setProgressiveScanWrite(true);
    writer.write(mixedPicture(QImage::Format_RGB888, Size.width(), Size.height()));
    return bytesOf(folder.path("a.jpg"));
}

/// A baseline JPEG of as many components as a colour space has.
QByteArray jpegOf(J_COLOR_SPACE space, int components)
{
    jpeg_compress_struct info = {};
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long count = 0;
    jpeg_mem_dest(&info, &bytes, &count);
    info.image_width = static_cast<JDIMENSION>(Size.width());
    info.image_height = static_cast<JDIMENSION>(Size.height());
    info.input_components = components;
    info.in_color_space = space;
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, space);
    jpeg_start_compress(&info, TRUE);
    std::vector<unsigned char> row(static_cast<std::size_t>(Size.width() * components), 90);
    unsigned char* rows[] = {row.data()};
    for (int y = 0; y < Size.height(); ++y)
        jpeg_write_scanlines(&info, rows, 1);
    jpeg_finish_compress(&info);
    const QByteArray result(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
    jpeg_destroy_compress(&info);
    std::free(bytes);
    return result;
}

void append(png_structp png, png_bytep bytes, std::size_t count)
{
    static_cast<QByteArray*>(png_get_io_ptr(png))
        ->append(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
}

QByteArray pngOf(int type, int bytesAPixel, int interlace)
{
    QByteArray result;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &result, append, nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(Size.width()), static_cast<png_uint_32>(Size.height()), 8, type,
                 interlace, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    const int passes = png_set_interlace_handling(png);
    const std::vector<unsigned char> row(static_cast<std::size_t>(Size.width() * bytesAPixel), 90);
    for (int y = 0; y < passes * Size.height(); ++y)
        png_write_row(png, row.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return result;
}

QImage transparentPalette()
{
    QImage picture = mixedPicture(QImage::Format_Indexed8, Size.width(), Size.height());
    picture.setColor(7, qRgba(1, 2, 3, 128));
    return picture;
}

/// The same picture with the header of the oldest kind, which has shorter fields.
QByteArray oldestBitmap(const QByteArray& bitmap)
{
    const std::array<quint16, 4> fields = {qToLittleEndian(static_cast<quint16>(Size.width())),
                                           qToLittleEndian(static_cast<quint16>(Size.height())),
                                           qToLittleEndian<quint16>(1), qToLittleEndian<quint16>(24)};
    QByteArray header = changed32(bitmap.left(18), 14, 12);
    put32(header, 10, 26);
    header.append(reinterpret_cast<const char*>(fields.data()), sizeof(fields));
    return header + bitmap.mid(54);
}

/// A file of some bytes that takes no room on the disk beyond its content.
QString sparseFile(const Folder& folder, const QString& name, const QByteArray& content, qint64 bytes)
{
    const QString path = folder.write(content, name);
    return QFile::resize(path, bytes) ? path : QString();
}

}  // namespace

/// Whole files of a make that is left to Qt, and the limits of what is read at all.
class TestUnusualFiles : public QObject
{
    Q_OBJECT

    Folder m_cFolder;

private Q_SLOTS:
    void fileOfUnusualMakeIsLeftToQt_data();
    void fileOfUnusualMakeIsLeftToQt();
    void fileOfLessUsualMakeGivesWhatQtGives_data();
    void fileOfLessUsualMakeGivesWhatQtGives();
    void jpegWithoutItsMarkersIsNone();
    void pictureOfTooManyPixelsIsNotRead();
    void fileThatIsTooLargeIsLeftToQt();
    void fileThatMemoryDoesNotSufficeForIsLeftToQt();
    void rowThatMemoryDoesNotSufficeForIsLeftToQt();
    void reasonableSizes_data();
    void reasonableSizes();
};

void TestUnusualFiles::fileOfUnusualMakeIsLeftToQt_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<bool>("isPicture");
    QTest::newRow("jpeg, progressive") << progressiveJpeg() << "jpg" << true;
    QTest::newRow("jpeg of red, green and blue") << jpegOf(JCS_RGB, 3) << "jpg" << true;
    QTest::newRow("jpeg of four inks") << jpegOf(JCS_CMYK, 4) << "jpg" << true;
    QTest::newRow("png, interlaced") << pngOf(PNG_COLOR_TYPE_RGB, 3, PNG_INTERLACE_ADAM7) << "png" << true;
    QTest::newRow("png, grey with opacity") << pngOf(PNG_COLOR_TYPE_GRAY_ALPHA, 2, PNG_INTERLACE_NONE) << "png" << true;
    QTest::newRow("png, transparent colours") << bytesAs(transparentPalette(), "png") << "png" << true;
    const QByteArray bmp = bytesAs(mixedPicture(QImage::Format_RGB888, Size.width(), Size.height()), "bmp");
    const QByteArray palette = bytesAs(mixedPicture(QImage::Format_Indexed8, Size.width(), Size.height()), "bmp");
    QTest::newRow("bitmap of the oldest kind") << oldestBitmap(bmp) << "bmp" << true;
    QTest::newRow("bitmap of two planes") << changed(bmp, 26, 2) << "bmp" << false;
    QTest::newRow("bitmap of 24 bits with colours") << changed(bmp, 46, 1) << "bmp" << true;
    QTest::newRow("bitmap of 200 colours") << changed32(palette, 46, 200) << "bmp" << true;
}

void TestUnusualFiles::fileOfUnusualMakeIsLeftToQt()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, suffix);
    const QString path = m_cFolder.write(bytes, "unusual." + suffix);
    for (const bool grey : {false, true}) {
        SparePicture picture(grey);
        QVERIFY(!DirectReader::read(path, picture));
    }
    QFETCH(bool, isPicture);
    if (isPicture)
        QCOMPARE(PictureReader::read(path).size(), Size);
}

void TestUnusualFiles::fileOfLessUsualMakeGivesWhatQtGives_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QSize>("size");
    const QByteArray palette = bytesAs(mixedPicture(QImage::Format_Indexed8, Size.width(), Size.height()), "bmp");
    QTest::newRow("bitmap that does not count its colours") << changed32(palette, 46, 0) << "bmp" << Size;
    QTest::newRow("bitmap with bytes behind") << palette + QByteArray(5000, 'x') << "bmp" << Size;
    const QSize wide(100000, 3);
    for (const char* suffix : {"bmp", "png"}) {
        QTest::addRow("wide %s", suffix) << bytesAs(mixedPicture(QImage::Format_RGB888, wide.width(), wide.height()),
                                                    suffix)
                                         << suffix << wide;
    }
    QTest::newRow("png with bytes behind") << pngOf(PNG_COLOR_TYPE_GRAY, 1, PNG_INTERLACE_NONE) + "more"
                                           << "png" << Size;
}

void TestUnusualFiles::fileOfLessUsualMakeGivesWhatQtGives()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, suffix);
    QFETCH(QSize, size);
    const QString path = m_cFolder.write(bytes, "less." + suffix);
    for (const bool grey : {false, true}) {
        const QByteArray pixels = direct(path, grey, size);
        QVERIFY(!pixels.isEmpty());
        QVERIFY(pixels == byQt(path, grey));
    }
}

void TestUnusualFiles::jpegWithoutItsMarkersIsNone()
{
    const QByteArray whole = bytesAs(mixedPicture(QImage::Format_RGB888, Size.width(), Size.height()), "jpg");
    const auto isRead = [](const QByteArray& bytes) {
        FileFormats::Content content;
        content.m_nSize = static_cast<std::size_t>(bytes.size());
        content.m_pcBytes.reset(new unsigned char[content.m_nSize]);
        std::copy(bytes.begin(), bytes.end(), content.m_pcBytes.get());
        SparePicture picture(false);
        return FileFormats::readJpeg(content, picture);
    };
    QVERIFY(isRead(whole));
    QVERIFY(!isRead(changed(whole, whole.size() - 2, 0xFE)));
    QVERIFY(!isRead(changed(whole, whole.size() - 1, 0xD8)));
    QVERIFY(!isRead(whole + "x\xD9"));
    QVERIFY(!isRead(whole + "\xFFx"));
    for (int count = 0; count < 5; ++count)
        QVERIFY(!isRead(whole.right(count)));
}

void TestUnusualFiles::pictureOfTooManyPixelsIsNotRead()
{
    const Folder folder;
    const QByteArray header = bytesAs(mixedPicture(QImage::Format_RGB888, 4, 4), "bmp").left(54);
    const QByteArray large = changed32(changed32(header, 18, 8193), 22, 8192);
    const QString path = sparseFile(folder, "large.bmp", large, 54 + qint64{8193 * 3 + 1} * 8192);
    QVERIFY(!path.isEmpty());
    SparePicture picture(false);
    QVERIFY(!DirectReader::read(path, picture));
    QVERIFY(PictureReader::read(path).isNull());
}

void TestUnusualFiles::fileThatIsTooLargeIsLeftToQt()
{
    const Folder folder;
    const QByteArray png = bytesAs(mixedPicture(QImage::Format_RGB888, 4, 4), "png");
    const QString path = sparseFile(folder, "long.png", png, 256 * qint64{MiB} + 1);
    QVERIFY(!path.isEmpty());
    SparePicture picture(false);
    QVERIFY(!DirectReader::read(path, picture));
    QVERIFY(QFile::resize(path, 1000000));
    QVERIFY(DirectReader::read(path, picture));
}

void TestUnusualFiles::fileThatMemoryDoesNotSufficeForIsLeftToQt()
{
    if (!MemoryLimit::works())
        QSKIP("a sanitizer needs the address space that the test takes away");
    const Folder folder;
    const QByteArray png = bytesAs(mixedPicture(QImage::Format_RGB888, 4, 4), "png");
    const QString path = sparseFile(folder, "long.png", png, 200 * qint64{MiB});
    QVERIFY(!path.isEmpty());
    SparePicture picture(false);
    const MemoryLimit limit(100 * MiB);
    QVERIFY(!DirectReader::read(path, picture));
}

void TestUnusualFiles::rowThatMemoryDoesNotSufficeForIsLeftToQt()
{
    if (!MemoryLimit::works())
        QSKIP("a sanitizer needs the address space that the test takes away");
    const Folder folder;
    const QByteArray header = bytesAs(mixedPicture(QImage::Format_RGB888, 4, 4), "bmp").left(54);
    const QByteArray wide = changed32(changed32(header, 18, 64 * MiB), 22, 1);
    const QString path = sparseFile(folder, "wide.bmp", wide, 54 + 3 * 64 * qint64{MiB});
    QVERIFY(!path.isEmpty());
    SparePicture picture(true);
    // Enough for the grey picture, but not for the coloured row of the file.
    const MemoryLimit limit(150 * MiB);
    QVERIFY(!DirectReader::read(path, picture));
}

void TestUnusualFiles::reasonableSizes_data()
{
    QTest::addColumn<quint64>("width");
    QTest::addColumn<quint64>("height");
    QTest::addColumn<bool>("isReasonable");
    QTest::newRow("nothing") << quint64{0} << quint64{0} << false;
    QTest::newRow("no width") << quint64{0} << quint64{5} << false;
    QTest::newRow("no height") << quint64{5} << quint64{0} << false;
    QTest::newRow("one pixel") << quint64{1} << quint64{1} << true;
    QTest::newRow("the largest") << quint64{8192} << quint64{8192} << true;
    QTest::newRow("a column more") << quint64{8193} << quint64{8192} << false;
    QTest::newRow("a row more") << quint64{8192} << quint64{8193} << false;
    QTest::newRow("the widest") << quint64{67108864} << quint64{1} << true;
    QTest::newRow("wider") << quint64{67108865} << quint64{1} << false;
}

void TestUnusualFiles::reasonableSizes()
{
    QFETCH(quint64, width);
    QFETCH(quint64, height);
    QTEST(FileFormats::isReasonable(static_cast<std::size_t>(width), static_cast<std::size_t>(height)), "isReasonable");
}

QTEST_APPLESS_MAIN(TestUnusualFiles)
#include "testUnusualFiles.moc"
