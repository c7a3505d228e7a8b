#include "drawing/directDrawing.h"
#include "drawing/grayPalette.h"
#include "drawing/greyOverlay.h"
#include "drawing/imageDrawingOpt.h"
#include "drawingSupport.h"
#include "guardedPage.h"

#include <QPainter>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

using namespace DrawingSupport;

namespace {

using Bytes = std::vector<unsigned char>;

class Chance
{
public:
    explicit Chance(unsigned seed) : m_cRandom(seed) {}
    int between(int lowest, int highest) { return std::uniform_int_distribution<int>(lowest, highest)(m_cRandom); }
    double real(double lowest, double highest)
    {
        return std::uniform_real_distribution<double>(lowest, highest)(m_cRandom);
    }
    bool oneOf(int number) { return between(1, number) == 1; }

    /// Mostly small, sometimes a single pixel, rarely beyond the 2048 pixels that the painter takes in one go.
    int side()
    {
        if (oneOf(8))
            return 1;
        if (oneOf(40))
            return between(2049, 2300);
        return oneOf(3) ? between(2, 9) : between(2, 220);
    }
    QSize size()
    {
        const QSize size(side(), side());
        return size.width() * size.height() > 200000 ? QSize(size.width(), 1 + size.height() % 40) : size;
    }

private:
    std::mt19937 m_cRandom;
};

/// The size of a picture and its bytes; zeros are frequent.
struct Pixels
{
    Pixels(QSize size, int bytesPerPixel, int rowAlignment, unsigned seed)
        : m_cSize(size),
          m_nStride((size.width() * bytesPerPixel + rowAlignment - 1) / rowAlignment * rowAlignment),
          m_vecBytes(static_cast<std::size_t>(m_nStride) * static_cast<std::size_t>(size.height()))
    {
        std::mt19937 random(seed);
        for (unsigned char& byte : m_vecBytes)
            byte = static_cast<unsigned char>(random() % 3 == 0 ? 0 : random() >> 9);
    }
    const unsigned char* at(int x, int y, int bytesPerPixel) const
    {
        return m_vecBytes.data() + y * m_nStride + x * bytesPerPixel;
    }

    QSize m_cSize;
    int m_nStride;
    Bytes m_vecBytes;
};

Pixels colourPixels(QSize size, unsigned seed)
{
    return {size, 3, 4, seed};
}

Pixels greyPixels(QSize size, unsigned seed)
{
    return {size, 1, 1, seed};
}

/// What the painter is to be given for a colour picture: red, green, blue.
QImage rgbOfColour(const Pixels& pixels)
{
    QImage picture(pixels.m_cSize, QImage::Format_RGB888);
    for (int y = 0; y < picture.height(); ++y) {
        unsigned char* target = picture.scanLine(y);
        for (int x = 0; x < picture.width(); ++x, target += 3) {
            const unsigned char* source = pixels.at(x, y, 3);
            target[0] = source[2];
            target[1] = source[1];
            target[2] = source[0];
        }
    }
    return picture;
}

/// The same for a grey picture in normal mode, whose last pixel is not shown.
QImage rgbOfGrey(const Pixels& pixels)
{
    QImage picture(pixels.m_cSize, QImage::Format_RGB888);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            std::memset(picture.scanLine(y) + 3 * x, *pixels.at(x, y, 1), 3);
    }
    std::memset(picture.scanLine(picture.height() - 1) + 3 * (picture.width() - 1), 0, 3);
    return picture;
}

template <typename ColourOf>
QImage argbOfGrey(const Pixels& pixels, ColourOf colourOf)
{
    QImage picture(pixels.m_cSize, QImage::Format_ARGB32);
    for (int y = 0; y < picture.height(); ++y) {
        auto* target = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            target[x] = colourOf(*pixels.at(x, y, 1));
    }
    return picture;
}

QImage noise(QSize size)
{
    QImage canvas(size, QImage::Format_RGB888);
    std::mt19937 random(7);
    for (int i = 0; i < canvas.sizeInBytes(); ++i)
        canvas.bits()[i] = static_cast<unsigned char>(random());
    return canvas;
}

