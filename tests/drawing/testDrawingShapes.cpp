#include "drawing/shapeDrawingOpt.h"
#include "drawingSupport.h"

#include <QPainter>
#include <QtTest>

#include <atomic>
#include <thread>

using namespace DrawingSupport;

namespace {

constexpr QRgb Background = 0xFF204060;
constexpr int Orange = static_cast<int>(0xFFFF8010);
constexpr QRgb OrangePixel = 0xFFFF8010;
constexpr QRgb InvertedOrange = 0xFF007FEF;
constexpr QRgb ExchangedOrange = 0xFF1080FF;

QImage blank()
{
    return filledCanvas(120, 100, Background);
}

void fill(QImage& canvas, int left, int top, int right, int bottom, QRgb color)
{
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x)
            canvas.setPixel(x, y, color);
    }
}

void box(QImage& canvas, int left, int top, int right, int bottom, QRgb color)
{
    fill(canvas, left, top, right, top, color);
    fill(canvas, left, bottom, right, bottom, color);
    fill(canvas, left, top, left, bottom, color);
    fill(canvas, right, top, right, bottom, color);
}

void cross(QImage& canvas, int x, int y, int arm, QRgb color)
{
    fill(canvas, x - arm, y, x + arm, y, color);
    fill(canvas, x, y - arm, x, y + arm, color);
}

/// A text drawn by hand; pixelSize 0 keeps the font.
void write(QImage& canvas, int x, int y, const QString& text, QRgb color, int pixelSize = 0)
{
    QPainter painter(&canvas);
    if (pixelSize > 0) {
        QFont font;
        font.setPixelSize(pixelSize);
        painter.setFont(font);
    }
    painter.setPen(QColor(color));
    painter.drawText(QPointF(x, y), text);
}

}  // namespace

/// Points, lines, polygons, areas and strings, pixel by pixel.
class TestDrawingShapes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void pointsOfSizeZeroAreSinglePixels();
    void pointsOutsideTheCanvasAreLeftOut();
    void singlePixelsKeepTheirAlphaAndOtherShapesAreOpaque();
    void pointsWithASizeAreCrosses();
    void shapesLandThroughTheViewsEntry();
    void everyKindOfShapeLandsThroughTheViewsEntry_data();
    void everyKindOfShapeLandsThroughTheViewsEntry();
    void mappingCutsTowardsZero();
    void linesIncludeBothEnds();
    void wideLinesHaveSquareEnds();
    void lengthStandsInTheMiddleInTheInvertedColour();
    void linesAfterAShownLengthAreThinAndInverted();
    void lengthCountsCanvasPixels();
    void polygonsAreClosedAndExchangeRedAndBlue();
    void polygonsOfTwoVerticesAreNotDrawn();
    void areaOfAPolygonStandsAtItsMeanVertexWithItsSign();
    void polygonsAfterAShownAreaAreThinInvertedAndNotExchanged();
    void areasAreBoxesWithACross();
    void areasShowTheRecordsNameAndTakeTheirPenUpAgain();
    void stringsStandOneBelowTheOther();
    void fontSizeBelowFiveIsRaisedInTheOptionItself();
    void emptyListDoesNotRaiseTheFontSize();
    void stringsAreLatin1();
    void stringsEndAfter1023BytesAndAtAZeroByte();
    void emptyStringsKeepTheirLine();
    void stringsPositionGoesThroughTheEntryButTheirSpacingDoesNot();
    void drawDuringReplacementsShowsOneListOrTheOther();
    void missingRecordsAreNotMade();
    void nothingHappensWithoutCanvasOrStore();

private:
    Option option(const QByteArray& dataType, const QByteArray& config)
    {
        const QByteArray text =
            "<DataType>" + dataType + "</DataType><DataID>1</DataID><Config>" + config + "</Config>";
        return parse(text.constData(), m_cStore.get());
    }
    QImage drawn(const QByteArray& dataType, const QByteArray& config)
    {
        QImage canvas = blank();
        option(dataType, config)->draw(&canvas, m_cStore.get());
        return canvas;
    }

    Store m_cStore;
};

