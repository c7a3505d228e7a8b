#include "drawing/drawingOpt.h"
#include "drawing/grayPalette.h"
#include "drawing/imageDrawingOpt.h"
#include "drawing/shapeDrawingOpt.h"
#include "drawing/viewScaleOpt.h"
#include "drawingSupport.h"

#include <QtTest>

#include <cstring>
#include <thread>

using namespace DrawingSupport;

/// The drawing step's identity, its option texts and its result buffer.
class TestDrawingText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesStartAtScaleOneWithoutOffset();
    void viewThatIsNotThereHasScaleOneWithoutOffset();
    void identityIsThatOfTheDrawingStep();
    void textsWithoutAnOption_data();
    void textsWithoutAnOption();
    void kindsByDataType_data();
    void kindsByDataType();
    void unknownPictureGivesNoOptionAndMakesNoRecord();
    void emptyPictureGivesAnOptionThatDrawsNothing();
    void viewIsZeroUnlessItIsANumber_data();
    void viewIsZeroUnlessItIsANumber();
    void withoutConfigTheDefaultsStay();
    void freshOptionsHaveTheirDefaults();
    void listsAreReadWhenTheyAreDrawn();
    void colourFields_data();
    void colourFields();
    void greyFields_data();
    void greyFields();
    void pointsFields_data();
    void pointsFields();
    void linesFields_data();
    void linesFields();
    void polysFields_data();
    void polysFields();
    void areasFields_data();
    void areasFields();
    void stringsFields_data();
    void stringsFields();
    void resetOfAnUnknownViewLeavesEveryEntry();
    void resetPutsOneEntryBack();
    void paletteIsBlackWhiteThenTheColourGrid();
    void resultBufferGrowsByHalvesAndNeverShrinks();
    void everyThreadHasItsOwnResultBuffer();
};

// Stands first: no other test may have written an entry before.
void TestDrawingText::entriesStartAtScaleOneWithoutOffset()
{
    QCOMPARE(Drawing::s_acVSO.size(), std::size_t{6});
    for (const Drawing::ViewScaleOpt& entry : Drawing::s_acVSO) {
        QCOMPARE(entry.m_fScaleX, 1.0F);
        QCOMPARE(entry.m_fScaleY, 1.0F);
        QCOMPARE(entry.m_nOffsetX, 0);
        QCOMPARE(entry.m_nOffsetY, 0);
    }
}

void TestDrawingText::viewThatIsNotThereHasScaleOneWithoutOffset()
{
    for (const int view : {-1, 6}) {
        const Drawing::ViewScaleOpt entry = ViewScale::entryOf(view);
        QCOMPARE(entry.m_fScaleX, 1.0F);
        QCOMPARE(entry.m_fScaleY, 1.0F);
        QCOMPARE(entry.m_nOffsetX, 0);
        QCOMPARE(entry.m_nOffsetY, 0);
    }
}

void TestDrawingText::identityIsThatOfTheDrawingStep()
{
    QCOMPARE(Drawing::getName(), QString::fromUtf8("绘制对象"));
    QCOMPARE(Drawing::getClass(), QString::fromUtf8("系统"));
    QCOMPARE(Drawing::getID(), "KW_Drawing");
    QCOMPARE(static_cast<const void*>(Drawing::s_ID), static_cast<const void*>(Drawing::getID()));
}

void TestDrawingText::textsWithoutAnOption_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no data type") << QByteArray("<DataID>1</DataID>");
    QTest::newRow("data type is no number") << QByteArray("<DataType>x</DataType><DataID>1</DataID>");
    QTest::newRow("data type is hexadecimal") << QByteArray("<DataType>0x3</DataType><DataID>1</DataID>");
    QTest::newRow("no id") << QByteArray("<DataType>3</DataType>");
    QTest::newRow("id is no number") << QByteArray("<DataType>3</DataType><DataID>one</DataID>");
    QTest::newRow("id does not fit") << QByteArray("<DataType>3</DataType><DataID>99999999999</DataID>");
    QTest::newRow("data type 8") << QByteArray("<DataType>8</DataType><DataID>1</DataID>");
    QTest::newRow("data type -1") << QByteArray("<DataType>-1</DataType><DataID>1</DataID>");
}

void TestDrawingText::textsWithoutAnOption()
{
    QFETCH(QByteArray, text);
    const Store store = makeStore();

    QVERIFY(!parse(text.constData(), store.get()));
    QCOMPARE(Drawing::execute(text.data(), store.get()), "");
}

