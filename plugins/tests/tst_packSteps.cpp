#include "packLibraries.h"

#include <QtTest>

#include <algorithm>
#include <thread>

/// The algorithms through their C interface, on pictures made by hand.
class TestPackSteps : public QObject
{
    Q_OBJECT

private slots:
    void everyAlgorithmNamesItself_data();
    void everyAlgorithmNamesItself();
    void wrongInputIsExplained_data();
    void wrongInputIsExplained();
    void stepWithoutOutputsSaysSo_data() { everyAlgorithmNamesItself_data(); }
    void stepWithoutOutputsSaysSo();
    void missingStoreIsReported_data() { everyAlgorithmNamesItself_data(); }
    void missingStoreIsReported();
    void missingInputMakesNoRecord();
    void outputCarriesTheNameOfTheOption();

    void tinyPicturesAndAnyNumbersAreTaken_data();
    void tinyPicturesAndAnyNumbersAreTaken();
    void inputMayBeTheOutput_data();
    void inputMayBeTheOutput();

    void grayHasTheWeightsOfTheEye();
    void sixteenBitGrayIsTheEightBitGrayTimes257();
    void boxBlurAveragesItsWindow();
    void blurKeepsTheKindOfItsInput();
    void medianBlurRemovesASinglePixel();
    void fixedThresholdIsExclusive();
    void otsuFindsTheValueItself();
    void adaptiveThresholdFollowsTheLight();
    void areasHaveBoxesCentresAndACount();
    void areasOutsideTheLimitsOfSizeAreLeftOut_data();
    void areasOutsideTheLimitsOfSizeAreLeftOut();
    void areasThatTouchAtACornerAreOne();
    void findAreasSteersTheFlow_data();
    void findAreasSteersTheFlow();
    void newResultReplacesTheOldOne();
    void contourOfARectangleHasItsFourCorners();
    void contoursWithFewPointsAreLeftOut();
    void linesRunAlongEdges();
    void cornersAreFoundWithinTheirLimit();
    void twoThreadsRunOneAlgorithmAtOnce();
};

namespace {

const QString Gray = QStringLiteral("<InputType>Gray8</InputType><InputID>1</InputID>");
const QString Colour = QStringLiteral("<InputType>RGB</InputType><InputID>1</InputID>");
const QString Output = QStringLiteral("<OutputID>2</OutputID><OutputName>out</OutputName>");

ParamGray8* addGray(ArithmParamMgr* store, int width, int height, int value = 0)
{
    ParamGray8* picture = store->getParamGray8(1);
    picture->resize(width, height);
    std::fill_n(picture->getGray8(), width * height, static_cast<unsigned char>(value));
    return picture;
}

void fill(ParamGray8* picture, const QRect& rect, int value)
{
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        std::fill_n(picture->getGray8() + y * picture->getWidth() + rect.left(), rect.width(),
                    static_cast<unsigned char>(value));
}

int at(const ParamGray8* picture, int x, int y)
{
    return picture->getGray8()[y * picture->getWidth() + x];
}

QStringList allNames()
{
    return {"toGray", "toGray16", "blur", "threshold", "findAreas", "findContours", "findLines", "findCorners"};
}

bool takesColourOnly(const QString& name)
{
    return name == QLatin1String("toGray") || name == QLatin1String("toGray16");
}

/// A black picture, record 1, of rows of 16 bytes; the second row is blue, green, red, white, black.
void addColours(ArithmParamMgr* store)
{
    ParamDIB* colour = store->getParamDIB(1);
    colour->resize(5, 2);
    std::fill_n(colour->getDIB(), 32, static_cast<unsigned char>(0));
    unsigned char* second = colour->getDIB() + 16;
    second[0] = 255;
    second[3 + 1] = 255;
    second[6 + 2] = 255;
    std::fill_n(second + 9, 3, static_cast<unsigned char>(255));
}

QString areasOption(const QString& more)
{
    return Gray +
           "<AreasID>2</AreasID><AreasName>a</AreasName><CountID>3</CountID><CountName>c</CountName>"
           "<MinSize>1</MinSize>" +
           more;
}

}  // namespace