void TestDrawingShapes::init()
{
    resetViewScales();
    m_cStore = makeStore();
}

void TestDrawingShapes::pointsOfSizeZeroAreSinglePixels()
{
    m_cStore->getParamPoints(1)->replaceAll({{0, 0}, {119, 99}, {7, 50}});

    QImage expected = blank();
    for (const QPoint place : {QPoint(0, 0), QPoint(119, 99), QPoint(7, 50)})
        expected.setPixel(place, OrangePixel);
    for (const char* size : {"0", "-5"})
        QCOMPARE(difference(drawn("3", QByteArray("<Size>") + size + "</Size><Color>" + QByteArray::number(Orange) +
                                           "</Color>"),
                            expected),
                 QString());
}

void TestDrawingShapes::pointsOutsideTheCanvasAreLeftOut()
{
    m_cStore->getParamPoints(1)->replaceAll({{-1, 5}, {120, 5}, {5, -1}, {5, 100}, {5, 5}});
    const WarningCounter warnings;
    QImage expected = blank();
    expected.setPixel(5, 5, 0xFFFFFFFF);
    QCOMPARE(difference(drawn("3", "<Color>-1</Color>"), expected), QString());
    QCOMPARE(warnings.count(), 0);
}

void TestDrawingShapes::singlePixelsKeepTheirAlphaAndOtherShapesAreOpaque()
{
    m_cStore->getParamPoints(1)->append({10, 10});
    m_cStore->getParamLines(1)->append({30, 10, 50, 10});
    m_cStore->getParamPolys(1)->append({{10, 30}, {30, 30}, {30, 50}});
    m_cStore->getParamAreas(1)->append({0, 30, 50, 40, 60, 50, 40});
    m_cStore->getParamStrings(1)->append("HHH");
    const QByteArray config = "<Color>1090486288</Color><BorderColor>1090486288</BorderColor>";  // 0x40FF8010
    const auto pixelsOf = [&](const char* dataType, const char* size, QRgb color) {
        QImage canvas(120, 100, QImage::Format_ARGB32);
        canvas.fill(Background);
        option(dataType, config + size)->draw(&canvas, m_cStore.get());
        int count = 0;
        for (int i = 0; i < 120 * 100; ++i)
            count += canvas.pixel(i % 120, i / 120) == color;
        return count;
    };

    QCOMPARE(pixelsOf("3", "<Size>0</Size>", 0x40FF8010), 1);
    QCOMPARE(pixelsOf("3", "<Size>2</Size>", OrangePixel), 9);
    QCOMPARE(pixelsOf("4", "", OrangePixel), 21);
    QVERIFY(pixelsOf("5", "", ExchangedOrange) > 40);
    QVERIFY(pixelsOf("6", "", OrangePixel) > 80);
    QVERIFY(pixelsOf("7", "<FontSize>40</FontSize>", OrangePixel) > 0);
}

void TestDrawingShapes::pointsWithASizeAreCrosses()
{
    m_cStore->getParamPoints(1)->replaceAll({{10, 20}, {118, 50}});

    QImage expected = blank();
    cross(expected, 10, 20, 4, OrangePixel);
    fill(expected, 114, 50, 119, 50, OrangePixel);
    fill(expected, 118, 46, 118, 54, OrangePixel);
    QCOMPARE(difference(drawn("3", "<Size>4</Size><Color>" + QByteArray::number(Orange) + "</Color>"), expected),
             QString());

    expected = blank();
    cross(expected, 10, 20, 1, 0xFFFFFFFF);
    cross(expected, 118, 50, 1, 0xFFFFFFFF);
    QCOMPARE(difference(drawn("3", "<Size>1</Size><Color>-1</Color>"), expected), QString());
}