QImage black(QSize size)
{
    QImage canvas(size, QImage::Format_RGB888);
    std::memset(canvas.bits(), 0, static_cast<std::size_t>(canvas.sizeInBytes()));
    return canvas;
}

QImage painted(QImage canvas, const QImage& picture, const QRectF& source)
{
    QPainter(&canvas).drawImage(QRectF(0, 0, canvas.width(), canvas.height()), picture, source);
    return canvas;
}

/// Bytes between the rows included.
bool sameBytes(const QImage& left, const QImage& right)
{
    return left.size() == right.size() && left.sizeInBytes() == right.sizeInBytes() &&
           std::memcmp(left.constBits(), right.constBits(), static_cast<std::size_t>(left.sizeInBytes())) == 0;
}

QRectF fitted(QSize canvas, QSize picture, float scale)
{
    const float width = static_cast<float>(canvas.width()) * scale;
    const float height = static_cast<float>(canvas.height()) * scale;
    return {static_cast<float>(picture.width()) / 2 - static_cast<float>(canvas.width()) / 2 * scale,
            static_cast<float>(picture.height()) / 2 - static_cast<float>(canvas.height()) / 2 * scale, width, height};
}

/// The part of a picture that fills the canvas.
QRectF sourceOf(int scaleType, int alignType, QSize canvas, QSize picture)
{
    const int left = alignType == 0 ? picture.width() / 2 - canvas.width() / 2 : 0;
    const int top = alignType == 0 ? picture.height() / 2 - canvas.height() / 2 : 0;
    switch (scaleType) {
    case 0:
        return QRectF(left, top, canvas.width(), canvas.height());
    case 1:
        return fitted(canvas, picture, static_cast<float>(picture.width()) / static_cast<float>(canvas.width()));
    case 2:
        return fitted(canvas, picture, static_cast<float>(picture.height()) / static_cast<float>(canvas.height()));
    default:
        return QRectF(0, 0, picture.width(), picture.height());
    }
}

struct Case
{
    QSize m_cCanvas;
    QSize m_cPicture;
    int m_nScaleType;
    int m_nAlignType;

    QRectF source() const { return sourceOf(m_nScaleType, m_nAlignType, m_cCanvas, m_cPicture); }
    QByteArray text() const
    {
        return QByteArray("canvas ") + QByteArray::number(m_cCanvas.width()) + "x" +
               QByteArray::number(m_cCanvas.height()) + " picture " + QByteArray::number(m_cPicture.width()) + "x" +
               QByteArray::number(m_cPicture.height()) + " scale " + QByteArray::number(m_nScaleType) + " align " +
               QByteArray::number(m_nAlignType);
    }
};

/// Every pair of the smallest sizes, which are left to the painter.
template <typename Check>
void forTheSmallest(Check check)
{
    for (int canvas = 0; canvas < 9; ++canvas) {
        for (int picture = 0; picture < 25; ++picture) {
            for (int placement = 0; placement < 8; ++placement)
                check(Case{{1 + canvas % 3, 1 + canvas / 3},
                           {1 + picture % 5, 1 + picture / 5},
                           placement / 2,
                           placement % 2});
        }
    }
}

/// Every pair of some sizes in every placement, then sizes at random.
template <typename Check>
void forManyCases(Check check)
{
    forTheSmallest(check);
    const QSize sizes[] = {{1, 1}, {1, 9}, {2, 2}, {7, 1}, {17, 5}, {18, 5}, {19, 5}, {32, 24}, {33, 25}, {64, 48}};
    for (const QSize canvas : sizes) {
        for (const QSize picture : sizes) {
            for (int placement = 0; placement < 8; ++placement)
                check(Case{canvas, picture, placement / 2, placement % 2});
        }
    }
    Chance chance(20);
    for (int i = 0; i < 150; ++i) {
        Case random{chance.size(), chance.size(), chance.between(0, 3), chance.between(0, 1)};
        if (chance.oneOf(5))  // unscaled, with half pixels where the other sides differ by an odd number
            random.m_cPicture.setWidth(random.m_cCanvas.width());
        check(random);
    }
}

