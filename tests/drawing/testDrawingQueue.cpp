#include "drawing/drawingOpt.h"
#include "drawing/pixelPool.h"
#include "drawingSupport.h"
#include "globalFunction.h"
#include "threadGuards.h"

#include <QtTest>

#include <atomic>
#include <cstring>
#include <functional>
#include <limits>
#include <thread>
#include <vector>

using namespace DrawingSupport;

namespace {

GlobalFunction& registry()
{
    return *GlobalFunction::getInstance();
}

char* run(const QByteArray& text, ArithmParamMgr* store)
{
    QByteArray copy = text;
    return Drawing::execute(copy.data(), store);
}

QByteArray pointsText(int view, int id)
{
    return "<View>" + QByteArray::number(view) + "</View><DataType>3</DataType><DataID>" + QByteArray::number(id) +
           "</DataID>";
}

/// The records that wait in a view, oldest first; taken off when asked to.
QVector<int> waitingIds(int view)
{
    QVector<int> ids;
    const ViewRecord record(view);
    if (!record)
        return ids;
    const ThreadGuards::MutexGuard guard(record->m_cMutex);
    for (int i = 0; i < record->m_nCount; ++i)
        ids.push_back(record->m_apcOptions[static_cast<std::size_t>(i)]->getDataID());
    return ids;
}

void emptyQueue(int view)
{
    const ViewRecord record(view);
    if (!record)
        return;
    const ThreadGuards::MutexGuard guard(record->m_cMutex);
    while (record->takeOldest()) {
    }
}

void removeAllViews()
{
    for (int view = 0; view < GlobalFunction::ViewSlotNum; ++view) {
        emptyQueue(view);
        registry().removeView(view);
    }
}

void together(int threadNum, const std::function<void(int)>& work)
{
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < threadNum; ++number) {
        threads.emplace_back([&, number] {
            ++ready;
            while (ready < threadNum)
                std::this_thread::yield();
            work(number);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace

/// The hand-over of drawing options: the registry of the views, their queues, the step that fills them.
class TestDrawingQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void getInstanceCalledByManyThreadsFirstMakesOne();
    void init();
    void cleanupTestCase() { removeAllViews(); }
    void viewHasNoRecordBeforeItIsAdded();
    void addedViewStartsEmpty();
    void addingAgainKeepsTheRecord();
    void indicesOutsideAreIgnored_data();
    void indicesOutsideAreIgnored();
    void resizeMakesTheRecordAndKeepsTheSize();
    void requestHoldsTheViewsMutexUntilRelease();
    void removedViewIsGoneAndItsOptionsLiveOn();
    void stepQueuesForItsViewWithItsStore();
    void stepForAnUnknownViewQueuesNothing();
    void elevenOptionsLeaveTheTenNewest();
    void optionThatIsPushedOutIsDeleted();
    void optionsComeOffInOrder();
    void viewsHaveQueuesOfTheirOwn();
    void takingOffAnEmptyQueueGivesNothing();
    void droppingOptionsOfAStoreKeepsTheOthersInOrder();
    void droppingReachesAHiddenViewAndAllSix();
    void recordReadWhileAnotherThreadMakesIt();
    void manyThreadsQueueTakeAddRemoveAndResize();
    void droppingWhileOtherTasksQueue();
    void viewThatGoesWhileAStepWaitsForItHoldsNobodyUp();
};

void TestDrawingQueue::init()
{
    if (GlobalFunction::s_pcInstance.load())  // the first test makes it
        removeAllViews();
}

// Stands first: no other test may have made the instance before.
void TestDrawingQueue::getInstanceCalledByManyThreadsFirstMakesOne()
{
    QVERIFY(!GlobalFunction::s_pcInstance.load());
    std::vector<GlobalFunction*> seen(8, nullptr);

    together(8, [&](int number) { seen[static_cast<std::size_t>(number)] = GlobalFunction::getInstance(); });

    QVERIFY(seen[0]);
    for (GlobalFunction* instance : seen)
        QCOMPARE(instance, seen[0]);
    QCOMPARE(GlobalFunction::s_pcInstance.load(), seen[0]);
}

void TestDrawingQueue::viewHasNoRecordBeforeItIsAdded()
{
    const Store store = makeStore();

    QVERIFY(!registry().requestViewDrawOption(4));
    QCOMPARE(run(pointsText(4, 1), store.get()), "");
    QVERIFY(!registry().requestViewDrawOption(4));
}

void TestDrawingQueue::addedViewStartsEmpty()
{
    registry().addView(5, nullptr);

    const ViewRecord record(5);
    QVERIFY(record);
    QCOMPARE(record->m_nCount, 0);
    QCOMPARE(record->m_nCanvasWidth, 0);
    QCOMPARE(record->m_nCanvasHeight, 0);
    for (const Drawing::DrawingOpt* option : record->m_apcOptions)
        QVERIFY(!option);
}

void TestDrawingQueue::addingAgainKeepsTheRecord()
{
    const Store store = makeStore();
    registry().addView(1, nullptr);
    run(pointsText(1, 7), store.get());

    registry().addView(1, nullptr);

    QCOMPARE(waitingIds(1), QVector<int>{7});
}

void TestDrawingQueue::indicesOutsideAreIgnored_data()
{
    QTest::addColumn<int>("view");
    QTest::newRow("6") << 6;
    QTest::newRow("-1") << -1;
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
    QTest::newRow("largest") << std::numeric_limits<int>::max();
}

void TestDrawingQueue::indicesOutsideAreIgnored()
{
    QFETCH(int, view);
    const Store store = makeStore();
    GlobalFunction::ViewDrawOption foreign;

    registry().addView(view, nullptr);
    registry().resizeViewCanvas(view, 5, 5);
    QVERIFY(!registry().requestViewDrawOption(view));
    registry().releaseViewDrawOption(view, &foreign);
    registry().releaseViewDrawOption(view, nullptr);
    registry().removeView(view);
    QCOMPARE(run(pointsText(view, 1), store.get()), "");

    for (int known = 0; known < 6; ++known)
        QVERIFY(!registry().requestViewDrawOption(known));
}

void TestDrawingQueue::resizeMakesTheRecordAndKeepsTheSize()
{
    registry().resizeViewCanvas(2, 640, 480);
    registry().addView(2, nullptr);

    const ViewRecord record(2);
    QVERIFY(record);
    QCOMPARE(record->m_nCanvasWidth, 640);
    QCOMPARE(record->m_nCanvasHeight, 480);
}

void TestDrawingQueue::requestHoldsTheViewsMutexUntilRelease()
{
    registry().addView(0, nullptr);
    registry().addView(1, nullptr);
    GlobalFunction::ViewDrawOption* held = registry().requestViewDrawOption(0);
    std::atomic<bool> entered{false};
    std::thread other([&] {
        const ViewRecord record(0);
        entered = true;
    });
    std::thread unhindered([] { const ViewRecord record(1); });

    unhindered.join();  // another view's record is free
    QTest::qSleep(20);
    QVERIFY(!entered);
    registry().releaseViewDrawOption(0, held);
    other.join();
    QVERIFY(entered);
}

void TestDrawingQueue::removedViewIsGoneAndItsOptionsLiveOn()
{
    const Store store = makeStore();
    registry().addView(3, nullptr);
    run(pointsText(3, 8), store.get());
    Drawing::DrawingOpt* waiting = nullptr;
    {
        const ViewRecord record(3);
        waiting = record->m_apcOptions[0];
    }

    registry().removeView(3);

    QVERIFY(!registry().requestViewDrawOption(3));
    const Option owned(waiting);
    QCOMPARE(owned->getDataID(), 8);
    registry().removeView(3);  // once more does nothing
}

void TestDrawingQueue::stepQueuesForItsViewWithItsStore()
{
    const Store store = makeStore();
    registry().addView(2, nullptr);

    QCOMPARE(run(pointsText(2, 5), store.get()), "");

    const ViewRecord record(2);
    QCOMPARE(record->m_nCount, 1);
    QCOMPARE(record->m_apcOptions[0]->getViewID(), 2);
    QCOMPARE(record->m_apcOptions[0]->getParamMgr(), store.get());
}

void TestDrawingQueue::stepForAnUnknownViewQueuesNothing()
{
    const Store store = makeStore();
    registry().addView(0, nullptr);

    QCOMPARE(run(pointsText(5, 1), store.get()), "");
    QCOMPARE(run(pointsText(77, 1), store.get()), "");
    QCOMPARE(Drawing::execute(nullptr, store.get()), "");

    QVERIFY(waitingIds(0).isEmpty());
}

void TestDrawingQueue::elevenOptionsLeaveTheTenNewest()
{
    const Store store = makeStore();
    registry().addView(0, nullptr);

    for (int id = 1; id <= 11; ++id)
        run(pointsText(0, id), store.get());

    QCOMPARE(waitingIds(0), (QVector<int>{2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
}

void TestDrawingQueue::optionThatIsPushedOutIsDeleted()
{
    const Store store = makeStore();
    store->getParamGray8(1)->resize(701, 503);
    std::memset(store->getParamGray8(1)->getGray8(), 1, 701 * 503);
    registry().addView(0, nullptr);
    const QByteArray text = "<DataType>1</DataType><DataID>1</DataID>";
    for (int i = 0; i < 11; ++i)
        run(text, store.get());
    const auto before = PooledPixels::poolState().m_nAllocations;

    for (int i = 0; i < 20; ++i)
        run(text, store.get());

    // Each new copy gets the memory of the option that was pushed out before it.
    QCOMPARE(PooledPixels::poolState().m_nAllocations, before);
    emptyQueue(0);
}

void TestDrawingQueue::optionsComeOffInOrder()
{
    const Store store = makeStore();
    registry().addView(0, nullptr);
    for (int id = 1; id <= 3; ++id)
        run(pointsText(0, id), store.get());

    {
        const ViewRecord record(0);
        QCOMPARE(record->takeOldest()->getDataID(), 1);
        QVERIFY(!record->m_apcOptions[2]);
    }
    run(pointsText(0, 4), store.get());

    QCOMPARE(waitingIds(0), (QVector<int>{2, 3, 4}));
}

void TestDrawingQueue::viewsHaveQueuesOfTheirOwn()
{
    const Store store = makeStore();
    registry().addView(0, nullptr);
    registry().addView(1, nullptr);

    run(pointsText(0, 1), store.get());
    run(pointsText(1, 2), store.get());

    QCOMPARE(waitingIds(0), QVector<int>{1});
    QCOMPARE(waitingIds(1), QVector<int>{2});
}

void TestDrawingQueue::takingOffAnEmptyQueueGivesNothing()
{
    registry().addView(0, nullptr);

    const ViewRecord record(0);
    QVERIFY(!record->takeOldest());
    QCOMPARE(record->m_nCount, 0);
}

void TestDrawingQueue::droppingOptionsOfAStoreKeepsTheOthersInOrder()
{
    const Store mine = makeStore();
    const Store other = makeStore();
    registry().addView(0, nullptr);
    for (int id = 1; id <= 10; ++id)
        run(pointsText(0, id), id % 3 == 0 ? mine.get() : other.get());

    registry().dropOptionsOf(mine.get());

    QCOMPARE(waitingIds(0), (QVector<int>{1, 2, 4, 5, 7, 8, 10}));
    const ViewRecord record(0);
    for (std::size_t i = 7; i < 10; ++i)
        QVERIFY(!record->m_apcOptions[i]);
}

// No widget shows any of these views: their queues are only ever filled.
void TestDrawingQueue::droppingReachesAHiddenViewAndAllSix()
{
    const Store other = makeStore();
    Store mine = makeStore();
    for (int view = 0; view < 6; ++view) {
        registry().addView(view, nullptr);
        run(pointsText(view, 1), mine.get());
    }
    run(pointsText(4, 2), other.get());

    registry().dropOptionsOf(mine.get());
    mine.reset();

    for (int view = 0; view < 6; ++view)
        QCOMPARE(waitingIds(view), view == 4 ? QVector<int>{2} : QVector<int>{});
    emptyQueue(4);
}

void TestDrawingQueue::recordReadWhileAnotherThreadMakesIt()
{
    std::atomic<int> broken{0};
    for (int round = 0; round < 100; ++round) {
        together(4, [&](int number) {
            if (number == 0)
                registry().addView(0, nullptr);
            if (number == 1)
                registry().resizeViewCanvas(0, 10, 20);
            const ViewRecord record(0);
            broken += record && record->m_nCount != 0;
        });
        {
            const ViewRecord made(0);
            QVERIFY(made);
            QCOMPARE(made->m_nCanvasWidth, 10);
        }
        registry().removeView(0);
    }
    QCOMPARE(broken.load(), 0);
}

void TestDrawingQueue::manyThreadsQueueTakeAddRemoveAndResize()
{
    const Store store = makeStore();
    store->getParamGray8(1)->resize(8, 8);
    std::memset(store->getParamGray8(1)->getGray8(), 1, 64);
    const auto takeAll = [](int view) {
        const ViewRecord record(view);
        if (!record)
            return;
        const ThreadGuards::MutexGuard guard(record->m_cMutex);
        while (record->takeOldest()) {
        }
    };
    together(6, [&](int number) {
        for (int i = 0; i < 200; ++i) {
            const int view = i % 2;
            if (number < 3)
                run("<View>" + QByteArray::number(view) + "</View><DataType>1</DataType><DataID>1</DataID>",
                    store.get());
            else if (number == 3)
                takeAll(view);
            else if (number == 4)
                registry().resizeViewCanvas(view, i, i);
            else
                registry().addView(view, nullptr);
        }
    });
    // Removing while others ask: with nothing queued, so that nothing is left over.
    removeAllViews();
    std::atomic<int> found{0};
    together(4, [&](int number) {
        for (int i = 0; i < 200; ++i) {
            if (number == 0)
                registry().removeView(0);
            else if (number == 1)
                registry().addView(0, nullptr);
            else
                found += waitingIds(0).size();
        }
    });
    QCOMPARE(found.load(), 0);
}

void TestDrawingQueue::droppingWhileOtherTasksQueue()
{
    const Store mine = makeStore();
    const Store other = makeStore();
    registry().addView(0, nullptr);

    together(2, [&](int number) {
        for (int i = 0; i < 300; ++i) {
            if (number == 0) {
                run(pointsText(0, 1), other.get());
                continue;
            }
            run(pointsText(0, 2), mine.get());
            registry().dropOptionsOf(mine.get());
        }
    });

    QVERIFY(!waitingIds(0).contains(2));
}

void TestDrawingQueue::viewThatGoesWhileAStepWaitsForItHoldsNobodyUp()
{
    int gone = 0;
    for (int round = 0; round < 2000 && gone < 5; ++round) {
        registry().addView(0, nullptr);
        GlobalFunction::ViewDrawOption* held = registry().requestViewDrawOption(0);
        std::atomic<bool> asks{false};
        std::atomic<bool> found{false};
        std::thread remover([] { registry().removeView(0); });
        QTest::qSleep(1);
        std::thread step([&asks, &found] {
            asks = true;
            found = static_cast<bool>(ViewRecord(0));
        });
        while (!asks)
            std::this_thread::yield();
        QTest::qSleep(1);  // both most likely wait, and most likely the first one goes on first
        registry().releaseViewDrawOption(0, held);
        remover.join();
        step.join();
        gone += !found;
    }
    QCOMPARE(gone, 5);

    registry().addView(0, nullptr);
    QVERIFY(ViewRecord(0));  // would wait for ever
}

QTEST_GUILESS_MAIN(TestDrawingQueue)
#include "testDrawingQueue.moc"
