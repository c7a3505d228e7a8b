#include "drawing/imageDrawingOpt.h"
#include "drawingSupport.h"

#include <QtTest>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <memory>

using namespace DrawingSupport;

namespace {

/// What a placement should do: the picture place of the canvas' corner, and picture pixels to one canvas pixel.
struct Sampling
{
    double m_fX, m_fY, m_fStepX, m_fStepY;
};

using Entry = QVector<float>;  // scale x, scale y, offset x, offset y

Entry entryOf(std::size_t view)
{
    const Drawing::ViewScaleOpt& entry = Drawing::s_acVSO[view];
    return {entry.m_fScaleX, entry.m_fScaleY, static_cast<float>(entry.m_nOffsetX),
            static_cast<float>(entry.m_nOffsetY)};
}

/// Nearest neighbour onto what the canvas showed before; transparent pixels and places outside leave it.
QImage sampled(const QImage& before, const QImage& picture, const Sampling& sampling)
{
    QImage result = before;
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const int px = static_cast<int>(std::floor(sampling.m_fX + (x + 0.5) * sampling.m_fStepX));
            const int py = static_cast<int>(std::floor(sampling.m_fY + (y + 0.5) * sampling.m_fStepY));
            if (picture.valid(px, py) && qAlpha(picture.pixel(px, py)) == 255)
                result.setPixel(x, y, picture.pixel(px, py));
        }
    }
    return result;
}

QRgb colourAt(int x, int y)
{
    return qRgb((x * 37 + y * 11) & 255, (x * 5 + y * 83) & 255, (x * 101 + y * 7 + 50) & 255);
}

unsigned char greyAt(int x, int y)
{
    return static_cast<unsigned char>((x * 41 + y * 23) % 7 == 0 ? 0 : (x * 53 + y * 29) & 255);
}

template <typename PixelAt>
QImage pictureOf(int width, int height, PixelAt pixelAt)
{
    QImage picture(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, pixelAt(x, y));
    }
    return picture;
}

/// Blue, green, red, rows padded to multiples of four bytes; the padding holds a value that must not show.
void fillColour(ParamDIB& record, int width, int height)
{
    record.resize(width, height);
    const int stride = (3 * width + 3) / 4 * 4;
    std::memset(record.getDIB(), 0xEE, static_cast<std::size_t>(stride * height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            unsigned char* pixel = record.getDIB() + y * stride + x * 3;
            const QRgb color = colourAt(x, y);
            pixel[0] = static_cast<unsigned char>(qBlue(color));
            pixel[1] = static_cast<unsigned char>(qGreen(color));
            pixel[2] = static_cast<unsigned char>(qRed(color));
        }
    }
}

void fillGrey(ParamGray8& record, int width, int height)
{
    record.resize(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            record.getGray8()[y * width + x] = greyAt(x, y);
    }
}

QImage pattern(int width, int height)
{
    QImage canvas(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            canvas.setPixel(x, y, qRgb(200 + x % 50, 100 + y % 50, (x + y) % 2));
    }
    return canvas;
}

std::unique_ptr<Drawing::Gray8DrawingOpt> greyOption(int width, int height, int mode)
{
    const Store store = makeStore();
    fillGrey(*store->getParamGray8(1), width, height);
    auto option = std::make_unique<Drawing::Gray8DrawingOpt>(1, store->getParamGray8(1)->getGray8(), width, height);
    option->setDrawMode(mode);
    return option;
}

std::unique_ptr<Drawing::DIBDrawingOpt> colourOption(int width, int height)
{
    const Store store = makeStore();
    fillColour(*store->getParamDIB(1), width, height);
    return std::make_unique<Drawing::DIBDrawingOpt>(1, store->getParamDIB(1)->getDIB(), width, height);
}

}  // namespace

Q_DECLARE_METATYPE(Sampling)

