#include "packLibraries.h"
#include "testPatternTruth.h"

#if __has_include("memoryLimit.h")
#include "memoryLimit.h"  // of the workbench's repository
#define HAS_MEMORY_LIMIT
#endif

#include <QElapsedTimer>
#include <QtTest>

#include <thread>

/// The data source "Test Pattern" through its C interface.
class TestTestPattern : public QObject
{
    Q_OBJECT

private slots:
    void isCalledTestPattern();
    void firstPictureShowsShapesAtTheirKnownPlaces();
    void grayPictureAgreesWithColourPicture();
    void numbersCountUpFromZeroAtEveryStart();
    void numberIsReadableFromGrayPicturesToo();
    void digitsShowTheNumber();
    void anySizeIsDelivered_data();
    void anySizeIsDelivered();
    void shapesOfAllLanesStayInsideAndApart();
    void shapesMoveToAndFro();
    void requestBeforeStartWaitsAndGivesNothing();
    void rateIsKept();
    void slowestRateIsNotNoLimit();
    void pictureWithoutMemoryIsReportedAfterAWait();
    void stopWakesAWaitingRequest();
    void configurationMayChangeBetweenPictures();
    void unknownTypeGivesNothing();
    void unknownInstanceIsHarmless();
    void operationsInAnyOrderFromTwoThreadsAreSafe();

private:
    const SourceLibrary m_cLibrary{QStringLiteral("testPattern")};
};

namespace {

const QString Fast = QStringLiteral("<Rate>0</Rate>");

QString sized(int width, int height)
{
    return QStringLiteral("<Width>%1</Width><Height>%2</Height><Rate>0</Rate>").arg(width).arg(height);
}

/// Blue, green, red of a pixel.
QVector<int> pixelOf(const Picture& picture, int x, int y)
{
    const int offset = (picture.width * 3 + 3) / 4 * 4 * y + 3 * x;
    return {picture.byteAt(offset), picture.byteAt(offset + 1), picture.byteAt(offset + 2)};
}

std::uint32_t numberOf(const Picture& picture)
{
    return TestPattern::readNumber(reinterpret_cast<const unsigned char*>(picture.bytes.constData()), 3,
                                   (picture.width * 3 + 3) / 4 * 4);
}

}  // namespace

void TestTestPattern::isCalledTestPattern()
{
    QCOMPARE(QByteArray(m_cLibrary.getDataSourceName()), QByteArray("Test Pattern"));
}

void TestTestPattern::firstPictureShowsShapesAtTheirKnownPlaces()
{
    SourceInstance source(m_cLibrary, Fast);
    source.start();
    const Picture picture = source.waitFor("RGB");
    QCOMPARE(picture.width, 640);
    QCOMPARE(picture.height, 480);
    const QVector<int> ground{24, 24, 24};
    // Lanes begin at row 33 and are 89 high; the first disc has its centre at (35, 77) and radius 34.
    QCOMPARE(pixelOf(picture, 35, 77), (QVector<int>{40, 220, 255}));
    QCOMPARE(pixelOf(picture, 1, 77), (QVector<int>{40, 220, 255}));
    QCOMPARE(pixelOf(picture, 0, 77), ground);
    QCOMPARE(pixelOf(picture, 35, 43), (QVector<int>{40, 220, 255}));
    QCOMPARE(pixelOf(picture, 35, 42), ground);
    // The first bar covers (112, 315) to (324, 372).
    QCOMPARE(pixelOf(picture, 112, 315), (QVector<int>{255, 255, 255}));
    QCOMPARE(pixelOf(picture, 324, 372), (QVector<int>{255, 255, 255}));
    QCOMPARE(pixelOf(picture, 111, 315), ground);
    QCOMPARE(pixelOf(picture, 112, 314), ground);
    QCOMPARE(pixelOf(picture, 325, 372), ground);
    QCOMPARE(pixelOf(picture, 324, 373), ground);
}

void TestTestPattern::grayPictureAgreesWithColourPicture()
{
    SourceInstance colour(m_cLibrary, sized(101, 90));
    SourceInstance gray(m_cLibrary, sized(101, 90));
    colour.start();
    gray.start();
    const Picture first = colour.waitFor("RGB");
    const Picture second = gray.waitFor("Gray8");
    QCOMPARE(first.bytes.size(), 304 * 90);
    QCOMPARE(second.bytes.size(), 101 * 90);
    for (int y = 0; y < 90; ++y) {
        for (int x = 0; x < 101; ++x) {
            const QVector<int> pixel = pixelOf(first, x, y);
            const double expected = 0.114 * pixel[0] + 0.587 * pixel[1] + 0.299 * pixel[2];
            QVERIFY(qAbs(second.byteAt(101 * y + x) - expected) <= 1.0);
        }
    }
}