void TestDrawingText::kindsByDataType_data()
{
    QTest::addColumn<int>("dataType");
    for (int dataType = 0; dataType < 8; ++dataType)
        QTest::addRow("%d", dataType) << dataType;
}

void TestDrawingText::kindsByDataType()
{
    QFETCH(int, dataType);
    const Store store = makeStore();
    store->getParamDIB(12)->resize(2, 2);
    store->getParamGray8(12)->resize(2, 2);
    store->getParamGray16(12)->resize(2, 2);

    // Order, case and surrounding text do not matter.
    const QByteArray text =
        "junk <DataID>12</DataID>\n<View>3</View><datatype>" + QByteArray::number(dataType) + "</datatype>";
    const Option option = parse(text.constData(), store.get());

    QVERIFY(option);
    QCOMPARE(option->getDataType(), dataType);
    QCOMPARE(option->getDataID(), 12);
    QCOMPARE(option->getViewID(), 3);
    QVERIFY(!option->getParamMgr());
    const bool kindFits[] = {
        dynamic_cast<Drawing::DIBDrawingOpt*>(option.get()) != nullptr,
        dynamic_cast<Drawing::Gray8DrawingOpt*>(option.get()) != nullptr,
        dynamic_cast<Drawing::Gray16DrawingOpt*>(option.get()) != nullptr,
        dynamic_cast<Drawing::PointsDrawingOpt*>(option.get()) != nullptr,
        dynamic_cast<Drawing::LinesDrawingOpt*>(option.get()) != nullptr,
        dynamic_cast<Drawing::PolysDrawingOpt*>(option.get()) != nullptr,
        dynamic_cast<Drawing::AreasDrawingOpt*>(option.get()) != nullptr,
        dynamic_cast<Drawing::StringsDrawingOpt*>(option.get()) != nullptr,
    };
    for (int kind = 0; kind < 8; ++kind)
        QCOMPARE(kindFits[kind], kind == dataType);
}

void TestDrawingText::unknownPictureGivesNoOptionAndMakesNoRecord()
{
    const Store store = makeStore();

    for (const char* text : {"<DataType>0</DataType><DataID>5</DataID>", "<DataType>1</DataType><DataID>5</DataID>",
                             "<DataType>2</DataType><DataID>5</DataID>", "<DataType>0</DataType><DataID>-1</DataID>"}) {
        QVERIFY(!parse(text, store.get()));
        QVERIFY(!parse(text, nullptr));
    }
    QVERIFY(store->requestParamDIBMap()->isEmpty());
    QVERIFY(store->requestParamGray8Map()->isEmpty());
    QVERIFY(store->requestParamGray16Map()->isEmpty());
}

void TestDrawingText::emptyPictureGivesAnOptionThatDrawsNothing()
{
    const Store store = makeStore();
    store->getParamDIB(1);
    store->getParamGray8(1);
    const QImage before = filledCanvas(4, 4, 0xFF123456);

    for (const char* text : {"<DataType>0</DataType><DataID>1</DataID>", "<DataType>1</DataType><DataID>1</DataID>"}) {
        QImage canvas = before;
        const Option option = parse(text, store.get());
        QVERIFY(option);
        option->draw(&canvas, store.get());
        QCOMPARE(difference(canvas, before), QString());
    }
}

void TestDrawingText::viewIsZeroUnlessItIsANumber_data()
{
    QTest::addColumn<QByteArray>("view");
    QTest::addColumn<int>("expected");
    QTest::newRow("absent") << QByteArray() << 0;
    QTest::newRow("no number") << QByteArray("<View>two</View>") << 0;
    QTest::newRow("two") << QByteArray("<View>2</View>") << 2;
    QTest::newRow("negative") << QByteArray("<View>-7</View>") << -7;
}

void TestDrawingText::viewIsZeroUnlessItIsANumber()
{
    QFETCH(QByteArray, view);
    QFETCH(int, expected);

    const Option option = parse((view + "<DataType>3</DataType><DataID>1</DataID>").constData(), nullptr);

    QCOMPARE(option->getViewID(), expected);
}