void TestPackSteps::everyAlgorithmNamesItself_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("displayName");
    QTest::newRow("toGray") << "toGray"
                            << "LV_ToGray"
                            << "图像处理"
                            << "彩色转灰度";
    QTest::newRow("toGray16") << "toGray16"
                              << "LV_ToGray16"
                              << "图像处理"
                              << "彩色转16位灰度";
    QTest::newRow("blur") << "blur"
                          << "LV_Blur"
                          << "图像处理"
                          << "模糊";
    QTest::newRow("threshold") << "threshold"
                               << "LV_Threshold"
                               << "图像处理"
                               << "二值化";
    QTest::newRow("findAreas") << "findAreas"
                               << "LV_FindAreas"
                               << "目标检测"
                               << "查找区域";
    QTest::newRow("findContours") << "findContours"
                                  << "LV_FindContours"
                                  << "目标检测"
                                  << "查找轮廓";
    QTest::newRow("findLines") << "findLines"
                               << "LV_FindLines"
                               << "目标检测"
                               << "查找直线";
    QTest::newRow("findCorners") << "findCorners"
                                 << "LV_FindCorners"
                                 << "目标检测"
                                 << "查找角点";
}

void TestPackSteps::everyAlgorithmNamesItself()
{
    QFETCH(QString, name);
    const AlgorithmLibrary library(name);
    QTEST(library.id(), "id");
    QTEST(library.className(), "className");
    QTEST(library.displayName(), "displayName");
}

void TestPackSteps::wrongInputIsExplained_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("expected");
    for (const QString& name : allNames()) {
        const bool colour = takesColourOnly(name);
        const QString type = colour ? "RGB" : "Gray8";
        const auto row = [&](const char* what, int id, const QString& expected) {
            QTest::addRow("%s, %s", qPrintable(name), what)
                << name << QStringLiteral("\n<InputType>%1</InputType><InputID>%2</InputID>\n").arg(type).arg(id)
                << expected;
        };
        row("none chosen", 0, "没有选择输入图像.");
        row("missing", 77, "输入图像不存在, 编号: 77.");
        row("empty", colour ? 11 : 12, QStringLiteral("输入图像是空的, 编号: %1.").arg(colour ? 11 : 12));
        row("other kind", colour ? 12 : 11,
            colour ? QStringLiteral("输入图像的类型不对, 编号: 12, 现在是灰度图像, 需要彩色图像.")
                   : QStringLiteral("输入图像的类型不对, 编号: 11, 现在是彩色图像, 需要灰度图像."));
    }
    QTest::newRow("empty option") << "threshold"
                                  << ""
                                  << "没有选择输入图像.";
    QTest::newRow("garbage option") << "threshold"
                                    << "<InputID>x"
                                    << "没有选择输入图像.";
}

void TestPackSteps::wrongInputIsExplained()
{
    QFETCH(QString, name);
    QFETCH(QString, option);
    const StorePtr store = newStore();
    store->getParamDIB(11);
    store->getParamGray8(12);
    QTEST(AlgorithmLibrary(name).execute(option, store.get()), "expected");
}

void TestPackSteps::stepWithoutOutputsSaysSo()
{
    QFETCH(QString, name);
    const StorePtr store = newStore();
    addGray(store.get(), 8, 8);
    store->getParamDIB(1)->resize(8, 8);
    const QString option = takesColourOnly(name) ? Colour : Gray;
    QCOMPARE(AlgorithmLibrary(name).execute(option, store.get()), QStringLiteral("步骤没有设置输出."));
}

void TestPackSteps::missingStoreIsReported()
{
    QFETCH(QString, name);
    QCOMPARE(AlgorithmLibrary(name).execute(Gray, nullptr), QStringLiteral("没有参数表."));
}