template <typename Kind>
std::unique_ptr<Kind> optionFor(const Case& which, Pixels& pixels)
{
    auto option =
        std::make_unique<Kind>(1, pixels.m_vecBytes.data(), which.m_cPicture.width(), which.m_cPicture.height());
    option->setScaleType(which.m_nScaleType);
    option->setAlignType(which.m_nAlignType);
    return option;
}

/// An option with such pixels draws them, in every case, as the painter draws the picture that they stand for.
template <typename Kind>
void checkReplacing(Pixels (*pixelsOf)(QSize, unsigned), QImage (*pictureOf)(const Pixels&))
{
    const Store store = makeStore();
    unsigned seed = 0;
    forManyCases([&](const Case& which) {
        Pixels pixels = pixelsOf(which.m_cPicture, ++seed);
        QImage canvas = noise(which.m_cCanvas);
        optionFor<Kind>(which, pixels)->draw(&canvas, store.get());
        QVERIFY2(sameBytes(canvas, painted(black(which.m_cCanvas), pictureOf(pixels), which.source())),
                 which.text().constData());
    });
}

/// Mode, lapped, mask value, mask colour of an overlay, and the colours that it should show.
struct OverlayCase
{
    int m_nMode, m_nLapped, m_nMaskValue, m_nMaskColour;
    QRgb (*m_pfnColourOf)(unsigned char value);
};

const OverlayCase OverlayCases[] = {
    {1, 0, 0, 0, [](unsigned char value) { return value == 0 ? 0 : qRgb(value, value, value); }},
    {1, 1, 0, 0, [](unsigned char value) { return value == 0 ? 0 : grayPalette()[value]; }},
    {2, 0, 0, 0, [](unsigned char value) { return value == 0 ? 0xFF000000 : 0; }},
    {2, 0, 1, 1, [](unsigned char value) { return value == 0 ? 0 : 0xFFFFFFFF; }},
    {2, 0, 1, 2, [](unsigned char value) { return value == 0 ? 0 : 0xFFFF0000; }},
    {2, 0, 2, 2, [](unsigned char) { return 0xFFFF0000; }},
    {2, 0, 0, 3, [](unsigned char) { return QRgb{0}; }},
};

QByteArray textOf(QSize canvas, QSize picture, const QRectF& part)
{
    return QStringLiteral("canvas %1x%2 picture %3x%4 part %5 %6 %7 %8")
        .arg(canvas.width())
        .arg(canvas.height())
        .arg(picture.width())
        .arg(picture.height())
        .arg(part.x(), 0, 'g', 17)
        .arg(part.y(), 0, 'g', 17)
        .arg(part.width(), 0, 'g', 17)
        .arg(part.height(), 0, 'g', 17)
        .toUtf8();
}

QRectF anyPart(Chance& chance, QSize canvas, QSize picture)
{
    const double width = picture.width();
    const double height = picture.height();
    const QRectF part(chance.real(-width, width), chance.real(-height, height), chance.real(0.1, 2 * width),
                      chance.real(0.1, 2 * height));
    if (chance.oneOf(4))
        return QRectF(int(part.x()), int(part.y()), int(part.width()) + 1, int(part.height()) + 1);
    if (chance.oneOf(4))  // unscaled
        return QRectF(std::floor(part.x()) / (chance.oneOf(2) ? 1 : 2), part.y(), canvas.width(), canvas.height());
    if (chance.oneOf(4))  // unscaled at half pixels
        return QRectF(std::floor(part.x()) / 2, std::floor(part.y()) / 2, canvas.width(), canvas.height());
    return part;
}

const GreyOverlay Blocks{GreyOverlay::Colours::Blocks, 0, false, true};
const GreyOverlay Nothing{GreyOverlay::Colours::OneColour, 0, false, false};

QRgb blockOf(unsigned char value)
{
    return value == 0 ? 0 : grayPalette()[value];
}

}  // namespace

