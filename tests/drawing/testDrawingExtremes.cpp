#include "drawing/imageDrawingOpt.h"
#include "drawing/imagePlacement.h"
#include "drawing/shapeDrawingOpt.h"
#include "drawing/viewScaleOpt.h"
#include "drawingSupport.h"
#include "memoryLimit.h"

#include <QtTest>

#include <cstring>
#include <limits>
#include <memory>
#include <vector>

using namespace DrawingSupport;

namespace {

constexpr int Largest = std::numeric_limits<int>::max();
constexpr int Smallest = std::numeric_limits<int>::min();
constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();

QVector<Drawing::ViewScaleOpt> extremeEntries()
{
    return {{0.0F, 0.0F, 0, 0},
            {0.0F, 2.0F, Largest, Smallest},
            {1e-30F, 1e30F, Smallest, Largest},
            {Infinity, NotANumber, 5, 5},
            {-1.0F, -0.0F, -5, 5},
            {1.0F, 1.0F, Smallest, Smallest},
            {1.0F, 1.0F, 0, 0}};
}

}  // namespace

/// Numbers at the ends of their ranges are saturated: nothing crashes, warns, hangs or is undefined.
class TestDrawingExtremes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void saturation_data();
    void saturation();
    void mapping_data();
    void mapping();
    void pictureCoordinatesAreSaturated();
    void shapesFarOutsideDrawNothingHarmful();
    void lineAcrossTheWholeRangeCrossesTheCanvas();
    void textFarOutsideDoesNotComeBackOnTheOtherSide();
    void hugeFontsAndPensAreDrawn();
    void integerQuotientZeroSaturatesTheShapesBehindIt();
    void placementOfExtremeSizes();
    void pictureWiderThanTheRasterisersNumbers();
    void overlayThatMemoryDoesNotSufficeForIsLeftOut();

private:
    std::unique_ptr<WarningCounter> m_pcWarnings;
};

void TestDrawingExtremes::init()
{
    resetViewScales();
    m_pcWarnings = std::make_unique<WarningCounter>();
}

void TestDrawingExtremes::cleanup()
{
    const int count = m_pcWarnings->count();
    m_pcWarnings.reset();
    QCOMPARE(count, 0);
}

void TestDrawingExtremes::saturation_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("cut") << 2.9F << 2;
    QTest::newRow("cut below zero") << -2.9F << -2;
    QTest::newRow("largest float below the end") << 2147483520.0F << 2147483520;
    QTest::newRow("one above the largest") << 2147483648.0F << Largest;
    QTest::newRow("the smallest") << -2147483648.0F << Smallest;
    QTest::newRow("far above") << 1e30F << Largest;
    QTest::newRow("far below") << -1e30F << Smallest;
    QTest::newRow("infinite") << Infinity << Largest;
    QTest::newRow("infinite below") << -Infinity << Smallest;
    QTest::newRow("not a number") << NotANumber << 0;
}

void TestDrawingExtremes::saturation()
{
    QFETCH(float, value);
    QFETCH(int, expected);

    QCOMPARE(ViewScale::saturated(value), expected);
}

void TestDrawingExtremes::mapping_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<int>("offset");
    QTest::addColumn<float>("scale");
    QTest::addColumn<int>("expected");
    QTest::newRow("plain") << 45 << 5 << 2.0F << 20;
    QTest::newRow("scale 0, right of the offset") << 6 << 5 << 0.0F << Largest;
    QTest::newRow("scale 0, left of the offset") << 4 << 5 << 0.0F << Smallest;
    QTest::newRow("scale 0, at the offset") << 5 << 5 << 0.0F << 0;
    QTest::newRow("scale minus 0") << 6 << 5 << -0.0F << Largest;
    QTest::newRow("difference beyond int") << Largest << Smallest << 1.0F << Largest;
    QTest::newRow("difference beyond int, scaled back") << Largest << Smallest << 4.0F << (1 << 30);
    QTest::newRow("not a number") << 6 << 5 << NotANumber << 0;
    QTest::newRow("infinite") << 6 << 5 << Infinity << 0;
    QTest::newRow("tiny") << -6 << 5 << 1e-38F << Smallest;
}

void TestDrawingExtremes::mapping()
{
    QFETCH(int, place);
    QFETCH(int, offset);
    QFETCH(float, scale);
    QFETCH(int, expected);

    const QPoint mapped = ViewScale::toCanvas(place, place, {scale, scale, offset, offset});

    QCOMPARE(mapped, QPoint(expected, expected));
}