void TestDrawingText::withoutConfigTheDefaultsStay()
{
    const Store store = makeStore();
    store->getParamGray8(1)->resize(1, 1);

    const auto lines = parseAs<Drawing::LinesDrawingOpt>("<DataType>4</DataType><DataID>1</DataID>", store.get());
    QCOMPARE(lines->getSize(), 1);
    QCOMPARE(lines->getColor(), 0);
    QCOMPARE(lines->getDisplayLength(), false);
    const auto strings = parseAs<Drawing::StringsDrawingOpt>("<DataType>7</DataType><DataID>1</DataID>", store.get());
    int x = -1;
    int y = -1;
    strings->getPos(x, y);
    QCOMPARE(strings->getFontSize(), 12);
    QCOMPARE(QPoint(x, y), QPoint(0, 0));
    const auto points =
        parseAs<Drawing::PointsDrawingOpt>("<DataType>3</DataType><DataID>1</DataID><Config></Config>", store.get());
    QCOMPARE(points->getSize(), 0);
    const auto polys = parseAs<Drawing::PolysDrawingOpt>("<DataType>5</DataType><DataID>1</DataID>", store.get());
    QCOMPARE(polys->getBorderSize(), 0);
    const auto grey = parseAs<Drawing::Gray8DrawingOpt>("<DataType>1</DataType><DataID>1</DataID>", store.get());
    QCOMPARE(grey->getScaleType() | grey->getAlignType() | grey->getDrawMode() | grey->getLapped() |
                 grey->getMaskVal() | grey->getMaskColor(),
             0);
}

void TestDrawingText::freshOptionsHaveTheirDefaults()
{
    unsigned char pixels[] = {1, 2, 3, 4};
    const Drawing::DIBDrawingOpt colour(5, pixels, 1, 1);
    QCOMPARE(colour.getScaleType(), 0);
    QCOMPARE(colour.getAlignType(), 0);
    QCOMPARE(colour.getDataID(), 5);
    QCOMPARE(colour.getViewID(), 0);
    const Drawing::Gray8DrawingOpt grey(5, pixels, 1, 1);
    QCOMPARE((QVector<int>{grey.getScaleType(), grey.getAlignType(), grey.getDrawMode(), grey.getLapped(),
                           grey.getMaskVal(), grey.getMaskColor()}),
             QVector<int>(6, 0));
    const Drawing::PointsDrawingOpt points(5);
    QCOMPARE((QVector<int>{points.getSize(), points.getColor(), points.getViewID()}), (QVector<int>{0, 0, 0}));
    const Drawing::LinesDrawingOpt lines(5);
    QCOMPARE((QVector<int>{lines.getSize(), lines.getColor()}), (QVector<int>{1, 0}));
    QVERIFY(!lines.getDisplayLength());
    const Drawing::PolysDrawingOpt polys(5);
    QCOMPARE((QVector<int>{polys.getBorderSize(), polys.getBorderColor()}), (QVector<int>{0, 0}));
    QVERIFY(!polys.getDisplayArea());
    const Drawing::AreasDrawingOpt areas(5);
    QCOMPARE(areas.getColor(), 0);
    QVERIFY(!areas.getDisplayArea());
    const Drawing::StringsDrawingOpt strings(5);
    int x = -1;
    int y = -1;
    strings.getPos(x, y);
    QCOMPARE((QVector<int>{strings.getColor(), x, y, strings.getFontSize()}), (QVector<int>{0, 0, 0, 12}));
}

void TestDrawingText::listsAreReadWhenTheyAreDrawn()
{
    const Store store = makeStore();
    const Option option =
        parse("<DataType>3</DataType><DataID>1</DataID><Config><Color>-1</Color></Config>", store.get());
    store->getParamPoints(1)->append({2, 3});
    QImage canvas = filledCanvas(5, 5, 0xFF000000);

    option->draw(&canvas, store.get());

    QImage expected = filledCanvas(5, 5, 0xFF000000);
    expected.setPixel(2, 3, 0xFFFFFFFF);
    QCOMPARE(difference(canvas, expected), QString());
}

void TestDrawingText::colourFields_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<int>("scale");
    QTest::addColumn<int>("align");
    QTest::newRow("both") << QByteArray("<Scale>3</Scale><Pos>1</Pos>") << 3 << 1;
    QTest::newRow("scale only") << QByteArray("<Scale>2</Scale>") << 2 << 0;
    QTest::newRow("malformed keeps the default") << QByteArray("<Scale>x</Scale><Pos>1,2</Pos>") << 0 << 0;
    QTest::newRow("unknown codes are kept") << QByteArray("<Scale>-9</Scale><Pos>44</Pos>") << -9 << 44;
    QTest::newRow("blanks around a number") << QByteArray("<Scale> 1 </Scale>") << 1 << 0;
}