/// Pictures drawn without the painter, against the painter: every byte of the canvas.
class TestDirectDrawing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetViewScales(); }
    void colourPicturesAreDrawnAsThePainterDrawsThem();
    void normalGreyPicturesAreDrawnAsThePainterDrawsThem();
    void overlaysAreDrawnAsThePainterDrawsThem();
    void partsOfEveryKindAreDrawnAsThePainterDrawsThem();
    void picturesThatEndInTheMiddleOfAPixel();
    void fullHdPictureIsDrawnAsThePainterDrawsIt();
    void usualPlacementsNeedNoPainter();
    void extremePlacementsAreLeftToThePainter();
    void halfPixelsOfUnscaledPicturesRoundUpButNotInOverlays();
    void otherCanvasesAreLeftToThePainter();
    void rowsWithPaddingAreClearedToTheirEnd();
    void noByteBehindThePictureIsTouched();
};

void TestDirectDrawing::colourPicturesAreDrawnAsThePainterDrawsThem()
{
    checkReplacing<Drawing::DIBDrawingOpt>(colourPixels, rgbOfColour);
}

void TestDirectDrawing::normalGreyPicturesAreDrawnAsThePainterDrawsThem()
{
    checkReplacing<Drawing::Gray8DrawingOpt>(greyPixels, rgbOfGrey);
}

void TestDirectDrawing::overlaysAreDrawnAsThePainterDrawsThem()
{
    const Store store = makeStore();
    unsigned seed = 0;
    forManyCases([&](const Case& which) {
        Pixels pixels = greyPixels(which.m_cPicture, ++seed);
        const OverlayCase& overlay = OverlayCases[seed % std::size(OverlayCases)];
        const auto option = optionFor<Drawing::Gray8DrawingOpt>(which, pixels);
        option->setDrawMode(overlay.m_nMode);
        option->setLapped(overlay.m_nLapped);
        option->setMaskVal(overlay.m_nMaskValue);
        option->setMaskColor(overlay.m_nMaskColour);
        QImage canvas = noise(which.m_cCanvas);
        option->draw(&canvas, store.get());
        const QImage expected =
            painted(noise(which.m_cCanvas), argbOfGrey(pixels, overlay.m_pfnColourOf), which.source());
        QVERIFY2(sameBytes(canvas, expected),
                 which.text() + " overlay " + QByteArray::number(int(seed % std::size(OverlayCases))));
    });
}

void TestDirectDrawing::partsOfEveryKindAreDrawnAsThePainterDrawsThem()
{
    Chance chance(5);
    int drawn = 0;
    for (unsigned i = 1; i <= 300; ++i) {
        const QSize size = chance.size();
        const QSize picture = chance.size();
        const QRectF part = anyPart(chance, size, picture);
        const Pixels pixels = greyPixels(picture, i);
        const QImage grey(pixels.m_vecBytes.data(), picture.width(), picture.height(), pixels.m_nStride,
                          QImage::Format_Grayscale8);
        QImage over = noise(size);
        if (DirectDrawing::overlay(over, grey, part, Blocks)) {
            ++drawn;
            QVERIFY2(sameBytes(over, painted(noise(size), argbOfGrey(pixels, blockOf), part)),
                     textOf(size, picture, part));
        } else {
            QVERIFY(sameBytes(over, noise(size)));
        }
        const QImage rgb = rgbOfColour(colourPixels(picture, i));
        for (const QImage& given : {rgb, rgb.convertToFormat(QImage::Format_BGR888)}) {
            QImage canvas = noise(size);
            const bool isDrawn = DirectDrawing::replace(canvas, given, part);
            QVERIFY2(sameBytes(canvas, isDrawn ? painted(black(size), rgb, part) : noise(size)),
                     textOf(size, picture, part));
        }
    }
    QVERIFY2(drawn > 90, QByteArray::number(drawn));
}