void TestDrawingExtremes::pictureCoordinatesAreSaturated()
{
    QCOMPARE(ViewScale::toPicture(10, 5, 2.0F), 25);
    QCOMPARE(ViewScale::toPicture(Largest, Largest, 1e20F), Largest);
    QCOMPARE(ViewScale::toPicture(-10, Smallest, Infinity), Smallest);
    QCOMPARE(ViewScale::toPicture(0, 0, Infinity), 0);
}

void TestDrawingExtremes::shapesFarOutsideDrawNothingHarmful()
{
    const Store store = makeStore();
    store->getParamPoints(1)->replaceAll({{Largest, Smallest}, {Smallest, Largest}, {5, 5}});
    store->getParamLines(1)->replaceAll(
        {{Smallest, Smallest, Largest, Largest}, {Largest, 5, Smallest, 6}, {Largest, Largest, Largest, Largest}});
    store->getParamPolys(1)->append({{Smallest, Smallest}, {Largest, Smallest}, {Largest, Largest}, {5, Largest}});
    store->getParamAreas(1)->append({0, Smallest, Largest, Smallest, Largest, Largest, Smallest});
    store->getParamAreas(1)->setName(QStringLiteral("name"));
    store->getParamStrings(1)->replaceAll({"a", "b", "c"});
    for (const Drawing::ViewScaleOpt& entry : extremeEntries()) {
        Drawing::s_acVSO[0] = entry;
        for (const int number : {Largest, Smallest, -1, 0, 3}) {
            const QByteArray value = QByteArray::number(number);
            const QByteArray config = "<Size>" + value + "</Size><BorderSize>" + value +
                                      "</BorderSize><DspLen>1</DspLen>"
                                      "<DspArea>1</DspArea><Pos>" +
                                      value + "," + value + "</Pos><FontSize>" +
                                      (number == Largest ? QByteArray("100000") : value) + "</FontSize><Color>" +
                                      value + "</Color>";
            for (const char* dataType : {"3", "4", "5", "6", "7"}) {
                QImage canvas = filledCanvas(40, 30, 0);
                const QByteArray text = QByteArray("<DataType>") + dataType + "</DataType><DataID>1</DataID><Config>" +
                                        config + "</Config>";
                const Option option = parse(text.constData(), store.get());
                option->draw(&canvas, store.get());
                QCOMPARE(canvas.size(), QSize(40, 30));
            }
        }
    }
}

void TestDrawingExtremes::lineAcrossTheWholeRangeCrossesTheCanvas()
{
    const Store store = makeStore();
    store->getParamLines(1)->append({Smallest, 10, Largest, 10});
    for (const int size : {1, 3}) {
        Drawing::LinesDrawingOpt lines(1);
        lines.setSize(size);
        lines.setColor(-1);
        QImage canvas = filledCanvas(40, 30, 0xFF000000);

        lines.draw(&canvas, store.get());

        QImage expected = filledCanvas(40, 30, 0xFF000000);
        for (int y = 10 - size / 2; y <= 10 + size / 2; ++y) {
            for (int x = 0; x < 40; ++x)
                expected.setPixel(x, y, 0xFFFFFFFF);
        }
        QCOMPARE(difference(canvas, expected), QString());
    }
}

void TestDrawingExtremes::textFarOutsideDoesNotComeBackOnTheOtherSide()
{
    const Store store = makeStore();
    store->getParamStrings(1)->append("MMMM");
    // 1 << 26 canvas pixels are 1 << 32 of the 64ths in which glyphs are placed.
    for (const int place : {1 << 26, -(1 << 26), 1 << 27, Largest, Smallest}) {
        Drawing::StringsDrawingOpt strings(1);
        strings.setColor(-1);
        strings.setPos(place, 0);
        QImage canvas = filledCanvas(60, 30, 0xFF000000);

        strings.draw(&canvas, store.get());

        QCOMPARE(difference(canvas, filledCanvas(60, 30, 0xFF000000)), QString());
    }
}