void TestDrawingShapes::shapesLandThroughTheViewsEntry()
{
    m_cStore->getParamPoints(1)->append({45, 47});
    Drawing::s_acVSO[3] = {2.0F, 4.0F, 5, 7};
    const Option points = option("3", "<Color>-1</Color>");
    points->setViewID(3);
    QImage canvas = blank();

    points->draw(&canvas, m_cStore.get());

    QImage expected = blank();
    expected.setPixel(20, 10, 0xFFFFFFFF);
    QCOMPARE(difference(canvas, expected), QString());
}

void TestDrawingShapes::everyKindOfShapeLandsThroughTheViewsEntry_data()
{
    QTest::addColumn<QByteArray>("dataType");
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<QImage>("expected");
    const QByteArray orange = QByteArray::number(Orange);

    QImage crosses = blank();
    cross(crosses, 20, 10, 2, OrangePixel);  // the arm counts canvas pixels
    QTest::newRow("crosses") << QByteArray("3") << QByteArray("<Size>2</Size><Color>" + orange + "</Color>") << crosses;

    QImage lines = blank();
    fill(lines, 9, 9, 31, 11, OrangePixel);  // so does the width
    QTest::newRow("lines") << QByteArray("4") << QByteArray("<Size>3</Size><Color>" + orange + "</Color>") << lines;

    QImage polys = blank();
    box(polys, 20, 20, 50, 50, ExchangedOrange);
    write(polys, 35, 35, QStringLiteral("900.00"), InvertedOrange);
    QTest::newRow("polygons") << QByteArray("5")
                              << QByteArray("<BorderColor>" + orange + "</BorderColor><DspArea>1</DspArea>") << polys;

    QImage areas = blank();
    box(areas, 20, 30, 70, 50, OrangePixel);
    cross(areas, 45, 41, 3, OrangePixel);
    write(areas, 23, 27, QStringLiteral("parts"), InvertedOrange);
    QTest::newRow("areas") << QByteArray("6") << QByteArray("<Color>" + orange + "</Color><DspArea>1</DspArea>")
                           << areas;
}

void TestDrawingShapes::everyKindOfShapeLandsThroughTheViewsEntry()
{
    QFETCH(QByteArray, dataType);
    QFETCH(QByteArray, config);
    QFETCH(QImage, expected);
    m_cStore->getParamPoints(1)->append({45, 47});
    m_cStore->getParamLines(1)->append({25, 47, 65, 47});
    m_cStore->getParamPolys(1)->append({{45, 87}, {105, 87}, {105, 207}, {45, 207}});
    m_cStore->getParamAreas(1)->append({0, 127, 207, 45, 145, 95, 171});  // top, bottom, left, right, centre
    m_cStore->getParamAreas(1)->setName(QStringLiteral("parts"));
    Drawing::s_acVSO[3] = {2.0F, 4.0F, 5, 7};
    const Option shapes = option(dataType, config);
    shapes->setViewID(3);
    QImage canvas = blank();

    shapes->draw(&canvas, m_cStore.get());

    QCOMPARE(difference(canvas, expected), QString());
}

void TestDrawingShapes::mappingCutsTowardsZero()
{
    m_cStore->getParamPoints(1)->replaceAll({{4, 9}, {-1, 9}});  // 1.33 and -0.33 to the right
    Drawing::s_acVSO[0] = {3.0F, 3.0F, 0, 0};

    QImage expected = blank();
    expected.setPixel(1, 3, 0xFFFFFFFF);
    expected.setPixel(0, 3, 0xFFFFFFFF);
    QCOMPARE(difference(drawn("3", "<Color>-1</Color>"), expected), QString());
}

