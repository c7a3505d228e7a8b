#include "packLibraries.h"
#include "testPatternTruth.h"

#include <QtTest>

#include <algorithm>

/// Sources and algorithms together: what the test pattern shows is what the algorithms find.
class TestGroundTruth : public QObject
{
    Q_OBJECT

private slots:
    void areasAreTheShapes_data();
    void areasAreTheShapes();
    void contoursOfBarsAreTheirCorners();
    void cornersOfABarAreFound();
    void longEdgesOfABarAreLines();
    void colourAndGrayPicturesGiveTheSameAreas();
};

namespace {

/// A step chain on pictures of the test pattern; records 1 (picture), 2 (grey), 3 (two values), 4 (result).
class Bench
{
public:
    Bench(const TestPattern::Scene& scene, bool colour)
        : m_cStore(newStore()), m_cSourceLibrary(QStringLiteral("testPattern")), m_bColour(colour)
    {
        const QString config = QStringLiteral(
                                   "<Width>%1</Width><Height>%2</Height><Discs>%3</Discs><Bars>%4</Bars><Text>%5</Text>"
                                   "<Rate>0</Rate>")
                                   .arg(scene.width)
                                   .arg(scene.height)
                                   .arg(scene.discs)
                                   .arg(scene.bars)
                                   .arg(scene.text ? 1 : 0);
        m_pcSource = std::make_unique<SourceInstance>(m_cSourceLibrary, config);
        m_pcSource->start();
    }

    /// Copies the next picture into the store and makes it grey and two-valued.
    void nextPicture()
    {
        const Picture picture = m_pcSource->waitFor(m_bColour ? "RGB" : "Gray8");
        if (m_bColour) {
            m_cStore->getParamDIB(1)->resize(picture.width, picture.height);
            std::copy(picture.bytes.begin(), picture.bytes.end(), m_cStore->getParamDIB(1)->getDIB());
            run("toGray", QStringLiteral("<InputType>RGB</InputType><InputID>1</InputID><OutputID>2</OutputID>"));
        } else {
            m_cStore->getParamGray8(2)->resize(picture.width, picture.height);
            std::copy(picture.bytes.begin(), picture.bytes.end(), m_cStore->getParamGray8(2)->getGray8());
        }
        run("threshold", QStringLiteral("<InputID>2</InputID><OutputID>3</OutputID><Value>130</Value>"));
    }

    void run(const char* name, const QString& option)
    {
        QCOMPARE(AlgorithmLibrary(QLatin1String(name)).execute(option, m_cStore.get()), QString());
    }

    ArithmParamMgr* store() { return m_cStore.get(); }

private:
    StorePtr m_cStore;
    SourceLibrary m_cSourceLibrary;
    std::unique_ptr<SourceInstance> m_pcSource;
    bool m_bColour;
};

using Box = QVector<int>;  // top, bottom, left, right, centre x, centre y

QVector<Box> truthOf(const TestPattern::Scene& scene, std::uint32_t number)
{
    QVector<Box> boxes;
    for (int i = 0; i < scene.discs; ++i) {
        const TestPattern::Disc disc = TestPattern::disc(scene, i, number);
        boxes.append(
            {disc.y - disc.radius, disc.y + disc.radius, disc.x - disc.radius, disc.x + disc.radius, disc.x, disc.y});
    }
    for (int i = 0; i < scene.bars; ++i) {
        const TestPattern::Bar bar = TestPattern::bar(scene, i, number);
        boxes.append({bar.top, bar.top + bar.height - 1, bar.left, bar.left + bar.width - 1,
                      qRound(bar.left + (bar.width - 1) / 2.0 - 0.001),
                      qRound(bar.top + (bar.height - 1) / 2.0 - 0.001)});
    }
    return boxes;  // from the upper lanes down, as the areas are found
}

QVector<Box> foundIn(ArithmParamMgr* store)
{
    QVector<Box> boxes;
    for (const ParamAreas::Area& area : store->findParamAreas(4)->getAreas())
        boxes.append({area.top, area.bottom, area.left, area.right, area.centerX, area.centerY});
    std::sort(boxes.begin(), boxes.end());
    return boxes;
}

const QString FindAreas = QStringLiteral(
    "<InputID>3</InputID><AreasID>4</AreasID><CountID>5</CountID>"
    "<MinSize>1</MinSize>");

}  // namespace

void TestGroundTruth::areasAreTheShapes_data()
{
    QTest::addColumn<bool>("colour");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("discs");
    QTest::addColumn<int>("bars");
    QTest::newRow("grey") << false << 640 << 480 << 3 << 2;
    QTest::newRow("colour") << true << 640 << 480 << 3 << 2;
    QTest::newRow("odd size") << true << 333 << 251 << 4 << 3;
    QTest::newRow("many") << false << 800 << 600 << 9 << 9;
    QTest::newRow("none") << false << 160 << 120 << 0 << 0;
}