/// Every pixel of every kind of picture in every mode and placement, against a nearest neighbour model of its own.
class TestDrawingImages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetViewScales(); }
    void placement_data();
    void placement();
    void placementOfOverlaysAndMasks_data() { placement_data(); }
    void placementOfOverlaysAndMasks();
    void halvedPicturesTakeOneOfTheTwoMiddlePixels_data();
    void halvedPicturesTakeOneOfTheTwoMiddlePixels();
    void unknownScaleTypeOfANormalPictureOnlyClears();
    void unknownScaleTypeOfAnOverlayLeavesTheCanvas();
    void lastPixelOfANormalGreyPictureStaysBlack();
    void lastPixelIsThereAgainWhenTheOptionBecomesAnOverlay();
    void overlayShowsGreyAndKeepsTheCanvasAtZero();
    void overlayShowsPaletteColoursWhenLapped();
    void mask_data();
    void mask();
    void unknownDrawModeDrawsNothing();
    void gray16DrawsNothing();
    void secondDrawOfAColourPictureExchangesRedAndBlue();
    void optionKeepsItsPixelsWhenTheRecordChanges();
    void colourAndGreyEntriesDifferWhenScaledToTheWindow();
    void centrePartOfAGreyPictureAndAPointOnIt();
    void nothingHappensWithoutCanvasOrStore();
    void emptyCanvasIsLeftAlone();
    void missingPixelsDrawNothing();
    void viewOutsideTheTableDrawsAndRecordsNothing();

private:
    Store m_cStore = makeStore();
};

void TestDrawingImages::placement_data()
{
    QTest::addColumn<int>("scale");
    QTest::addColumn<int>("align");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("canvas");
    QTest::addColumn<Sampling>("sampling");
    QTest::addColumn<Entry>("colourEntry");
    QTest::addColumn<Entry>("greyEntry");
    const auto row = [](const char* name, int scale, int align, QSize picture, QSize canvas, Sampling sampling,
                        const Entry& entry, const Entry& greyEntry = {}) {
        QTest::newRow(name) << scale << align << picture << canvas << sampling << entry
                            << (greyEntry.isEmpty() ? entry : greyEntry);
    };
    row("actual, centred, smaller canvas", 0, 0, {64, 48}, {32, 24}, {16, 12, 1, 1}, {1, 1, 16, 12});
    row("actual, centred, larger canvas", 0, 0, {11, 7}, {20, 16}, {-5, -5, 1, 1}, {1, 1, -5, -5});
    row("actual, centred, integer halves", 0, 0, {13, 9}, {7, 5}, {3, 2, 1, 1}, {1, 1, 3, 2});
    row("actual, centred, wider but lower", 0, 0, {31, 4}, {10, 9}, {10, -2, 1, 1}, {1, 1, 10, -2});
    row("actual, origin", 0, 1, {13, 9}, {7, 5}, {0, 0, 1, 1}, {1, 1, 0, 0});
    row("actual, origin, larger canvas", 0, 1, {13, 9}, {21, 17}, {0, 0, 1, 1}, {1, 1, 0, 0});
    row("actual, any other alignment", 0, -3, {13, 9}, {7, 5}, {0, 0, 1, 1}, {1, 1, 0, 0});
    row("fit width, shrunk", 1, 0, {90, 70}, {50, 40}, {0, -1, 1.8, 1.8}, {1.8F, 1.8F, 0, -1});
    row("fit width, enlarged", 1, 0, {60, 40}, {100, 100}, {0, -10, 0.6, 0.6}, {0.6F, 0.6F, 0, -10});
    row("fit width, odd sizes", 1, 0, {37, 23}, {15, 21}, {0, 11.5 - 10.5 * 37 / 15, 37.0 / 15, 37.0 / 15},
        {37.0F / 15.0F, 37.0F / 15.0F, 0, -14});
    row("fit width ignores the alignment", 1, 1, {60, 40}, {100, 100}, {0, -10, 0.6, 0.6}, {0.6F, 0.6F, 0, -10});
    row("fit width, cut at top and bottom", 1, 0, {36, 70}, {20, 10}, {0, 26, 1.8, 1.8}, {1.8F, 1.8F, 0, 26});
    row("fit height, shrunk", 2, 0, {64, 50}, {30, 40}, {13.25, 0, 1.25, 1.25}, {1.25F, 1.25F, 13, 0});
    row("fit height, enlarged", 2, 1, {21, 9}, {40, 24}, {3, 0, 0.375, 0.375}, {0.375F, 0.375F, 3, 0});
    row("fit height, bands left and right", 2, 0, {9, 21}, {40, 12}, {-30.5, 0, 1.75, 1.75}, {1.75F, 1.75F, -30, 0});
    row("to window, stretched", 3, 0, {37, 23}, {64, 10}, {0, 0, 37.0 / 64, 2.3}, {0, 2, 0, 0},
        {37.0F / 64.0F, 2.3F, 0, 0});
    row("to window, shrunk", 3, 1, {91, 55}, {50, 40}, {0, 0, 1.82, 1.375}, {1, 1, 0, 0}, {1.82F, 1.375F, 0, 0});
    row("to window, one pixel", 3, 0, {1, 1}, {3, 5}, {0, 0, 1.0 / 3, 0.2}, {0, 0, 0, 0}, {1.0F / 3.0F, 0.2F, 0, 0});
    row("to window, one wide", 3, 0, {1, 9}, {5, 9}, {0, 0, 0.2, 1}, {0, 1, 0, 0}, {0.2F, 1, 0, 0});
}