void TestDrawingShapes::linesIncludeBothEnds()
{
    m_cStore->getParamLines(1)->replaceAll({{10, 5, 30, 5}, {40, 50, 40, 10}, {60, 60, 65, 65}, {80, 80, 80, 80}});

    QImage expected = blank();
    fill(expected, 10, 5, 30, 5, OrangePixel);
    fill(expected, 40, 10, 40, 50, OrangePixel);
    for (int i = 60; i <= 65; ++i)
        expected.setPixel(i, i, OrangePixel);
    expected.setPixel(80, 80, OrangePixel);
    QCOMPARE(difference(drawn("4", "<Color>" + QByteArray::number(Orange) + "</Color>"), expected), QString());
}

void TestDrawingShapes::wideLinesHaveSquareEnds()
{
    m_cStore->getParamLines(1)->replaceAll({{20, 30, 40, 30}, {60, 20, 60, 50}});

    QImage expected = blank();
    fill(expected, 18, 28, 42, 32, OrangePixel);
    fill(expected, 58, 18, 62, 52, OrangePixel);
    QCOMPARE(difference(drawn("4", "<Size>5</Size><Color>" + QByteArray::number(Orange) + "</Color>"), expected),
             QString());
}

void TestDrawingShapes::lengthStandsInTheMiddleInTheInvertedColour()
{
    m_cStore->getParamLines(1)->replaceAll({{10, 31, 41, 31}});

    QImage expected = blank();
    fill(expected, 10, 31, 41, 31, OrangePixel);
    write(expected, 25, 31, QStringLiteral("31.00"), InvertedOrange);
    QCOMPARE(difference(drawn("4", "<DspLen>1</DspLen><Color>" + QByteArray::number(Orange) + "</Color>"), expected),
             QString());
}

void TestDrawingShapes::linesAfterAShownLengthAreThinAndInverted()
{
    m_cStore->getParamLines(1)->replaceAll({{10, 20, 90, 20}, {10, 50, 90, 50}, {10, 80, 90, 80}});

    QImage expected = blank();
    fill(expected, 9, 19, 91, 21, OrangePixel);
    write(expected, 50, 20, QStringLiteral("80.00"), InvertedOrange);
    for (const int y : {50, 80}) {
        fill(expected, 10, y, 90, y, InvertedOrange);
        write(expected, 50, y, QStringLiteral("80.00"), InvertedOrange);
    }
    QCOMPARE(difference(drawn("4", "<Size>3</Size><DspLen>1</DspLen><Color>" + QByteArray::number(Orange) + "</Color>"),
                        expected),
             QString());
}

void TestDrawingShapes::lengthCountsCanvasPixels()
{
    m_cStore->getParamLines(1)->append({0, 100, 60, 180});  // (0, 50) to (30, 90): 50 long
    Drawing::s_acVSO[0] = {2.0F, 2.0F, 0, 0};

    const QImage canvas = drawn("4", "<DspLen>1</DspLen><Color>-1</Color>");

    QImage onlyText = blank();
    write(onlyText, 15, 70, QStringLiteral("50.00"), 0xFF000000);
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            if (onlyText.pixel(x, y) == 0xFF000000U)
                QCOMPARE(canvas.pixel(x, y), 0xFF000000U);
        }
    }
}

void TestDrawingShapes::polygonsAreClosedAndExchangeRedAndBlue()
{
    ParamPolys* polys = m_cStore->getParamPolys(1);
    polys->append({{70, 10}, {100, 10}, {100, 40}});
    const QByteArray color = "<BorderColor>" + QByteArray::number(Orange) + "</BorderColor>";

    QImage expected = blank();
    fill(expected, 70, 10, 100, 10, ExchangedOrange);
    fill(expected, 100, 10, 100, 40, ExchangedOrange);
    for (int i = 0; i <= 30; ++i)
        expected.setPixel(70 + i, 10 + i, ExchangedOrange);
    QCOMPARE(difference(drawn("5", color), expected), QString());

    polys->replaceAll({{{10, 10}, {50, 10}, {50, 40}, {10, 40}}});
    expected = blank();
    box(expected, 10, 10, 50, 40, ExchangedOrange);
    QCOMPARE(difference(drawn("5", color), expected), QString());

    expected = blank();
    for (int i = -1; i <= 1; ++i)
        box(expected, 10 + i, 10 + i, 50 - i, 40 - i, ExchangedOrange);
    QCOMPARE(difference(drawn("5", "<BorderSize>3</BorderSize>" + color), expected), QString());
}