void TestPackSteps::missingInputMakesNoRecord()
{
    const StorePtr store = newStore();
    AlgorithmLibrary("threshold").execute(Gray + Output, store.get());
    QVERIFY(store->requestParamGray8Map()->isEmpty());
}

void TestPackSteps::outputCarriesTheNameOfTheOption()
{
    const StorePtr store = newStore();
    addGray(store.get(), 4, 4);
    QCOMPARE(AlgorithmLibrary("threshold").execute(Gray + Output, store.get()), QString());
    QCOMPARE(store->findParamGray8(2)->getName(), QStringLiteral("out"));
}

void TestPackSteps::tinyPicturesAndAnyNumbersAreTaken_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");
    for (const QString& name : allNames()) {
        for (const QSize& size : {QSize(1, 1), QSize(1, 2), QSize(9, 1), QSize(2, 2), QSize(1, 3000), QSize(3000, 1)})
            QTest::addRow("%s, %d x %d", qPrintable(name), size.width(), size.height()) << name << size;
    }
}

void TestPackSteps::tinyPicturesAndAnyNumbersAreTaken()
{
    QFETCH(QString, name);
    QFETCH(QSize, size);
    const AlgorithmLibrary library(name);
    const QStringList tags{"Size",      "Value",     "BlockSize", "Offset",    "Invert",     "MinSize",  "MaxSize",
                           "WhenNone",  "SkipSteps", "MinPoints", "Tolerance", "LowEdge",    "HighEdge", "Votes",
                           "MinLength", "MaxGap",    "MaxCount",  "Quality",   "MinDistance"};
    for (const char* value : {"", "0", "1", "-1", "2147483647", "-2147483648", "99999999999", "x", "<"}) {
        for (int method = 0; method < 3; ++method) {
            const StorePtr store = newStore();
            ParamGray8* gray = addGray(store.get(), size.width(), size.height());
            for (int i = 0; i < size.width() * size.height(); ++i)
                gray->getGray8()[i] = static_cast<unsigned char>(i * 97 % 251);
            store->getParamDIB(1)->resize(size.width(), size.height());
            std::fill_n(store->getParamDIB(1)->getDIB(), (size.width() * 3 + 3) / 4 * 4 * size.height(),
                        static_cast<unsigned char>(200));
            QString option = takesColourOnly(name) ? Colour : Gray;
            for (const char* output : {"Output", "Areas", "Count", "Polys", "Lines", "Points"})
                option += QStringLiteral("<%1ID>2</%1ID>").arg(QLatin1String(output));
            option += QStringLiteral("<Method>%1</Method>").arg(method);
            for (const QString& tag : tags)
                option += QStringLiteral("<%1>%2</%1>").arg(tag, QLatin1String(value));

            const QString result = library.execute(option, store.get());

            QVERIFY2(result.isEmpty() || result.startsWith("<CMD>"), qPrintable(result + " for " + value));
        }
    }
}

void TestPackSteps::inputMayBeTheOutput_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("method");
    for (int method = 0; method < 3; ++method) {
        QTest::addRow("blur, %d", method) << "blur" << method;
        QTest::addRow("threshold, %d", method) << "threshold" << method;
    }
}

void TestPackSteps::inputMayBeTheOutput()
{
    QFETCH(QString, name);
    QFETCH(int, method);
    const AlgorithmLibrary library(name);
    const auto run = [&](int output) {
        const StorePtr store = newStore();
        ParamGray8* input = addGray(store.get(), 41, 31);
        for (int i = 0; i < 41 * 31; ++i)
            input->getGray8()[i] = static_cast<unsigned char>((i * 97 + i / 7) % 251);
        const QString option =
            Gray + QStringLiteral("<OutputID>%1</OutputID><Method>%2</Method>").arg(output).arg(method);
        const QString error = library.execute(option, store.get());
        return error.toUtf8() + QByteArray(reinterpret_cast<char*>(store->getParamGray8(output)->getGray8()), 41 * 31);
    };

    QCOMPARE(run(1), run(2));
}