void TestDrawingText::colourFields()
{
    QFETCH(QByteArray, config);
    QFETCH(int, scale);
    QFETCH(int, align);
    const Store store = makeStore();
    store->getParamDIB(1)->resize(1, 1);

    const auto option = parseAs<Drawing::DIBDrawingOpt>(
        ("<DataType>0</DataType><DataID>1</DataID><Config>" + config + "</Config>").constData(), store.get());

    QCOMPARE(option->getScaleType(), scale);
    QCOMPARE(option->getAlignType(), align);
}

void TestDrawingText::greyFields_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<QVector<int>>("expected");  // scale, align, mode, lapped, mask value, mask colour
    QTest::newRow("normal") << QByteArray("<Scale>1</Scale><Pos>1</Pos><DrawMode><Val>0</Val></DrawMode>")
                            << QVector<int>{1, 1, 0, 0, 0, 0};
    QTest::newRow("overlay") << QByteArray("<DrawMode><Lapped>1</Lapped><Val>1</Val></DrawMode>")
                             << QVector<int>{0, 0, 1, 1, 0, 0};
    QTest::newRow("mask") << QByteArray("<DrawMode><Mask>1,2</Mask><Val>2</Val></DrawMode>")
                          << QVector<int>{0, 0, 2, 0, 1, 2};
    QTest::newRow("mask of one part") << QByteArray("<DrawMode><Mask>1</Mask></DrawMode>")
                                      << QVector<int>{0, 0, 0, 0, 1, 0};
    QTest::newRow("mask without first part")
        << QByteArray("<DrawMode><Mask>,2</Mask></DrawMode>") << QVector<int>{0, 0, 0, 0, 0, 2};
    QTest::newRow("mask with a word") << QByteArray("<DrawMode><Mask>a,2,9</Mask></DrawMode>")
                                      << QVector<int>{0, 0, 0, 0, 0, 2};
    QTest::newRow("mode tags outside of DrawMode")
        << QByteArray("<Lapped>1</Lapped><Mask>1,2</Mask><Val>2</Val>") << QVector<int>{0, 0, 0, 0, 0, 0};
}

void TestDrawingText::greyFields()
{
    QFETCH(QByteArray, config);
    QFETCH(QVector<int>, expected);
    const Store store = makeStore();
    store->getParamGray8(1)->resize(1, 1);
    store->getParamGray16(1)->resize(1, 1);
    const auto fields = [](const Drawing::GrayDrawingOpt& option) {
        return QVector<int>{option.getScaleType(), option.getAlignType(), option.getDrawMode(),
                            option.getLapped(),    option.getMaskVal(),   option.getMaskColor()};
    };

    const QByteArray rest = "<DataID>1</DataID><Config>" + config + "</Config>";
    const auto gray8 = parseAs<Drawing::Gray8DrawingOpt>(("<DataType>1</DataType>" + rest).constData(), store.get());
    const auto gray16 = parseAs<Drawing::Gray16DrawingOpt>(("<DataType>2</DataType>" + rest).constData(), store.get());

    QCOMPARE(fields(*gray8), expected);
    QCOMPARE(fields(*gray16), expected);
}

void TestDrawingText::pointsFields_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("color");
    QTest::newRow("both") << QByteArray("<Size>4</Size><Color>-65536</Color>") << 4 << -65536;
    QTest::newRow("malformed keeps the default") << QByteArray("<Size>4.5</Size><Color>red</Color>") << 0 << 0;
    QTest::newRow("a colour beyond int keeps the default") << QByteArray("<Color>4294901760</Color>") << 0 << 0;
}

void TestDrawingText::pointsFields()
{
    QFETCH(QByteArray, config);
    QFETCH(int, size);
    QFETCH(int, color);

    const auto option = parseAs<Drawing::PointsDrawingOpt>(
        ("<DataType>3</DataType><DataID>1</DataID><Config>" + config + "</Config>").constData(), nullptr);

    QCOMPARE(option->getSize(), size);
    QCOMPARE(option->getColor(), color);
}