void TestDrawingShapes::polygonsOfTwoVerticesAreNotDrawn()
{
    m_cStore->getParamPolys(1)->replaceAll({{}, {{5, 5}}, {{10, 10}, {50, 10}}, {{60, 60}, {80, 60}, {80, 60}}});

    QImage expected = blank();
    fill(expected, 60, 60, 80, 60, 0xFFFFFFFF);
    write(expected, 73, 60, QStringLiteral("0.00"), 0xFF000000);
    QCOMPARE(difference(drawn("5", "<BorderColor>-1</BorderColor><DspArea>1</DspArea>"), expected), QString());
}

void TestDrawingShapes::areaOfAPolygonStandsAtItsMeanVertexWithItsSign()
{
    m_cStore->getParamPolys(1)->append({{20, 30}, {20, 62}, {61, 30}});  // the negative way round, 32 x 41 / 2
    Drawing::s_acVSO[0] = {1.0F, 1.0F, 0, 0};
    const QByteArray config = "<BorderColor>" + QByteArray::number(Orange) + "</BorderColor>";

    QImage expected = drawn("5", config);
    write(expected, 33, 40, QStringLiteral("-656.00"), InvertedOrange);
    QCOMPARE(difference(drawn("5", config + "<DspArea>1</DspArea>"), expected), QString());
}

void TestDrawingShapes::polygonsAfterAShownAreaAreThinInvertedAndNotExchanged()
{
    m_cStore->getParamPolys(1)->replaceAll(
        {{{5, 5}, {45, 5}, {45, 45}, {5, 45}}, {{60, 50}, {110, 50}, {110, 95}, {60, 95}}});

    QImage expected = blank();
    for (int i = -1; i <= 1; ++i)
        box(expected, 5 + i, 5 + i, 45 - i, 45 - i, ExchangedOrange);
    write(expected, 25, 25, QStringLiteral("1600.00"), InvertedOrange);
    box(expected, 60, 50, 110, 95, InvertedOrange);
    write(expected, 85, 72, QStringLiteral("2250.00"), InvertedOrange);
    QCOMPARE(difference(drawn("5", "<BorderSize>3</BorderSize><DspArea>1</DspArea><BorderColor>" +
                                       QByteArray::number(Orange) + "</BorderColor>"),
                        expected),
             QString());
}

void TestDrawingShapes::areasAreBoxesWithACross()
{
    m_cStore->getParamAreas(1)->setName(QStringLiteral("hidden"));
    m_cStore->getParamAreas(1)->append({99, 10, 30, 20, 70, 45, 21});  // top, bottom, left, right, centre

    QImage expected = blank();
    box(expected, 20, 10, 70, 30, OrangePixel);
    cross(expected, 45, 21, 3, OrangePixel);
    QCOMPARE(difference(drawn("6", "<Color>" + QByteArray::number(Orange) + "</Color>"), expected), QString());
}

void TestDrawingShapes::areasShowTheRecordsNameAndTakeTheirPenUpAgain()
{
    m_cStore->getParamAreas(1)->setName(QStringLiteral("parts"));
    m_cStore->getParamAreas(1)->replaceAll({{0, 30, 40, 20, 60, 30, 35}, {0, 70, 90, 30, 90, 50, 80}});

    QImage expected = blank();
    box(expected, 20, 30, 60, 40, OrangePixel);
    cross(expected, 30, 35, 3, OrangePixel);
    write(expected, 23, 27, QStringLiteral("parts"), InvertedOrange);
    box(expected, 30, 70, 90, 90, OrangePixel);
    cross(expected, 50, 80, 3, OrangePixel);
    write(expected, 33, 67, QStringLiteral("parts"), InvertedOrange);
    QCOMPARE(difference(drawn("6", "<DspArea>1</DspArea><Color>" + QByteArray::number(Orange) + "</Color>"), expected),
             QString());
}