void TestPackSteps::grayHasTheWeightsOfTheEye()
{
    const StorePtr store = newStore();
    addColours(store.get());
    QCOMPARE(AlgorithmLibrary("toGray").execute(Colour + Output, store.get()), QString());
    const ParamGray8* gray = store->findParamGray8(2);
    QCOMPARE(QSize(gray->getWidth(), gray->getHeight()), QSize(5, 2));
    const QVector<int> expected{29, 150, 76, 255, 0};
    for (int x = 0; x < 5; ++x) {
        QCOMPARE(at(gray, x, 0), 0);
        QCOMPARE(at(gray, x, 1), expected[x]);
    }
}

void TestPackSteps::sixteenBitGrayIsTheEightBitGrayTimes257()
{
    const StorePtr store = newStore();
    addColours(store.get());
    QCOMPARE(AlgorithmLibrary("toGray16").execute(Colour + Output, store.get()), QString());
    const ParamGray16* gray = store->findParamGray16(2);
    QVERIFY(gray);
    QCOMPARE(QSize(gray->getWidth(), gray->getHeight()), QSize(5, 2));
    const QVector<int> expected{0, 0, 0, 0, 0, 7453, 38550, 19532, 65535, 0};
    QCOMPARE(QVector<int>(gray->getGray16(), gray->getGray16() + 10), expected);
    QVERIFY(!store->findParamGray8(2));
}

void TestPackSteps::boxBlurAveragesItsWindow()
{
    const StorePtr store = newStore();
    fill(addGray(store.get(), 9, 9), QRect(4, 4, 1, 1), 90);
    QCOMPARE(AlgorithmLibrary("blur").execute(Gray + Output + "<Method>0</Method><Size>3</Size>", store.get()),
             QString());
    const ParamGray8* result = store->findParamGray8(2);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 9; ++x)
            QCOMPARE(at(result, x, y), qAbs(x - 4) <= 1 && qAbs(y - 4) <= 1 ? 10 : 0);
    }
}

void TestPackSteps::blurKeepsTheKindOfItsInput()
{
    const AlgorithmLibrary library("blur");
    for (int method = 0; method < 3; ++method) {
        const StorePtr store = newStore();
        ParamDIB* colour = store->getParamDIB(1);
        colour->resize(5, 5);
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 5; ++x) {
                unsigned char* pixel = colour->getDIB() + 16 * y + 3 * x;
                pixel[0] = 10;
                pixel[1] = 100;
                pixel[2] = 200;
            }
        }
        QCOMPARE(library.execute(Colour + Output + QStringLiteral("<Method>%1</Method>").arg(method), store.get()),
                 QString());
        const unsigned char* last = store->findParamDIB(2)->getDIB() + 16 * 4 + 3 * 4;
        QCOMPARE((QVector<int>{last[0], last[1], last[2]}), (QVector<int>{10, 100, 200}));
        QVERIFY(!store->findParamGray8(2));
    }
}

void TestPackSteps::medianBlurRemovesASinglePixel()
{
    const StorePtr store = newStore();
    fill(addGray(store.get(), 9, 9, 50), QRect(4, 4, 1, 1), 255);
    AlgorithmLibrary("blur").execute(Gray + Output + "<Method>2</Method><Size>3</Size>", store.get());
    QCOMPARE(at(store->findParamGray8(2), 4, 4), 50);
}

void TestPackSteps::fixedThresholdIsExclusive()
{
    const StorePtr store = newStore();
    ParamGray8* input = addGray(store.get(), 3, 1);
    for (int i = 0; i < 3; ++i)
        input->getGray8()[i] = static_cast<unsigned char>(99 + i);
    const AlgorithmLibrary library("threshold");
    QCOMPARE(library.execute(Gray + Output + "<Value>100</Value>", store.get()), QString());
    const ParamGray8* result = store->findParamGray8(2);
    QCOMPARE((QVector<int>{at(result, 0, 0), at(result, 1, 0), at(result, 2, 0)}), (QVector<int>{0, 0, 255}));
    library.execute(Gray + Output + "<Value>100</Value><Invert>1</Invert>", store.get());
    QCOMPARE((QVector<int>{at(result, 0, 0), at(result, 1, 0), at(result, 2, 0)}), (QVector<int>{255, 255, 0}));
}