void TestDrawingImages::placement()
{
    QFETCH(int, scale);
    QFETCH(int, align);
    QFETCH(QSize, picture);
    QFETCH(QSize, canvas);
    QFETCH(Sampling, sampling);
    QFETCH(Entry, colourEntry);
    QFETCH(Entry, greyEntry);
    const QImage black = filledCanvas(canvas.width(), canvas.height(), 0xFF000000);

    QImage shown = pattern(canvas.width(), canvas.height());
    const auto colour = colourOption(picture.width(), picture.height());
    colour->setScaleType(scale);
    colour->setAlignType(align);
    colour->setViewID(2);
    colour->draw(&shown, m_cStore.get());
    QCOMPARE(difference(shown, sampled(black, pictureOf(picture.width(), picture.height(), colourAt), sampling)),
             QString());
    QCOMPARE(entryOf(2), colourEntry);

    shown = pattern(canvas.width(), canvas.height());
    const auto grey = greyOption(picture.width(), picture.height(), 0);
    grey->setScaleType(scale);
    grey->setAlignType(align);
    grey->setViewID(5);
    grey->draw(&shown, m_cStore.get());
    QImage expected = pictureOf(picture.width(), picture.height(),
                                [](int x, int y) { return qRgb(greyAt(x, y), greyAt(x, y), greyAt(x, y)); });
    expected.setPixel(picture.width() - 1, picture.height() - 1, 0xFF000000);
    QCOMPARE(difference(shown, sampled(black, expected, sampling)), QString());
    QCOMPARE(entryOf(5), greyEntry);
    QCOMPARE(entryOf(0), (Entry{1, 1, 0, 0}));
}

void TestDrawingImages::placementOfOverlaysAndMasks()
{
    QFETCH(int, scale);
    QFETCH(int, align);
    QFETCH(QSize, picture);
    QFETCH(QSize, canvas);
    QFETCH(Sampling, sampling);
    QFETCH(Entry, greyEntry);
    const QImage before = pattern(canvas.width(), canvas.height());
    for (const int mode : {1, 2}) {
        QImage shown = before;
        const auto option = greyOption(picture.width(), picture.height(), mode);
        option->setScaleType(scale);
        option->setAlignType(align);
        option->setMaskVal(1);
        option->setMaskColor(2);
        option->setViewID(4);

        option->draw(&shown, m_cStore.get());

        const QImage expected = pictureOf(picture.width(), picture.height(), [mode](int x, int y) {
            const int value = greyAt(x, y);
            if (value == 0)
                return 0U;
            return mode == 2 ? 0xFFFF0000U : qRgb(value, value, value);
        });
        QCOMPARE(difference(shown, sampled(before, expected, sampling)), QString());
        QCOMPARE(entryOf(4), greyEntry);
    }
}

void TestDrawingImages::halvedPicturesTakeOneOfTheTwoMiddlePixels_data()
{
    QTest::addColumn<int>("scale");
    QTest::newRow("fit width") << 1;
    QTest::newRow("fit height") << 2;
    QTest::newRow("to window") << 3;
}