void TestDrawingText::linesFields_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("color");
    QTest::addColumn<bool>("length");
    QTest::newRow("all") << QByteArray("<Size>2</Size><DspLen>1</DspLen><Color>-1</Color>") << 2 << -1 << true;
    QTest::newRow("only 1 shows the length") << QByteArray("<Size>2</Size><DspLen>2</DspLen>") << 2 << 0 << false;
    QTest::newRow("other tags only") << QByteArray("<Foo>7</Foo>") << 1 << 0 << false;
}

void TestDrawingText::linesFields()
{
    QFETCH(QByteArray, config);
    QFETCH(int, size);
    QFETCH(int, color);
    QFETCH(bool, length);

    const auto option = parseAs<Drawing::LinesDrawingOpt>(
        ("<DataType>4</DataType><DataID>1</DataID><Config>" + config + "</Config>").constData(), nullptr);

    QCOMPARE(option->getSize(), size);
    QCOMPARE(option->getColor(), color);
    QCOMPARE(option->getDisplayLength(), length);
}

void TestDrawingText::polysFields_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("color");
    QTest::addColumn<bool>("area");
    QTest::newRow("all") << QByteArray("<BorderSize>3</BorderSize><BorderColor>-256</BorderColor><DspArea>1</DspArea>")
                         << 3 << -256 << true;
    QTest::newRow("tags of other kinds") << QByteArray("<Size>3</Size><Color>-256</Color><DspArea>0</DspArea>") << 0
                                         << 0 << false;
}

void TestDrawingText::polysFields()
{
    QFETCH(QByteArray, config);
    QFETCH(int, size);
    QFETCH(int, color);
    QFETCH(bool, area);

    const auto option = parseAs<Drawing::PolysDrawingOpt>(
        ("<DataType>5</DataType><DataID>1</DataID><Config>" + config + "</Config>").constData(), nullptr);

    QCOMPARE(option->getBorderSize(), size);
    QCOMPARE(option->getBorderColor(), color);
    QCOMPARE(option->getDisplayArea(), area);
}

void TestDrawingText::areasFields_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<int>("color");
    QTest::addColumn<bool>("area");
    QTest::newRow("all") << QByteArray("<DspArea>1</DspArea><Color>-16711936</Color>") << -16711936 << true;
    QTest::newRow("neither") << QByteArray("<DspArea>-1</DspArea>") << 0 << false;
}

void TestDrawingText::areasFields()
{
    QFETCH(QByteArray, config);
    QFETCH(int, color);
    QFETCH(bool, area);

    const auto option = parseAs<Drawing::AreasDrawingOpt>(
        ("<DataType>6</DataType><DataID>1</DataID><Config>" + config + "</Config>").constData(), nullptr);

    QCOMPARE(option->getColor(), color);
    QCOMPARE(option->getDisplayArea(), area);
}

void TestDrawingText::stringsFields_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<int>("fontSize");
    QTest::newRow("all") << QByteArray("<Color>-1</Color><Pos>30,-40</Pos><FontSize>20</FontSize>") << QPoint(30, -40)
                         << 20;
    QTest::newRow("missing font size becomes 0, not the default")
        << QByteArray("<Color>-1</Color>") << QPoint(0, 0) << 0;
    QTest::newRow("malformed font size becomes 0") << QByteArray("<FontSize>big</FontSize>") << QPoint(0, 0) << 0;
    QTest::newRow("one part is no place") << QByteArray("<Pos>30</Pos><FontSize>9</FontSize>") << QPoint(0, 0) << 9;
    QTest::newRow("a part that is no number becomes 0")
        << QByteArray("<Pos>x,40</Pos><FontSize>9</FontSize>") << QPoint(0, 40) << 9;
    QTest::newRow("a third part is ignored")
        << QByteArray("<Pos>1,2,3</Pos><FontSize>9</FontSize>") << QPoint(1, 2) << 9;
}

void TestDrawingText::stringsFields()
{
    QFETCH(QByteArray, config);
    QFETCH(QPoint, pos);
    QFETCH(int, fontSize);

    const auto option = parseAs<Drawing::StringsDrawingOpt>(
        ("<DataType>7</DataType><DataID>1</DataID><Config>" + config + "</Config>").constData(), nullptr);

    int x = -1;
    int y = -1;
    option->getPos(x, y);
    QCOMPARE(QPoint(x, y), pos);
    QCOMPARE(option->getFontSize(), fontSize);
    QCOMPARE(option->getColor(), config.contains("Color") ? -1 : 0);
}

