#include "../soak/soakMemory.h"
#include "drawing/pixelPool.h"
#include "drawingSupport.h"

#include <QtTest>

using namespace DrawingSupport;

/// What a steady stream of pictures takes from malloc while it is drawn.
class TestSteadyDrawing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetViewScales(); }
    void steadyDrawingInEveryModeTakesNoFreshMemory_data();
    void steadyDrawingInEveryModeTakesNoFreshMemory();
};

void TestSteadyDrawing::steadyDrawingInEveryModeTakesNoFreshMemory_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QByteArray>("mode");
    const QByteArray colour = "<DataType>0</DataType><DataID>1</DataID>";
    const QByteArray grey = "<DataType>1</DataType><DataID>1</DataID>";
    QTest::newRow("colour") << colour << QByteArray();
    QTest::newRow("grey") << grey << QByteArray();
    QTest::newRow("16 bits, which is not shown")
        << QByteArray("<DataType>2</DataType><DataID>1</DataID>") << QByteArray();
    QTest::newRow("overlay") << grey << QByteArray("<Val>1</Val>");
    QTest::newRow("overlay in blocks of colour") << grey << QByteArray("<Lapped>1</Lapped><Val>1</Val>");
    for (const char* mask : {"0,0", "1,1", "2,2", "0,3"})
        QTest::addRow("mask %s", mask) << grey << "<Mask>" + QByteArray(mask) + "</Mask><Val>2</Val>";
}

void TestSteadyDrawing::steadyDrawingInEveryModeTakesNoFreshMemory()
{
    QFETCH(QByteArray, kind);
    QFETCH(QByteArray, mode);
    const Store store = makeStore();
    store->getParamDIB(1)->resize(640, 480);
    store->getParamGray8(1)->resize(640, 480);
    store->getParamGray16(1)->resize(640, 480);
    QImage canvas = filledCanvas(400, 300, 0);
    const auto drawAll = [&] {
        for (const char* placement : {"<Scale>0</Scale>", "<Scale>1</Scale>", "<Scale>2</Scale>", "<Scale>3</Scale>"}) {
            const QByteArray text = kind + "<Config>" + placement + "<DrawMode>" + mode + "</DrawMode></Config>";
            parse(text.constData(), store.get())->draw(&canvas, store.get());
        }
    };
    drawAll();
    const PooledPixels::PoolState before = PooledPixels::poolState();
    const SoakMemory::Requests requestsBefore = SoakMemory::requestsOfThisThread();
    for (int i = 0; i < 20; ++i)
        drawAll();
    const SoakMemory::Requests requests = SoakMemory::requestsOfThisThread();
    const PooledPixels::PoolState after = PooledPixels::poolState();
    QCOMPARE(after.m_nAllocations, before.m_nAllocations);
    QCOMPARE(after.m_nFreeBytes, before.m_nFreeBytes);
    QCOMPARE(requests.m_nLarge, requestsBefore.m_nLarge);
}

QTEST_MAIN(TestSteadyDrawing)
#include "testSteadyDrawing.moc"