void TestTestPattern::numbersCountUpFromZeroAtEveryStart()
{
    SourceInstance source(m_cLibrary, Fast);
    for (int round = 0; round < 2; ++round) {
        source.start();
        for (std::uint32_t number = 0; number < 20; ++number)
            QCOMPARE(numberOf(source.waitFor("RGB")), number);
        source.stop();
    }
}

void TestTestPattern::numberIsReadableFromGrayPicturesToo()
{
    SourceInstance source(m_cLibrary, sized(128, 4));
    source.start();
    for (std::uint32_t number = 0; number < 6; ++number) {
        const Picture picture = source.waitFor("Gray8");
        const auto* pixels = reinterpret_cast<const unsigned char*>(picture.bytes.constData());
        QCOMPARE(TestPattern::readNumber(pixels, 1, 128), number);
    }
}

void TestTestPattern::digitsShowTheNumber()
{
    SourceInstance source(m_cLibrary, sized(320, 160));  // one pixel a dot
    source.start();
    Picture picture;
    for (int i = 0; i <= 17; ++i)
        picture = source.waitFor("RGB");
    // The number is (8 * 6 - 1) pixels wide and in the middle: its last two digits lie at columns 136 + 6 * 6 and
    // 136 + 7 * 6, rows 8 to 14.
    const QStringList one{"  #  ", " ##  ", "  #  ", "  #  ", "  #  ", "  #  ", " ### "};
    const QStringList seven{"#####", "    #", "   # ", "  #  ", " #   ", " #   ", " #   "};
    for (int y = 0; y < 7; ++y) {
        for (int x = 0; x < 5; ++x) {
            QCOMPARE(pixelOf(picture, 172 + x, 8 + y)[0] == 112, one[y][x] == '#');
            QCOMPARE(pixelOf(picture, 178 + x, 8 + y)[0] == 112, seven[y][x] == '#');
        }
    }
}

void TestTestPattern::anySizeIsDelivered_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (const QSize& size : {QSize(1, 1), QSize(2, 1), QSize(1, 2), QSize(5, 2), QSize(3, 200), QSize(200, 3),
                              QSize(127, 5), QSize(33, 37), QSize(641, 479), QSize(1920, 1080)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size.width() << size.height();
}

void TestTestPattern::anySizeIsDelivered()
{
    QFETCH(int, width);
    QFETCH(int, height);
    SourceInstance source(m_cLibrary, sized(width, height));
    source.start();
    for (int i = 0; i < 3; ++i) {
        const Picture colour = source.waitFor("RGB");
        QCOMPARE(QSize(colour.width, colour.height), QSize(width, height));
        const Picture gray = source.waitFor("Gray8");
        QCOMPARE(QSize(gray.width, gray.height), QSize(width, height));
    }
}

void TestTestPattern::shapesOfAllLanesStayInsideAndApart()
{
    TestPattern::Scene scene;
    scene.discs = 7;
    scene.bars = 6;
    for (std::uint32_t number = 0; number < 3000; number += 7) {
        int below = TestPattern::lanesTop(scene);
        for (int i = 0; i < scene.discs; ++i) {
            const TestPattern::Disc disc = TestPattern::disc(scene, i, number);
            QVERIFY(disc.radius > 0 && disc.x - disc.radius >= 1 && disc.x + disc.radius < scene.width - 1);
            QVERIFY(disc.y - disc.radius > below);
            below = disc.y + disc.radius + 1;
        }
        for (int i = 0; i < scene.bars; ++i) {
            const TestPattern::Bar bar = TestPattern::bar(scene, i, number);
            QVERIFY(bar.width > 0 && bar.left >= 1 && bar.left + bar.width < scene.width);
            QVERIFY(bar.top > below);
            below = bar.top + bar.height + 1;
        }
        QVERIFY(below < scene.height);
    }
}

void TestTestPattern::shapesMoveToAndFro()
{
    const TestPattern::Scene scene;
    // Two pixels a picture from the left edge; 569 pixels wide is the way, so the disc turns after 284 pictures.
    QCOMPARE(TestPattern::disc(scene, 0, 0).x, 35);
    QCOMPARE(TestPattern::disc(scene, 0, 10).x, 55);
    QCOMPARE(TestPattern::disc(scene, 0, 284).x, 603);
    QCOMPARE(TestPattern::disc(scene, 0, 285).x, 603);
    QCOMPARE(TestPattern::disc(scene, 0, 286).x, 601);
    QCOMPARE(TestPattern::disc(scene, 0, 569).x, 35);
}

void TestTestPattern::requestBeforeStartWaitsAndGivesNothing()
{
    SourceInstance source(m_cLibrary, Fast);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(source.request("RGB").isNull());
    QVERIFY(timer.elapsed() >= 190);
}

void TestTestPattern::rateIsKept()
{
    SourceInstance source(m_cLibrary, QStringLiteral("<Width>8</Width><Height>8</Height><Rate>20</Rate>"));
    source.start();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 6; ++i)
        QVERIFY(!source.waitFor("RGB").isNull());
    QVERIFY(timer.elapsed() >= 5 * 50 - 5);
    // A slow rate: a request gives up after its longest wait instead of waiting for the picture.
    source.setConfig(QStringLiteral("<Width>8</Width><Height>8</Height><Rate>0.01</Rate>"));
    QVERIFY(!source.waitFor("RGB").isNull());
    QVERIFY(source.request("RGB").isNull());
}