// The middle of each canvas pixel lies exactly between two picture pixels.
void TestDrawingImages::halvedPicturesTakeOneOfTheTwoMiddlePixels()
{
    QFETCH(int, scale);
    QImage canvas = pattern(32, 24);
    const auto option = colourOption(64, 48);
    option->setScaleType(scale);

    option->draw(&canvas, m_cStore.get());

    for (int y = 0; y < 24; ++y) {
        for (int x = 0; x < 32; ++x) {
            const QRgb is = canvas.pixel(x, y);
            const bool near = is == colourAt(2 * x, 2 * y) || is == colourAt(2 * x + 1, 2 * y) ||
                              is == colourAt(2 * x, 2 * y + 1) || is == colourAt(2 * x + 1, 2 * y + 1);
            QVERIFY2(near, qPrintable(QString::asprintf("(%d, %d)", x, y)));
        }
    }
}

void TestDrawingImages::unknownScaleTypeOfANormalPictureOnlyClears()
{
    const QImage black = filledCanvas(9, 9, 0xFF000000);
    for (const int scale : {4, -1}) {
        QImage canvas = pattern(9, 9);
        const auto colour = colourOption(5, 5);
        colour->setScaleType(scale);
        colour->draw(&canvas, m_cStore.get());
        QCOMPARE(difference(canvas, black), QString());

        canvas = pattern(9, 9);
        const auto grey = greyOption(5, 5, 0);
        grey->setScaleType(scale);
        grey->draw(&canvas, m_cStore.get());
        QCOMPARE(difference(canvas, black), QString());
        QCOMPARE(entryOf(0), (Entry{1, 1, 0, 0}));
    }
}

void TestDrawingImages::unknownScaleTypeOfAnOverlayLeavesTheCanvas()
{
    for (const int mode : {1, 2}) {
        QImage canvas = pattern(9, 9);
        const auto grey = greyOption(5, 5, mode);
        grey->setScaleType(9);

        grey->draw(&canvas, m_cStore.get());

        QCOMPARE(difference(canvas, pattern(9, 9)), QString());
    }
}

void TestDrawingImages::lastPixelOfANormalGreyPictureStaysBlack()
{
    unsigned char white[] = {255, 255, 255, 255, 255, 255};
    Drawing::Gray8DrawingOpt option(1, white, 3, 2);
    option.setAlignType(1);
    QImage canvas = pattern(3, 2);

    option.draw(&canvas, m_cStore.get());

    QImage expected = filledCanvas(3, 2, 0xFFFFFFFF);
    expected.setPixel(2, 1, 0xFF000000);
    QCOMPARE(difference(canvas, expected), QString());
}

void TestDrawingImages::lastPixelIsThereAgainWhenTheOptionBecomesAnOverlay()
{
    unsigned char white[] = {255, 255, 255, 255, 255, 255};
    Drawing::Gray8DrawingOpt option(1, white, 3, 2);
    QImage canvas = pattern(3, 2);
    option.draw(&canvas, m_cStore.get());
    option.setDrawMode(1);

    option.draw(&canvas, m_cStore.get());

    QCOMPARE(difference(canvas, filledCanvas(3, 2, 0xFFFFFFFF)), QString());
}

void TestDrawingImages::overlayShowsGreyAndKeepsTheCanvasAtZero()
{
    const auto option = greyOption(37, 23, 1);
    option->setScaleType(3);
    QImage canvas = pattern(21, 17);

    option->draw(&canvas, m_cStore.get());

    const QImage picture = pictureOf(
        37, 23, [](int x, int y) { return greyAt(x, y) == 0 ? 0U : qRgb(greyAt(x, y), greyAt(x, y), greyAt(x, y)); });
    QCOMPARE(difference(canvas, sampled(pattern(21, 17), picture, {0, 0, 37.0 / 21, 23.0 / 17})), QString());
    QCOMPARE(entryOf(0), (Entry{37.0F / 21.0F, 23.0F / 17.0F, 0, 0}));
}

void TestDrawingImages::overlayShowsPaletteColoursWhenLapped()
{
    unsigned char values[] = {0, 1, 2, 255};
    for (const int lapped : {1, -4}) {
        Drawing::Gray8DrawingOpt option(1, values, 4, 1);
        option.setAlignType(1);
        option.setDrawMode(1);
        option.setLapped(lapped);
        QImage canvas = filledCanvas(4, 1, 0xFF010203);

        option.draw(&canvas, m_cStore.get());

        QCOMPARE(canvas.pixel(0, 0), 0xFF010203U);
        QCOMPARE(canvas.pixel(1, 0), 0xFFFFFFFFU);
        QCOMPARE(canvas.pixel(2, 0), 0xFF330000U);
        QCOMPARE(canvas.pixel(3, 0), 0xFF9938A8U);
    }
}