void TestDrawingShapes::stringsStandOneBelowTheOther()
{
    m_cStore->getParamStrings(1)->replaceAll({"one", "two", "three"});

    QImage expected = blank();
    write(expected, 7, 9 + 14, QStringLiteral("one"), OrangePixel, 14);
    write(expected, 7, 9 + 14 + 24, QStringLiteral("two"), OrangePixel, 14);
    write(expected, 7, 9 + 14 + 48, QStringLiteral("three"), OrangePixel, 14);
    QVERIFY(!difference(expected, blank()).isEmpty());
    QCOMPARE(
        difference(drawn("7", "<Pos>7,9</Pos><FontSize>14</FontSize><Color>" + QByteArray::number(Orange) + "</Color>"),
                   expected),
        QString());
}

void TestDrawingShapes::fontSizeBelowFiveIsRaisedInTheOptionItself()
{
    m_cStore->getParamStrings(1)->replaceAll({"HHHH", "HHHH"});
    const auto strings = parseAs<Drawing::StringsDrawingOpt>(
        "<DataType>7</DataType><DataID>1</DataID><Config><Color>-1</Color></Config>", m_cStore.get());
    QCOMPARE(strings->getFontSize(), 0);
    QImage canvas = blank();

    strings->draw(&canvas, m_cStore.get());

    QImage expected = blank();
    write(expected, 0, 5, QStringLiteral("HHHH"), 0xFFFFFFFF, 5);
    write(expected, 0, 20, QStringLiteral("HHHH"), 0xFFFFFFFF, 5);
    QCOMPARE(difference(canvas, expected), QString());
    QCOMPARE(strings->getFontSize(), 5);
}

void TestDrawingShapes::emptyListDoesNotRaiseTheFontSize()
{
    m_cStore->getParamStrings(1);
    Drawing::StringsDrawingOpt strings(1);
    strings.setFontSize(2);
    QImage canvas = blank();

    strings.draw(&canvas, m_cStore.get());

    QCOMPARE(strings.getFontSize(), 2);
    QCOMPARE(difference(canvas, blank()), QString());
}

void TestDrawingShapes::stringsAreLatin1()
{
    m_cStore->getParamStrings(1)->append("\xe4\xdf");

    QImage expected = blank();
    write(expected, 0, 20, QString::fromUtf8("äß"), 0xFFFFFFFF, 20);
    QCOMPARE(difference(drawn("7", "<FontSize>20</FontSize><Color>-1</Color>"), expected), QString());
}

void TestDrawingShapes::stringsEndAfter1023BytesAndAtAZeroByte()
{
    m_cStore->getParamStrings(1)->replaceAll({QByteArray(1023, ' ') + "X", QByteArray("ab\0cd", 5)});
    // The canvas starts where byte 1024 would be shown.
    QFont font;
    font.setPixelSize(20);
    const int width = QFontMetrics(font).horizontalAdvance(QString(1023, QLatin1Char(' ')));
    const QByteArray config = "<Pos>" + QByteArray::number(10 - width) + ",0</Pos><FontSize>20</FontSize>";
    QCOMPARE(difference(drawn("7", config + "<Color>-1</Color>"), blank()), QString());

    QImage expected = blank();
    write(expected, 0, 50, QStringLiteral("ab"), 0xFFFFFFFF, 20);
    QCOMPARE(difference(drawn("7", "<FontSize>20</FontSize><Color>-1</Color>"), expected), QString());
}