void TestPackSteps::otsuFindsTheValueItself()
{
    const StorePtr store = newStore();
    fill(addGray(store.get(), 20, 20, 30), QRect(5, 5, 8, 8), 60);
    AlgorithmLibrary("threshold").execute(Gray + Output + "<Method>1</Method><Value>200</Value>", store.get());
    QCOMPARE(at(store->findParamGray8(2), 4, 4), 0);
    QCOMPARE(at(store->findParamGray8(2), 5, 5), 255);
    QCOMPARE(at(store->findParamGray8(2), 12, 12), 255);
    QCOMPARE(at(store->findParamGray8(2), 13, 13), 0);
}

void TestPackSteps::adaptiveThresholdFollowsTheLight()
{
    const StorePtr store = newStore();
    ParamGray8* input = addGray(store.get(), 100, 20);
    for (int x = 0; x < 100; ++x)
        fill(input, QRect(x, 0, 1, 20), 50 + x);    // brighter to the right
    fill(input, QRect(20, 8, 4, 4), 50 + 20 + 40);  // darker than the ground at the right edge
    fill(input, QRect(80, 8, 4, 4), 50 + 80 + 40);
    AlgorithmLibrary("threshold")
        .execute(Gray + Output + "<Method>2</Method><BlockSize>15</BlockSize><Offset>-10</Offset>", store.get());
    const ParamGray8* result = store->findParamGray8(2);
    QCOMPARE(at(result, 21, 9), 255);
    QCOMPARE(at(result, 81, 9), 255);
    QCOMPARE(at(result, 50, 9), 0);
    QCOMPARE(at(result, 99, 19), 0);
}

void TestPackSteps::areasHaveBoxesCentresAndACount()
{
    const StorePtr store = newStore();
    ParamGray8* input = addGray(store.get(), 40, 30);
    fill(input, QRect(3, 5, 7, 9), 255);
    fill(input, QRect(20, 10, 5, 3), 1);
    QCOMPARE(AlgorithmLibrary("findAreas").execute(areasOption(""), store.get()), QString());
    const ParamAreas* areas = store->findParamAreas(2);
    QCOMPARE(areas->getAreaNum(), 2);
    ParamAreas::Area area;
    QVERIFY(areas->getArea(area, 0));
    QCOMPARE((QVector<int>{area.label, area.top, area.bottom, area.left, area.right, area.centerX, area.centerY}),
             (QVector<int>{1, 5, 13, 3, 9, 6, 9}));
    QVERIFY(areas->getArea(area, 1));
    QCOMPARE((QVector<int>{area.label, area.top, area.bottom, area.left, area.right, area.centerX, area.centerY}),
             (QVector<int>{2, 10, 12, 20, 24, 22, 11}));
    QCOMPARE(store->findParamStrings(3)->getStrings(), (QVector<QByteArray>{"Areas: 2"}));
}

void TestPackSteps::areasOutsideTheLimitsOfSizeAreLeftOut_data()
{
    QTest::addColumn<QString>("limits");
    QTest::addColumn<int>("expected");
    QTest::newRow("no limit") << "<MinSize>1</MinSize><MaxSize>0</MaxSize>" << 3;
    QTest::newRow("smallest is inside") << "<MinSize>4</MinSize><MaxSize>0</MaxSize>" << 3;
    QTest::newRow("smallest is outside") << "<MinSize>5</MinSize><MaxSize>0</MaxSize>" << 2;
    QTest::newRow("largest is inside") << "<MinSize>1</MinSize><MaxSize>36</MaxSize>" << 3;
    QTest::newRow("largest is outside") << "<MinSize>1</MinSize><MaxSize>35</MaxSize>" << 2;
    QTest::newRow("none") << "<MinSize>37</MinSize>" << 0;
}