void TestDrawingImages::mask_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("color");
    QTest::addColumn<QRgb>("ofZero");  // 0: the canvas shows
    QTest::addColumn<QRgb>("ofOthers");
    QTest::newRow("zeroes, black") << 0 << 0 << 0xFF000000U << 0U;
    QTest::newRow("zeroes, white") << 0 << 1 << 0xFFFFFFFFU << 0U;
    QTest::newRow("others, red") << 1 << 2 << 0U << 0xFFFF0000U;
    QTest::newRow("others, black") << 1 << 0 << 0U << 0xFF000000U;
    QTest::newRow("any other value masks all") << 2 << 2 << 0xFFFF0000U << 0xFFFF0000U;
    QTest::newRow("a negative value masks all") << -1 << 1 << 0xFFFFFFFFU << 0xFFFFFFFFU;
    QTest::newRow("colour 3 is not visible") << 0 << 3 << 0U << 0U;
    QTest::newRow("colour -1 is not visible, all masked") << 7 << -1 << 0U << 0U;
}

void TestDrawingImages::mask()
{
    QFETCH(int, value);
    QFETCH(int, color);
    QFETCH(QRgb, ofZero);
    QFETCH(QRgb, ofOthers);
    const auto option = greyOption(15, 11, 2);
    option->setMaskVal(value);
    option->setMaskColor(color);
    QImage canvas = pattern(20, 8);

    option->draw(&canvas, m_cStore.get());

    const QImage picture = pictureOf(15, 11, [=](int x, int y) { return greyAt(x, y) == 0 ? ofZero : ofOthers; });
    QCOMPARE(difference(canvas, sampled(pattern(20, 8), picture, {-3, 1, 1, 1})), QString());
    QCOMPARE(entryOf(0), (Entry{1, 1, -3, 1}));
}

void TestDrawingImages::unknownDrawModeDrawsNothing()
{
    for (const int mode : {3, -1}) {
        QImage canvas = pattern(9, 9);
        greyOption(15, 11, mode)->draw(&canvas, m_cStore.get());
        QCOMPARE(difference(canvas, pattern(9, 9)), QString());
        QCOMPARE(entryOf(0), (Entry{1, 1, 0, 0}));
    }
}

void TestDrawingImages::gray16DrawsNothing()
{
    const std::uint16_t samples[] = {1, 2, 65535, 4};
    Drawing::Gray16DrawingOpt option(1, samples, 2, 2);
    QImage canvas = pattern(9, 9);

    option.draw(&canvas, m_cStore.get());

    QCOMPARE(difference(canvas, pattern(9, 9)), QString());
    QCOMPARE(entryOf(0), (Entry{1, 1, 0, 0}));
}

void TestDrawingImages::secondDrawOfAColourPictureExchangesRedAndBlue()
{
    unsigned char red[] = {0, 0, 255, 0};
    Drawing::DIBDrawingOpt option(1, red, 1, 1);
    QImage canvas = filledCanvas(1, 1, 0xFF000000);

    option.draw(&canvas, m_cStore.get());
    QCOMPARE(canvas.pixel(0, 0), 0xFFFF0000U);
    option.draw(&canvas, m_cStore.get());
    QCOMPARE(canvas.pixel(0, 0), 0xFF0000FFU);
    QCOMPARE(red[2], static_cast<unsigned char>(255));  // the record's own pixels are never touched
}

void TestDrawingImages::optionKeepsItsPixelsWhenTheRecordChanges()
{
    const Store store = makeStore();
    store->getParamGray8(3)->resize(2, 1);
    std::memset(store->getParamGray8(3)->getGray8(), 77, 2);
    const Option option = parse("<DataType>1</DataType><DataID>3</DataID>", store.get());
    std::memset(store->getParamGray8(3)->getGray8(), 200, 2);
    store->getParamGray8(3)->resize(50, 50);
    QImage canvas = filledCanvas(2, 1, 0xFF000000);

    option->draw(&canvas, store.get());

    QCOMPARE(canvas.pixel(0, 0), qRgb(77, 77, 77));
}