void TestDrawingExtremes::hugeFontsAndPensAreDrawn()
{
    const Store store = makeStore();
    store->getParamStrings(1)->append("M");
    store->getParamLines(1)->append({0, 0, 10, 0});
    Drawing::StringsDrawingOpt strings(1);
    strings.setFontSize(Largest);
    QImage canvas = filledCanvas(40, 30, 0xFF000000);
    strings.draw(&canvas, store.get());
    QCOMPARE(strings.getFontSize(), Largest);
    QCOMPARE(difference(canvas, filledCanvas(40, 30, 0xFF000000)), QString());  // its baseline lies far below

    Drawing::LinesDrawingOpt lines(1);
    lines.setSize(Largest);
    lines.setColor(-1);
    lines.draw(&canvas, store.get());
    QCOMPARE(difference(canvas, filledCanvas(40, 30, 0xFFFFFFFF)), QString());
}

void TestDrawingExtremes::integerQuotientZeroSaturatesTheShapesBehindIt()
{
    const Store store = makeStore();
    store->getParamDIB(1)->resize(10, 10);
    std::memset(store->getParamDIB(1)->getDIB(), 50, 32 * 10);
    store->getParamPoints(1)->replaceAll({{0, 0}, {5, 5}});
    QImage canvas = filledCanvas(40, 30, 0);
    parse("<DataType>0</DataType><DataID>1</DataID><Config><Scale>3</Scale></Config>", store.get())
        ->draw(&canvas, store.get());
    QCOMPARE(Drawing::s_acVSO[0].m_fScaleX, 0.0F);

    parse("<DataType>3</DataType><DataID>1</DataID><Config><Color>-1</Color></Config>", store.get())
        ->draw(&canvas, store.get());

    QImage expected = filledCanvas(40, 30, qRgb(50, 50, 50));
    expected.setPixel(0, 0, 0xFFFFFFFF);
    QCOMPARE(difference(canvas, expected), QString());
}

void TestDrawingExtremes::placementOfExtremeSizes()
{
    for (const QSize canvas : {QSize(0, 0), QSize(0, 5), QSize(5, 0), QSize(-1, 5)}) {
        for (const int scale : {0, 1, 2, 3})
            QVERIFY(!placeImage(scale, 0, canvas, {4, 4}, WindowQuotients::Integer));
    }
    const auto tall = placeImage(1, 0, {1, Largest}, {Largest, 1}, WindowQuotients::Exact);
    QCOMPARE(tall->m_cEntry.m_nOffsetY, Smallest);
    const auto high = placeImage(2, 0, {Largest, 1}, {1, Largest}, WindowQuotients::Exact);
    QCOMPARE(high->m_cEntry.m_nOffsetX, Smallest);
}

void TestDrawingExtremes::pictureWiderThanTheRasterisersNumbers()
{
    const Store store = makeStore();
    store->getParamGray8(1)->resize(100001, 3);
    std::memset(store->getParamGray8(1)->getGray8(), 90, 300003);
    for (const char* scale : {"0", "1", "2", "3"}) {
        for (const char* mode : {"0", "1"}) {
            QImage canvas = filledCanvas(41, 31, 0);
            const QByteArray text = QByteArray("<DataType>1</DataType><DataID>1</DataID><Config><Scale>") + scale +
                                    "</Scale><DrawMode><Val>" + mode + "</Val></DrawMode></Config>";
            parse(text.constData(), store.get())->draw(&canvas, store.get());
            // Fitted to the width it is thinner than one row and need not show.
            QVERIFY2(*scale == '1' || canvas.pixel(20, 15) == qRgb(90, 90, 90), text.constData());
        }
    }
}

void TestDrawingExtremes::overlayThatMemoryDoesNotSufficeForIsLeftOut()
{
    if (!MemoryLimit::works())
        QSKIP("A sanitizer's shadow memory does not fit the limit");
    // Shrunk so much that the painter draws it, which needs four bytes for each of its pixels.
    constexpr int width = 8000;
    constexpr int height = 5000;
    const Store store = makeStore();
    std::vector<unsigned char> grey(std::size_t{width} * height, 200);
    Drawing::Gray8DrawingOpt option(1, grey.data(), width, height);
    option.setScaleType(3);
    option.setDrawMode(1);
    QImage canvas = filledCanvas(50, 50, 0xFF123456);
    {
        const MemoryLimit limit(64U << 20U);
        option.draw(&canvas, store.get());
    }
    QCOMPARE(difference(canvas, filledCanvas(50, 50, 0xFF123456)), QString());

    option.draw(&canvas, store.get());
    QCOMPARE(difference(canvas, filledCanvas(50, 50, 0xFFC8C8C8)), QString());
}

QTEST_MAIN(TestDrawingExtremes)
#include "testDrawingExtremes.moc"