void TestDrawingShapes::emptyStringsKeepTheirLine()
{
    m_cStore->getParamStrings(1)->replaceAll({"", "low"});

    QImage expected = blank();
    write(expected, 0, 12 + 22, QStringLiteral("low"), 0xFFFFFFFF, 12);
    QCOMPARE(difference(drawn("7", "<FontSize>12</FontSize><Color>-1</Color>"), expected), QString());
}

void TestDrawingShapes::stringsPositionGoesThroughTheEntryButTheirSpacingDoesNot()
{
    m_cStore->getParamStrings(1)->replaceAll({"AB", "CD"});
    Drawing::s_acVSO[0] = {4.0F, 8.0F, 20, 40};  // (64, 103) lands at (11, 7.875), the first baseline at 19.875

    QImage expected = blank();
    write(expected, 11, 19, QStringLiteral("AB"), 0xFFFFFFFF, 12);
    write(expected, 11, 41, QStringLiteral("CD"), 0xFFFFFFFF, 12);
    QCOMPARE(difference(drawn("7", "<Pos>64,103</Pos><FontSize>12</FontSize><Color>-1</Color>"), expected), QString());
}

void TestDrawingShapes::drawDuringReplacementsShowsOneListOrTheOther()
{
    QVector<ParamPoints::Point> upper;
    QVector<ParamPoints::Point> lower;
    for (int x = 0; x < 120; ++x) {
        upper.push_back({x, 10});
        lower.push_back({x, 20});
    }
    ParamPoints* record = m_cStore->getParamPoints(1);
    record->replaceAll(upper);
    std::atomic<bool> stop{false};
    std::thread task([&] {
        for (int i = 0; !stop; ++i)
            record->replaceAll(i % 2 == 0 ? lower : upper);
    });

    int mixtures = 0;
    for (int i = 0; i < 200; ++i) {
        const QImage canvas = drawn("3", "<Color>-1</Color>");
        QImage one = blank();
        QImage other = blank();
        fill(one, 0, 10, 119, 10, 0xFFFFFFFF);
        fill(other, 0, 20, 119, 20, 0xFFFFFFFF);
        mixtures += !difference(canvas, one).isEmpty() && !difference(canvas, other).isEmpty();
    }
    stop = true;
    task.join();

    QCOMPARE(mixtures, 0);
}

void TestDrawingShapes::missingRecordsAreNotMade()
{
    for (const char* dataType : {"3", "4", "5", "6", "7"})
        QCOMPARE(difference(drawn(dataType, "<Size>3</Size>"), blank()), QString());

    QVERIFY(m_cStore->requestParamPointsMap()->isEmpty());
    QVERIFY(m_cStore->requestParamLinesMap()->isEmpty());
    QVERIFY(m_cStore->requestParamPolysMap()->isEmpty());
    QVERIFY(m_cStore->requestParamAreasMap()->isEmpty());
    QVERIFY(m_cStore->requestParamStringsMap()->isEmpty());
}

void TestDrawingShapes::nothingHappensWithoutCanvasOrStore()
{
    m_cStore->getParamPoints(1)->append({1, 1});
    m_cStore->getParamStrings(1)->append("text");
    const WarningCounter warnings;
    QImage canvas = blank();
    QImage empty(0, 0, QImage::Format_RGB888);

    for (const char* dataType : {"3", "4", "5", "6", "7"}) {
        option(dataType, "<Size>2</Size>")->draw(nullptr, m_cStore.get());
        option(dataType, "<Size>2</Size>")->draw(&canvas, nullptr);
        option(dataType, "<Size>2</Size>")->draw(&empty, m_cStore.get());
    }

    QCOMPARE(difference(canvas, blank()), QString());
    QCOMPARE(warnings.count(), 0);
}

QTEST_MAIN(TestDrawingShapes)
#include "testDrawingShapes.moc"