void TestDrawingImages::colourAndGreyEntriesDifferWhenScaledToTheWindow()
{
    QImage canvas = pattern(500, 400);
    const auto colour = colourOption(640, 480);
    colour->setScaleType(3);
    colour->draw(&canvas, m_cStore.get());
    QCOMPARE(entryOf(0), (Entry{1, 1, 0, 0}));

    const auto grey = greyOption(640, 480, 0);
    grey->setScaleType(3);
    grey->draw(&canvas, m_cStore.get());
    QCOMPARE(entryOf(0), (Entry{1.28F, 1.2F, 0, 0}));
}

void TestDrawingImages::centrePartOfAGreyPictureAndAPointOnIt()
{
    const Store store = makeStore();
    fillGrey(*store->getParamGray8(1), 640, 480);
    store->getParamPoints(2)->append({160, 120});
    QImage canvas = pattern(320, 240);

    parse("<DataType>1</DataType><DataID>1</DataID>", store.get())->draw(&canvas, store.get());
    QCOMPARE(entryOf(0), (Entry{1, 1, 160, 120}));
    QCOMPARE(qRed(canvas.pixel(1, 0)), static_cast<int>(greyAt(161, 120)));
    QCOMPARE(qRed(canvas.pixel(319, 239)), static_cast<int>(greyAt(479, 359)));

    parse("<DataType>3</DataType><DataID>2</DataID><Config><Color>-65536</Color></Config>", store.get())
        ->draw(&canvas, store.get());
    QCOMPARE(canvas.pixel(0, 0), 0xFFFF0000U);
}

void TestDrawingImages::nothingHappensWithoutCanvasOrStore()
{
    QImage canvas = pattern(9, 9);
    for (const int mode : {0, 1, 2}) {
        greyOption(5, 5, mode)->draw(&canvas, nullptr);
        greyOption(5, 5, mode)->draw(nullptr, m_cStore.get());
    }
    colourOption(5, 5)->draw(&canvas, nullptr);
    colourOption(5, 5)->draw(nullptr, m_cStore.get());

    QCOMPARE(difference(canvas, pattern(9, 9)), QString());
    QCOMPARE(entryOf(0), (Entry{1, 1, 0, 0}));
}

void TestDrawingImages::emptyCanvasIsLeftAlone()
{
    const WarningCounter warnings;
    QImage canvas(0, 0, QImage::Format_RGB888);
    for (const int scale : {0, 1, 2, 3}) {
        const auto colour = colourOption(5, 5);
        colour->setScaleType(scale);
        colour->draw(&canvas, m_cStore.get());
        const auto grey = greyOption(5, 5, 1);
        grey->setScaleType(scale);
        grey->draw(&canvas, m_cStore.get());
    }

    QCOMPARE(entryOf(0), (Entry{1, 1, 0, 0}));
    QCOMPARE(warnings.count(), 0);
}

void TestDrawingImages::missingPixelsDrawNothing()
{
    unsigned char pixel[] = {1, 2, 3, 4};
    const QImage before = pattern(9, 9);
    QImage canvas = before;

    Drawing::DIBDrawingOpt(1, nullptr, 5, 5).draw(&canvas, m_cStore.get());
    Drawing::DIBDrawingOpt(1, pixel, 0, 5).draw(&canvas, m_cStore.get());
    Drawing::DIBDrawingOpt(1, pixel, 5, -1).draw(&canvas, m_cStore.get());
    Drawing::Gray8DrawingOpt(1, nullptr, 5, 5).draw(&canvas, m_cStore.get());
    Drawing::Gray8DrawingOpt(1, pixel, -1, 1).draw(&canvas, m_cStore.get());

    QCOMPARE(difference(canvas, before), QString());
}

void TestDrawingImages::viewOutsideTheTableDrawsAndRecordsNothing()
{
    for (const int view : {6, -1}) {
        QImage canvas = pattern(4, 4);
        const auto colour = colourOption(8, 8);
        colour->setViewID(view);

        colour->draw(&canvas, m_cStore.get());

        QCOMPARE(canvas.pixel(0, 0), colourAt(2, 2));
        for (std::size_t known = 0; known < 6; ++known)
            QCOMPARE(entryOf(known), (Entry{1, 1, 0, 0}));
    }
}

QTEST_MAIN(TestDrawingImages)
#include "testDrawingImages.moc"