void TestDirectDrawing::picturesThatEndInTheMiddleOfAPixel()
{
    // Whether the painter shows that pixel depends on both sides of the canvas.
    struct
    {
        QSize m_cCanvas, m_cPicture;
        QRectF m_cPart;
    } const rows[] = {
        {{100, 57}, {25, 7}, {0, -3.625, 25, 14.25}}, {{148, 3}, {4, 6}, {-3, 3, 8, 7}},
        {{52, 381}, {4, 3}, {0, -1, 5, 6}},           {{23, 6}, {93, 7}, {-69, -1, 95, 12}},
        {{102, 3}, {2, 68}, {-1, -48, 4, 80}},        {{217, 16}, {50, 71}, {-2, -46, 28, 133}},
        {{30, 111}, {30, 32}, {11, -20, 76, 109}},    {{96, 38}, {9, 41}, {-13, -3, 66, 176}},
        {{11, 67}, {51, 43}, {5.5, -7.75, 11, 29.5}},  // begins there, and is scaled downwards only
    };
    for (const auto& row : rows) {
        const QImage rgb = rgbOfColour(colourPixels(row.m_cPicture, 6));
        QImage canvas = noise(row.m_cCanvas);
        const bool isDrawn = DirectDrawing::replace(canvas, rgb, row.m_cPart);
        QVERIFY2(sameBytes(canvas, isDrawn ? painted(black(row.m_cCanvas), rgb, row.m_cPart) : noise(row.m_cCanvas)),
                 textOf(row.m_cCanvas, row.m_cPicture, row.m_cPart));
    }
}

void TestDirectDrawing::fullHdPictureIsDrawnAsThePainterDrawsIt()
{
    const Pixels pixels = colourPixels({1920, 1080}, 3);
    const QImage rgb = rgbOfColour(pixels);
    for (const QSize size :
         {QSize(960, 540), QSize(959, 539), QSize(1201, 700), QSize(2300, 300), QSize(640, 1081), QSize(960, 541)}) {
        for (int placement = 0; placement < 8; ++placement) {
            const QRectF part = sourceOf(placement / 2, placement % 2, size, rgb.size());
            QImage canvas = noise(size);
            QVERIFY(DirectDrawing::replace(canvas, rgb, part));
            QVERIFY(sameBytes(canvas, painted(black(size), rgb, part)));
        }
    }
}

void TestDirectDrawing::usualPlacementsNeedNoPainter()
{
    const QSize pictures[] = {{640, 480}, {1920, 1080}, {4096, 3000}, {101, 77}};
    const QSize canvases[] = {{960, 540}, {321, 243}, {1919, 1001}};
    for (const QSize picture : pictures) {
        const Pixels pixels = greyPixels(picture, 1);
        const QImage grey(pixels.m_vecBytes.data(), picture.width(), picture.height(), pixels.m_nStride,
                          QImage::Format_Grayscale8);
        for (const QSize size : canvases) {
            for (int placement = 0; placement < 8; ++placement) {
                const QRectF part = sourceOf(placement / 2, placement % 2, size, picture);
                QImage canvas = black(size);
                QVERIFY(DirectDrawing::replace(canvas, grey, part));
                QVERIFY(DirectDrawing::overlay(canvas, grey, part, Blocks));
                QVERIFY(DirectDrawing::overlay(canvas, grey, part, Nothing));
            }
        }
    }
}

void TestDirectDrawing::extremePlacementsAreLeftToThePainter()
{
    struct
    {
        QSize m_cCanvas, m_cPicture;
        QRectF m_cPart;
    } const rows[] = {
        {{10, 10}, {1000, 10}, {0, 0, 1000, 10}},  // shrunk a hundred times
        {{10, 10}, {10, 1000}, {0, 0, 10, 1000}},
        {{1000, 10}, {10, 10}, {0, 0, 5, 10}},  // grown two hundred times
        {{10, 1000}, {10, 10}, {0, 0, 10, 5}},
        {{20, 20}, {5, 5}, {1, 1, 2, 2}},              // two pixels each way
        {{20, 20}, {5, 5}, {3, 3, 6, 6}},              // the last two each way
        {{20, 20}, {5, 5}, {-1, -1, 2, 2}},            // one pixel
        {{20, 20}, {5, 5}, {6, 0, 5, 5}},              // beside the picture
        {{1000, 10}, {20000, 10}, {0, 0, 20000, 10}},  // a long side, scaled
    };
    for (const auto& row : rows) {
        QImage picture(row.m_cPicture, QImage::Format_Grayscale8);
        picture.fill(9);
        QImage canvas = noise(row.m_cCanvas);
        QVERIFY(!DirectDrawing::replace(canvas, picture, row.m_cPart));
        QVERIFY(!DirectDrawing::overlay(canvas, picture, row.m_cPart, Blocks));
        QVERIFY(sameBytes(canvas, noise(row.m_cCanvas)));
    }
}