void TestPackSteps::areasOutsideTheLimitsOfSizeAreLeftOut()
{
    QFETCH(QString, limits);
    const StorePtr store = newStore();
    ParamGray8* input = addGray(store.get(), 40, 30);
    fill(input, QRect(1, 1, 2, 2), 255);
    fill(input, QRect(10, 1, 4, 4), 255);
    fill(input, QRect(20, 1, 6, 6), 255);
    const QString option = Gray + "<AreasID>2</AreasID><CountID>3</CountID>" + limits;
    QCOMPARE(AlgorithmLibrary("findAreas").execute(option, store.get()), QString());
    QTEST(store->findParamAreas(2)->getAreaNum(), "expected");
}

void TestPackSteps::areasThatTouchAtACornerAreOne()
{
    const StorePtr store = newStore();
    ParamGray8* input = addGray(store.get(), 10, 10);
    fill(input, QRect(1, 1, 3, 3), 255);
    fill(input, QRect(4, 4, 3, 3), 255);
    AlgorithmLibrary("findAreas").execute(areasOption(""), store.get());
    QCOMPARE(store->findParamAreas(2)->getAreaNum(), 1);
}

void TestPackSteps::findAreasSteersTheFlow_data()
{
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("expected");
    const QString print = "<Print>1</Print>", skip = "<WhenNone>1</WhenNone><SkipSteps>2</SkipSteps>",
                  stop = "<WhenNone>2</WhenNone>";
    QTest::newRow("found, silent") << true << ""
                                   << "";
    QTest::newRow("found, print") << true << print << "<CMD>print:找到 1 个区域.</CMD>";
    QTest::newRow("found, skip") << true << skip << "";
    QTest::newRow("found, stop") << true << stop << "";
    QTest::newRow("none, silent") << false << ""
                                  << "";
    QTest::newRow("none, print") << false << print << "<CMD>print:找到 0 个区域.</CMD>";
    QTest::newRow("none, two steps left out") << false << skip << "<CMD>skip:3</CMD>";
    QTest::newRow("none, stop") << false << stop << "<CMD>stop:没有找到区域.</CMD>";
    QTest::newRow("none, print and skip")
        << false << print + skip << "<CMD>print:找到 0 个区域.</CMD><CMD>skip:3</CMD>";
}

void TestPackSteps::findAreasSteersTheFlow()
{
    QFETCH(bool, found);
    QFETCH(QString, option);
    const StorePtr store = newStore();
    ParamGray8* input = addGray(store.get(), 10, 10);
    if (found)
        fill(input, QRect(2, 2, 3, 3), 255);
    QTEST(AlgorithmLibrary("findAreas").execute(areasOption(option), store.get()), "expected");
}

void TestPackSteps::newResultReplacesTheOldOne()
{
    const StorePtr store = newStore();
    ParamGray8* input = addGray(store.get(), 20, 20);
    fill(input, QRect(2, 2, 3, 3), 255);
    const AlgorithmLibrary library("findAreas");
    library.execute(areasOption(""), store.get());
    QCOMPARE(store->findParamAreas(2)->getAreaNum(), 1);
    fill(input, QRect(0, 0, 20, 20), 0);
    library.execute(areasOption(""), store.get());
    QCOMPARE(store->findParamAreas(2)->getAreaNum(), 0);
    QCOMPARE(store->findParamStrings(3)->getStrings(), (QVector<QByteArray>{"Areas: 0"}));
}

void TestPackSteps::contourOfARectangleHasItsFourCorners()
{
    const StorePtr store = newStore();
    fill(addGray(store.get(), 40, 30), QRect(5, 6, 20, 10), 255);
    QCOMPARE(AlgorithmLibrary("findContours").execute(Gray + "<PolysID>2</PolysID>", store.get()), QString());
    const QVector<ParamPolys::Poly> polys = store->findParamPolys(2)->getPolys();
    QCOMPARE(polys.size(), 1);
    QSet<QPair<int, int>> corners;
    for (const ParamPolys::Point& point : polys.first())
        corners.insert({point.x, point.y});
    QCOMPARE(corners, (QSet<QPair<int, int>>{{5, 6}, {24, 6}, {24, 15}, {5, 15}}));
}

