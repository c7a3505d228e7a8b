#include "loading/pictureConvert.h"
#include "memoryLimit.h"
#include "paramStore/pictureLayout.h"

#include <QImage>
#include <QtTest>

#include <cstring>
#include <random>
#include <vector>

using Bytes = std::vector<unsigned char>;

namespace {

/// The definition, one colour at a time.
unsigned char defined(const unsigned char* s)
{
    const double grey = 0.587 * s[1] + 0.299 * s[2] + 0.114 * s[0];
    return static_cast<unsigned char>(static_cast<int>(grey));
}

/// Any bytes that a format allows, extremes among them.
QImage randomPicture(QImage::Format format, int width, int height)
{
    QImage picture(width, height, format);
    std::mt19937 random(static_cast<unsigned>(width * 1000 + height));
    for (int y = 0; y < height; ++y) {
        for (int i = 0; i < picture.bytesPerLine(); ++i) {
            const unsigned value = random();
            picture.scanLine(y)[i] = static_cast<unsigned char>(value % 5 == 0 ? value & 0x100 ? 255 : 0 : value >> 24);
        }
    }
    if (format == QImage::Format_ARGB32_Premultiplied || format == QImage::Format_RGBA64_Premultiplied ||
        format == QImage::Format_RGBA8888_Premultiplied) {
        // No colour above its opacity: from a picture that has none of those.
        picture = randomPicture(QImage::Format_ARGB32, width, height).convertToFormat(format);
    }
    if (format == QImage::Format_Mono || format == QImage::Format_MonoLSB)
        picture.setColorTable({0xFF102030, 0xFFF0E0D0});
    return picture;
}

constexpr unsigned char Behind = 0xEE;  // stands where nothing may be written

/// Checks both records against Qt's own conversion of the whole picture.
void checkAgainstQt(const QImage& picture)
{
    const int width = picture.width();
    const int height = picture.height();
    const auto stride = static_cast<std::size_t>(PictureLayout::colourStride(width));
    Bytes colour(static_cast<std::size_t>(PictureLayout::colourBytes(width, height)));
    Bytes grey(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    colour.push_back(Behind);
    grey.push_back(Behind);
    QVERIFY(PictureConvert::copyAsColour(picture, colour.data()));
    QVERIFY(PictureConvert::copyAsGrey(picture, grey.data()));
    QCOMPARE(colour.back(), Behind);
    QCOMPARE(grey.back(), Behind);
    const QImage expected = picture.convertToFormat(QImage::Format_RGB888);
    for (int y = 0; y < height; ++y) {
        const unsigned char* row = expected.constScanLine(y);
        QVERIFY(std::memcmp(&colour[stride * static_cast<std::size_t>(y)], row, std::size_t(width) * 3) == 0);
        for (int x = 0; x < width; ++x) {
            if (grey[static_cast<std::size_t>(y * width + x)] != defined(row + 3 * x))
                QFAIL(qPrintable(QString::asprintf("pixel %d, %d is wrong", x, y)));
        }
    }
}

}  // namespace

class TestPictureConvert : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFormatGivesWhatQtMakesOfIt_data()
    {
        QTest::addColumn<int>("format");
        QTest::newRow("32 bits") << int{QImage::Format_RGB32};
        QTest::newRow("32 bits with opacity") << int{QImage::Format_ARGB32};
        QTest::newRow("32 bits premultiplied") << int{QImage::Format_ARGB32_Premultiplied};
        QTest::newRow("24 bits") << int{QImage::Format_RGB888};
        QTest::newRow("24 bits, blue first") << int{QImage::Format_BGR888};
        QTest::newRow("32 bits, red first") << int{QImage::Format_RGBX8888};
        QTest::newRow("32 bits, red first, opacity") << int{QImage::Format_RGBA8888};
        QTest::newRow("32 bits, red first, premultiplied") << int{QImage::Format_RGBA8888_Premultiplied};
        QTest::newRow("16 bits") << int{QImage::Format_RGB16};
        QTest::newRow("15 bits") << int{QImage::Format_RGB555};
        QTest::newRow("12 bits") << int{QImage::Format_RGB444};
        QTest::newRow("grey") << int{QImage::Format_Grayscale8};
        QTest::newRow("grey, 16 bits") << int{QImage::Format_Grayscale16};
        QTest::newRow("16 bits a channel") << int{QImage::Format_RGBX64};
        QTest::newRow("16 bits a channel with opacity") << int{QImage::Format_RGBA64};
        QTest::newRow("30 bits") << int{QImage::Format_RGB30};
        QTest::newRow("black and white") << int{QImage::Format_Mono};
        QTest::newRow("black and white, other order") << int{QImage::Format_MonoLSB};
    }