void TestDirectDrawing::halfPixelsOfUnscaledPicturesRoundUpButNotInOverlays()
{
    const Store store = makeStore();
    // As wide as the canvas and five rows higher: fitted to the width, the canvas begins at row 2.5.
    Bytes grey;
    for (unsigned char value : {10, 20, 30, 40, 50, 60, 70, 80, 90})
        grey.insert(grey.end(), 4, value);
    Drawing::Gray8DrawingOpt option(1, grey.data(), 4, 9);
    option.setScaleType(1);
    QImage canvas = black({4, 4});

    option.draw(&canvas, store.get());
    QCOMPARE(qRed(canvas.pixel(0, 0)), 40);
    QCOMPARE(qRed(canvas.pixel(0, 3)), 70);

    option.setDrawMode(1);
    option.draw(&canvas, store.get());
    QCOMPARE(qRed(canvas.pixel(0, 0)), 30);
    QCOMPARE(qRed(canvas.pixel(0, 3)), 60);
}

void TestDirectDrawing::otherCanvasesAreLeftToThePainter()
{
    const Pixels pixels = colourPixels({31, 21}, 4);
    const QImage rgb = rgbOfColour(pixels);
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_BGR888}) {
        QImage canvas(20, 20, format);
        canvas.fill(Qt::red);
        const QImage before = canvas.copy();
        QVERIFY(!DirectDrawing::replace(canvas, rgb, QRectF(0, 0, 31, 21)));
        QCOMPARE(canvas, before);
    }
    QImage dense = noise({20, 20});
    dense.setDevicePixelRatio(2);
    QVERIFY(!DirectDrawing::replace(dense, rgb, QRectF(0, 0, 31, 21)));
}

void TestDirectDrawing::rowsWithPaddingAreClearedToTheirEnd()
{
    const QImage picture = noise({9, 9});
    QImage canvas = noise({5, 5});
    QVERIFY(DirectDrawing::replace(canvas, picture, QRectF(0, 0, 9, 9)));
    for (int y = 0; y < 5; ++y)
        QCOMPARE(static_cast<int>(canvas.constScanLine(y)[15]), 0);
}

void TestDirectDrawing::noByteBehindThePictureIsTouched()
{
    const GuardedPage page;
    const QImage grey(page.last(33 * 21), 33, 21, 33, QImage::Format_Grayscale8);
    const QImage rgb(page.last(36 * 21), 12, 21, 36, QImage::Format_RGB888);
    const QImage bgr(page.last(36 * 21), 12, 21, 36, QImage::Format_BGR888);
    for (const QSize size : {QSize(33, 21), QSize(12, 21), QSize(20, 15), QSize(70, 50)}) {
        QImage canvas = noise(size);
        for (const QImage& picture : {rgb, bgr, grey})
            QVERIFY(DirectDrawing::replace(canvas, picture, picture.rect()));
        for (const auto colours :
             {GreyOverlay::Colours::Greys, GreyOverlay::Colours::Blocks, GreyOverlay::Colours::OneColour})
            QVERIFY(DirectDrawing::overlay(canvas, grey, grey.rect(), {colours, 0xFFFFFFFF, false, true}));
        QVERIFY(sameBytes(canvas, black(size)));
    }
}

QTEST_MAIN(TestDirectDrawing)
#include "testDirectDrawing.moc"