void TestGroundTruth::areasAreTheShapes()
{
    QFETCH(bool, colour);
    TestPattern::Scene scene;
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, discs);
    QFETCH(int, bars);
    scene.width = width;
    scene.height = height;
    scene.discs = discs;
    scene.bars = bars;
    Bench bench(scene, colour);
    for (std::uint32_t number = 0; number < 25; ++number) {
        bench.nextPicture();
        bench.run("findAreas", FindAreas);
        const QVector<Box> found = foundIn(bench.store());
        const QVector<Box> truth = truthOf(scene, number);
        QCOMPARE(found.size(), discs + bars);
        for (int i = 0; i < found.size(); ++i) {
            QCOMPARE(found[i].mid(0, 4), truth[i].mid(0, 4));
            QVERIFY(qAbs(found[i][4] - truth[i][4]) <= 1 && qAbs(found[i][5] - truth[i][5]) <= 1);
        }
        QCOMPARE(bench.store()->findParamStrings(5)->getStrings().first(),
                 QByteArray("Areas: ") + QByteArray::number(discs + bars));
    }
}

void TestGroundTruth::contoursOfBarsAreTheirCorners()
{
    TestPattern::Scene scene;
    scene.discs = 0;
    scene.bars = 1;
    Bench bench(scene, true);
    for (std::uint32_t number = 0; number < 5; ++number) {
        bench.nextPicture();
        bench.run("findContours", QStringLiteral("<InputID>3</InputID><PolysID>4</PolysID>"));
        const QVector<ParamPolys::Poly> polys = bench.store()->findParamPolys(4)->getPolys();
        QCOMPARE(polys.size(), 1);
        const TestPattern::Bar bar = TestPattern::bar(scene, 0, number);
        QSet<QPair<int, int>> corners;
        for (const ParamPolys::Point& point : polys.first())
            corners.insert({point.x, point.y});
        const int right = bar.left + bar.width - 1, bottom = bar.top + bar.height - 1;
        QCOMPARE(corners,
                 (QSet<QPair<int, int>>{{bar.left, bar.top}, {right, bar.top}, {right, bottom}, {bar.left, bottom}}));
    }
}

void TestGroundTruth::cornersOfABarAreFound()
{
    TestPattern::Scene scene;
    scene.discs = 0;
    scene.bars = 1;
    Bench bench(scene, false);
    bench.nextPicture();
    bench.run("findCorners", QStringLiteral("<InputID>3</InputID><PointsID>4</PointsID><Quality>30</Quality>"));
    const QVector<ParamPoints::Point> points = bench.store()->findParamPoints(4)->getPoints();
    QCOMPARE(points.size(), 4);
    const TestPattern::Bar bar = TestPattern::bar(scene, 0, 0);
    for (const ParamPoints::Point& point : points) {
        QVERIFY(qMin(qAbs(point.x - bar.left), qAbs(point.x - bar.left - bar.width + 1)) <= 2);
        QVERIFY(qMin(qAbs(point.y - bar.top), qAbs(point.y - bar.top - bar.height + 1)) <= 2);
    }
}

void TestGroundTruth::longEdgesOfABarAreLines()
{
    TestPattern::Scene scene;
    scene.discs = 0;
    scene.bars = 1;
    Bench bench(scene, false);
    bench.nextPicture();
    bench.run("findLines", QStringLiteral("<InputID>3</InputID><LinesID>4</LinesID><MinLength>100</MinLength>"));
    const TestPattern::Bar bar = TestPattern::bar(scene, 0, 0);
    bool upper = false, lower = false;
    for (const ParamLines::Line& line : bench.store()->findParamLines(4)->getLines()) {
        if (qAbs(line.y1 - line.y2) > 2)
            continue;
        upper = upper || qAbs(line.y1 - bar.top) <= 2;
        lower = lower || qAbs(line.y1 - bar.top - bar.height + 1) <= 2;
    }
    QVERIFY(upper);
    QVERIFY(lower);
}

void TestGroundTruth::colourAndGrayPicturesGiveTheSameAreas()
{
    Bench colour(TestPattern::Scene(), true), gray(TestPattern::Scene(), false);
    colour.nextPicture();
    gray.nextPicture();
    colour.run("findAreas", FindAreas);
    gray.run("findAreas", FindAreas);
    QCOMPARE(foundIn(colour.store()), foundIn(gray.store()));
    QCOMPARE(foundIn(colour.store()).size(), 5);
}

QTEST_GUILESS_MAIN(TestGroundTruth)
#include "tst_groundTruth.moc"