    void everyFormatGivesWhatQtMakesOfIt()
    {
        QFETCH(int, format);
        const QSize sizes[] = {{1, 1},  {2, 3},  {3, 2},  {5, 7},     {15, 2},
                               {16, 3}, {17, 2}, {33, 5}, {1021, 15}, {1021, 16}};
        for (const QSize& size : sizes) {
            checkAgainstQt(randomPicture(static_cast<QImage::Format>(format), size.width(), size.height()));
            if (QTest::currentTestFailed())
                return;
        }
    }

    void everyOneOfAllColoursGivesWhatQtMakesOfIt_data()
    {
        QTest::addColumn<int>("format");
        QTest::newRow("32 bits") << int{QImage::Format_RGB32};
        QTest::newRow("32 bits with opacity") << int{QImage::Format_ARGB32};
    }

    void everyOneOfAllColoursGivesWhatQtMakesOfIt()
    {
        QFETCH(int, format);
        constexpr int Width = 4096;
        constexpr int Rows = 4;  // too few for Qt to hand them to threads of its own
        QImage picture(Width, Rows, static_cast<QImage::Format>(format));
        for (QRgb first = 0; first < 0x1000000; first += Width * Rows) {
            for (QRgb i = 0; i < Width * Rows; ++i)
                reinterpret_cast<QRgb*>(picture.scanLine(static_cast<int>(i) / Width))[i % Width] =
                    (format == QImage::Format_RGB32 ? 0xFF000000 : (first ^ i * 77) << 24) | (first + i);
            checkAgainstQt(picture);
            if (QTest::currentTestFailed())
                return;
        }
    }

    void paletteGivesItsIndexWhateverItsColours()
    {
        QImage picture(5, 2, QImage::Format_Indexed8);
        for (int i = 0; i < 256; ++i)
            picture.setColor(i, qRgb(255 - i, i * 7 & 255, i * 13 & 255));
        for (int i = 0; i < 10; ++i)
            picture.scanLine(i / 5)[i % 5] = static_cast<unsigned char>(i * 28);
        Bytes colour(32, 0xEE);
        QVERIFY(PictureConvert::copyAsColour(picture, colour.data()));
        QCOMPARE(Bytes(colour.begin(), colour.begin() + 15),
                 (Bytes{0, 0, 0, 28, 28, 28, 56, 56, 56, 84, 84, 84, 112, 112, 112}));
        QCOMPARE(Bytes(colour.begin() + 16, colour.begin() + 19), (Bytes{140, 140, 140}));
        Bytes grey(10);
        QVERIFY(PictureConvert::copyAsGrey(picture, grey.data()));
        QCOMPARE(grey, (Bytes{0, 28, 56, 84, 112, 140, 168, 196, 224, 252}));
    }

    void pictureOfASingleColourHasThatColour()
    {
        QImage picture(9, 4, QImage::Format_Mono);
        picture.setColorTable({0xFF102030});
        picture.fill(0);
        checkAgainstQt(picture);
        Bytes colour(static_cast<std::size_t>(PictureLayout::colourBytes(9, 4)));
        QVERIFY(PictureConvert::copyAsColour(picture, colour.data()));
        QCOMPARE(Bytes(colour.begin(), colour.begin() + 3), (Bytes{0x10, 0x20, 0x30}));
    }

    void rowThatMemoryDoesNotSufficeForIsTold()
    {
        if (!MemoryLimit::works())
            QSKIP("a sanitizer needs the address space that the test takes away");
        constexpr int Width = 16 * 1024 * 1024;
        QImage picture(Width, 1, QImage::Format_RGB16);
        picture.fill(0);
        Bytes target(3 * std::size_t{Width});
        const MemoryLimit limit(std::size_t{20} << 20);  // Qt's copy of the row takes 48 MiB
        QVERIFY(!PictureConvert::copyAsColour(picture, target.data()));
        QVERIFY(!PictureConvert::copyAsGrey(picture, target.data()));
    }

    void rowsOfAForeignPitchAreTaken()
    {
        // A picture inside a larger one: its rows lie further apart than its width says.
        Bytes pixels(100 * 10);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = static_cast<unsigned char>(i * 37 >> 2);
        checkAgainstQt(QImage(pixels.data(), 7, 10, 100, QImage::Format_RGB888));
        checkAgainstQt(QImage(pixels.data(), 7, 10, 100, QImage::Format_RGB32));
        checkAgainstQt(QImage(pixels.data(), 7, 10, 100, QImage::Format_Grayscale8));
    }
};

QTEST_APPLESS_MAIN(TestPictureConvert)
#include "testPictureConvert.moc"