void TestTestPattern::slowestRateIsNotNoLimit()
{
    for (const char* rate : {"0.004", "1e-10", "1e-300"}) {
        SourceInstance source(m_cLibrary,
                              QStringLiteral("<Width>8</Width><Height>8</Height><Rate>%1</Rate>").arg(rate));
        source.start();
        QVERIFY(!source.waitFor("RGB").isNull());
        QVERIFY(source.request("RGB").isNull());
    }
}

void TestTestPattern::pictureWithoutMemoryIsReportedAfterAWait()
{
#if !defined(HAS_MEMORY_LIMIT)
    QSKIP("The pack is built outside of the workbench's repository");
#else
    if (!MemoryLimit::works())
        QSKIP("Sanitizers need address space of their own");
    SourceInstance source(m_cLibrary, sized(16384, 16384));  // 805 MB
    source.start();
    QElapsedTimer timer;
    Picture picture;
    qint64 elapsed = 0;
    {
        const MemoryLimit limit(std::size_t{256} << 20);
        timer.start();
        picture = source.request("RGB");
        elapsed = timer.elapsed();
    }
    QVERIFY(picture.isNull());
    QVERIFY(elapsed >= 190);
    QCOMPARE(source.lastError(), QStringLiteral("内存不足: 16384 x 16384"));
#endif
}

void TestTestPattern::stopWakesAWaitingRequest()
{
    SourceInstance source(m_cLibrary, QStringLiteral("<Rate>0.01</Rate>"));
    qint64 shortest = 1000000;
    for (int round = 0; round < 20; ++round) {
        source.start();
        QVERIFY(!source.waitFor("RGB").isNull());
        QElapsedTimer timer;
        timer.start();
        Picture late;
        std::thread waiting([&] { late = source.request("RGB"); });
        QThread::msleep(20);
        source.stop();
        waiting.join();
        QVERIFY(late.isNull());
        shortest = qMin(shortest, timer.elapsed());
    }
    QVERIFY(shortest < 190);  // one that is not woken takes its whole 200 ms
}

void TestTestPattern::configurationMayChangeBetweenPictures()
{
    SourceInstance source(m_cLibrary, QStringLiteral("\n") + sized(10, 20) + QStringLiteral("\n"));
    source.start();
    QCOMPARE(source.waitFor("RGB").width, 10);
    source.setConfig(sized(30, 40));
    QCOMPARE(source.waitFor("RGB").width, 30);
}

void TestTestPattern::unknownTypeGivesNothing()
{
    SourceInstance source(m_cLibrary, Fast);
    source.start();
    QVERIFY(source.request("Gray16").isNull());
    QVERIFY(source.request("rgb").isNull());
}

void TestTestPattern::unknownInstanceIsHarmless()
{
    int width = 7, height = 7;
    QVERIFY(!m_cLibrary.requestPicture(123456, "RGB", &width, &height));
    QCOMPARE(QSize(width, height), QSize(0, 0));
    m_cLibrary.releasePicture(123456);
    m_cLibrary.start(123456);
    m_cLibrary.stop(123456);
    m_cLibrary.removeInstance(123456);
    QCOMPARE(QByteArray(m_cLibrary.getLastError(123456)), QByteArray());
}

void TestTestPattern::operationsInAnyOrderFromTwoThreadsAreSafe()
{
    SourceInstance source(m_cLibrary, sized(16, 16));
    source.start();
    int delivered = 0;
    std::thread requesting([&] {
        for (int i = 0; i < 200; ++i)
            delivered += source.request("RGB").isNull() ? 0 : 1;
    });
    for (int i = 0; i < 50; ++i) {
        source.stop();
        source.setConfig(sized(16 + i % 3, 16));
        source.start();
        source.lastError();
    }
    requesting.join();
    QVERIFY(delivered > 0);
}

QTEST_GUILESS_MAIN(TestTestPattern)
#include "tst_testPattern.moc"