void TestDrawingText::resetOfAnUnknownViewLeavesEveryEntry()
{
    for (std::size_t view = 0; view < 6; ++view)
        Drawing::s_acVSO[view] = {2.0F, 3.0F, static_cast<int>(view), 9};

    for (const int view : {6, -1, 2147483647})
        Drawing::resetViewScaleOpt(view);

    for (std::size_t view = 0; view < 6; ++view) {
        QCOMPARE(Drawing::s_acVSO[view].m_fScaleX, 2.0F);
        QCOMPARE(Drawing::s_acVSO[view].m_nOffsetX, static_cast<int>(view));
    }
    resetViewScales();
}

void TestDrawingText::resetPutsOneEntryBack()
{
    Drawing::s_acVSO[4] = {2.0F, 3.0F, 8, 9};
    Drawing::s_acVSO[5] = {2.0F, 3.0F, 8, 9};

    Drawing::resetViewScaleOpt(5);

    QCOMPARE(Drawing::s_acVSO[5].m_fScaleX, 1.0F);
    QCOMPARE(Drawing::s_acVSO[5].m_fScaleY, 1.0F);
    QCOMPARE(Drawing::s_acVSO[5].m_nOffsetX, 0);
    QCOMPARE(Drawing::s_acVSO[5].m_nOffsetY, 0);
    QCOMPARE(Drawing::s_acVSO[4].m_nOffsetX, 8);
    resetViewScales();
}

void TestDrawingText::paletteIsBlackWhiteThenTheColourGrid()
{
    const QVector<int> blues{0, 42, 84, 126, 168, 210, 252};
    const QVector<int> greens{0, 28, 56, 84, 112, 140, 168, 196, 224, 252};
    const QVector<int> reds{0, 51, 102, 153, 204, 255};
    QVector<QRgb> expected{0xFF000000, 0xFFFFFFFF};
    for (const int blue : blues) {
        for (const int green : greens) {
            for (const int red : reds) {
                const bool corner = blue == 0 && green == 0 && (red == 0 || red == 255);
                if (!corner && expected.size() < 256)
                    expected.push_back(qRgb(red, green, blue));
            }
        }
    }

    QCOMPARE(grayPalette()[2], 0xFF330000U);
    QCOMPARE(grayPalette()[255], 0xFF9938A8U);
    for (int i = 0; i < 256; ++i)
        QCOMPARE(grayPalette()[static_cast<std::size_t>(i)], expected.at(i));
}

void TestDrawingText::resultBufferGrowsByHalvesAndNeverShrinks()
{
    // A thread of its own starts without a buffer.
    std::thread([] {
        QVERIFY(!Drawing::s_pchConfigStr);
        QCOMPARE(Drawing::s_nBuffLen, 1024);
        QString text(1023, QLatin1Char('a'));
        char* result = Drawing::transConfigStr(text);
        QCOMPARE(std::strlen(result), std::size_t{1023});
        QCOMPARE(Drawing::s_nBuffLen, 1024);

        QString larger(1024, QLatin1Char('b'));
        result = Drawing::transConfigStr(larger);
        QCOMPARE(static_cast<const void*>(result), static_cast<const void*>(Drawing::s_pchConfigStr.get()));
        QCOMPARE(Drawing::s_nBuffLen, 1536);

        QString huge(3500, QLatin1Char('c'));  // 1536, 2304, 3456, 5184
        QCOMPARE(std::strlen(Drawing::transConfigStr(huge)), std::size_t{3500});
        QCOMPARE(Drawing::s_nBuffLen, 5184);

        QString chinese = QString::fromUtf8("绘制");
        QCOMPARE(Drawing::transConfigStr(chinese), "\xe7\xbb\x98\xe5\x88\xb6");
        QCOMPARE(Drawing::s_nBuffLen, 5184);
    }).join();
}

void TestDrawingText::everyThreadHasItsOwnResultBuffer()
{
    QString mine = QStringLiteral("mine");
    char* result = Drawing::transConfigStr(mine);

    std::thread([result] {
        QString other = QStringLiteral("other");
        QVERIFY(Drawing::transConfigStr(other) != result);
    }).join();

    QCOMPARE(result, "mine");
}

QTEST_GUILESS_MAIN(TestDrawingText)
#include "testDrawingText.moc"