void TestPackSteps::contoursWithFewPointsAreLeftOut()
{
    const StorePtr store = newStore();
    fill(addGray(store.get(), 40, 30), QRect(5, 6, 20, 10), 255);
    const AlgorithmLibrary library("findContours");
    library.execute(Gray + "<PolysID>2</PolysID><MinPoints>5</MinPoints>", store.get());
    QCOMPARE(store->findParamPolys(2)->getPolyNum(), 0);
    // The contour runs through the middles of the border pixels, so it encloses 19 x 9.
    library.execute(Gray + "<PolysID>2</PolysID><MinSize>171</MinSize>", store.get());
    QCOMPARE(store->findParamPolys(2)->getPolyNum(), 1);
    library.execute(Gray + "<PolysID>2</PolysID><MinSize>172</MinSize>", store.get());
    QCOMPARE(store->findParamPolys(2)->getPolyNum(), 0);
}

void TestPackSteps::linesRunAlongEdges()
{
    const StorePtr store = newStore();
    fill(addGray(store.get(), 200, 100), QRect(0, 50, 200, 50), 200);
    QCOMPARE(AlgorithmLibrary("findLines").execute(Gray + "<LinesID>2</LinesID>", store.get()), QString());
    const QVector<ParamLines::Line> lines = store->findParamLines(2)->getLines();
    QVERIFY(!lines.isEmpty());
    for (const ParamLines::Line& line : lines) {
        QVERIFY(qAbs(line.y1 - 50) <= 2 && qAbs(line.y2 - 50) <= 2);
        QVERIFY(qAbs(line.x2 - line.x1) >= 40);
    }
    AlgorithmLibrary("findLines").execute(Gray + "<LinesID>2</LinesID><MinLength>500</MinLength>", store.get());
    QCOMPARE(store->findParamLines(2)->getLineNum(), 0);
}

void TestPackSteps::cornersAreFoundWithinTheirLimit()
{
    const StorePtr store = newStore();
    fill(addGray(store.get(), 100, 80), QRect(30, 20, 40, 30), 200);
    const AlgorithmLibrary library("findCorners");
    QCOMPARE(library.execute(Gray + "<PointsID>2</PointsID>", store.get()), QString());
    const QVector<ParamPoints::Point> points = store->findParamPoints(2)->getPoints();
    QCOMPARE(points.size(), 4);
    for (const ParamPoints::Point& point : points) {
        QVERIFY(qMin(qAbs(point.x - 30), qAbs(point.x - 69)) <= 2);
        QVERIFY(qMin(qAbs(point.y - 20), qAbs(point.y - 49)) <= 2);
    }
    library.execute(Gray + "<PointsID>2</PointsID><MaxCount>3</MaxCount>", store.get());
    QCOMPARE(store->findParamPoints(2)->getPointNum(), 3);
}

void TestPackSteps::twoThreadsRunOneAlgorithmAtOnce()
{
    const AlgorithmLibrary library("findAreas");
    int wrong[2] = {0, 0};
    const auto work = [&](int self) {
        const StorePtr store = newStore();
        ParamGray8* input = addGray(store.get(), 30, 30);
        for (int i = 0; i <= self; ++i)
            fill(input, QRect(2 + 6 * i, 2, 3, 3), 255);
        const QString expected = QStringLiteral("<CMD>print:找到 %1 个区域.</CMD>").arg(self + 1);
        for (int i = 0; i < 300; ++i)
            wrong[self] += library.execute(areasOption("<Print>1</Print>"), store.get()) == expected ? 0 : 1;
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    QCOMPARE(wrong[0], 0);
    QCOMPARE(wrong[1], 0);
}

QTEST_GUILESS_MAIN(TestPackSteps)
#include "tst_packSteps.moc"
