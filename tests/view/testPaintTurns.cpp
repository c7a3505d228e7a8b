#include "drawingSupport.h"
#include "globalFunction.h"
#include "threadGuards.h"
#include "view/paintTurns.h"
#include "view/viewForm.h"

#include <QHBoxLayout>
#include <QtTest>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

using namespace DrawingSupport;

namespace {

constexpr int ViewNum = 4;
constexpr int OptionNum = 5;

int waiting(int view)
{
    const ViewRecord record(view);
    const ThreadGuards::MutexGuard guard(record->m_cMutex);
    return record->m_nCount;
}

void queuePoints(ArithmParamMgr* store, int view)
{
    store->getParamPoints(1)->replaceAll({{1, 1}});
    for (int i = 0; i < OptionNum; ++i) {
        QByteArray text = "<View>" + QByteArray::number(view) + "</View><DataType>3</DataType><DataID>1</DataID>";
        Drawing::execute(text.data(), store);
    }
}

bool allDrawn()
{
    for (int view = 0; view < ViewNum; ++view) {
        if (waiting(view) > 0)
            return false;
    }
    return true;
}

/// Four views in one window, and how many of them each update of the window painted.
class WatchedWindow : public QWidget
{
public:
    WatchedWindow()
    {
        auto* layout = new QHBoxLayout(this);
        for (int view = 0; view < ViewNum; ++view) {
            GlobalFunction::getInstance()->addView(view, nullptr);
            m_apcViews[static_cast<std::size_t>(view)] = new ViewForm(view, this);
            layout->addWidget(m_apcViews[static_cast<std::size_t>(view)]);
        }
        resize(800, 200);
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (object == this && event->type() == QEvent::UpdateRequest)
            m_vecPaints.append(0);
        if (event->type() == QEvent::Paint && qobject_cast<ViewForm*>(object) && !m_vecPaints.isEmpty())
            ++m_vecPaints.last();
        // The refresh timers of the views would all fire at one moment, which is not what is looked at here.
        const auto* timer = event->type() == QEvent::Timer ? qobject_cast<QTimer*>(object) : nullptr;
        return timer && timer->interval() == 300;
    }

    std::array<ViewForm*, ViewNum> m_apcViews{};
    QVector<int> m_vecPaints;  ///< Views painted, one number for each update of the window.
};

/// Counts the events of one kind that an object gets while it lives.
class EventCounter : public QObject
{
public:
    EventCounter(QObject* object, QEvent::Type type) : m_eType(type) { object->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* timer = event->type() == QEvent::Timer ? qobject_cast<QTimer*>(object) : nullptr;
        m_nCount += event->type() == m_eType && (!timer || timer->interval() == 0);
        return false;
    }
    int count() const { return m_nCount; }

private:
    QEvent::Type m_eType;
    int m_nCount = 0;
};

}  // namespace

/// Several busy views in one window.
class TestPaintTurns : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void busyViewsPaintOneATurnUntilAllIsDrawn()
    {
        const Store store = makeStore();
        WatchedWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::qWait(0);  // the paints that come with showing
        for (int view = 0; view < ViewNum; ++view)
            queuePoints(store.get(), view);
        window.m_vecPaints.clear();

        for (ViewForm* view : window.m_apcViews)
            view->timeout();

        QTRY_VERIFY_WITH_TIMEOUT(allDrawn(), 30000);
        QCOMPARE(*std::max_element(window.m_vecPaints.cbegin(), window.m_vecPaints.cend()), 1);
        QVERIFY(std::count(window.m_vecPaints.cbegin(), window.m_vecPaints.cend(), 1) >= ViewNum * OptionNum);
    }

    void aViewThatDiesWhileItWaitsForItsTurnIsPassedOver()
    {
        const Store store = makeStore();
        WatchedWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        queuePoints(store.get(), 1);

        PaintTurns::ask(window.m_apcViews[0]);
        PaintTurns::ask(window.m_apcViews[1]);
        delete window.m_apcViews[0];

        QTRY_COMPARE_WITH_TIMEOUT(waiting(1), 0, 30000);
    }

    void aViewThatAsksAgainWhileItWaitsIsPaintedOnce()
    {
        WatchedWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::qWait(50);  // the paints that come with showing
        const EventCounter first(window.m_apcViews[0], QEvent::Paint);
        const EventCounter last(window.m_apcViews[3], QEvent::Paint);

        for (int i = 0; i < 5; ++i)
            PaintTurns::ask(window.m_apcViews[0]);
        PaintTurns::ask(window.m_apcViews[3]);

        QTRY_COMPARE_WITH_TIMEOUT(last.count(), 1, 30000);
        QCOMPARE(first.count(), 1);
    }

    void newViewIsNotDrawing()
    {
        const ViewForm view(0);
        QVERIFY(!view.isDrawing());
    }

    void moveWithoutALeftPressShowsNothing()
    {
        ViewForm view(0);
        view.resize(200, 150);
        const QImage before = view.grab().toImage();
        QMouseEvent move(QEvent::MouseMove, QPointF(60, 50), Qt::NoButton, Qt::RightButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &move);
        QCOMPARE(view.grab().toImage(), before);
    }

    void aViewWithoutARecordAsksForNoTurn()
    {
        WatchedWindow window;
        ViewForm unknown(ViewNum, &window);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::qWait(50);                                    // the paints that come with showing
        GlobalFunction::getInstance()->removeView(ViewNum);  // whom its first size made known
        const EventCounter first(&unknown, QEvent::Paint);
        const EventCounter last(window.m_apcViews[3], QEvent::Paint);

        unknown.timeout();
        PaintTurns::ask(window.m_apcViews[3]);

        QTRY_COMPARE_WITH_TIMEOUT(last.count(), 1, 30000);
        QCOMPARE(first.count(), 0);
    }

    void optionsOfAViewWithAnEmptyCanvasWait()
    {
        const Store store = makeStore();
        WatchedWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::qWait(50);  // the paints that come with showing
        *window.m_apcViews[0]->requestCanvas() = QImage();
        window.m_apcViews[0]->releaseCanvas();
        queuePoints(store.get(), 0);
        const EventCounter first(window.m_apcViews[0], QEvent::Paint);
        const EventCounter last(window.m_apcViews[3], QEvent::Paint);

        window.m_apcViews[0]->timeout();
        PaintTurns::ask(window.m_apcViews[3]);

        QTRY_COMPARE_WITH_TIMEOUT(last.count(), 1, 30000);
        PaintTurns::ask(window.m_apcViews[3]);
        QTRY_COMPARE_WITH_TIMEOUT(last.count(), 2, 30000);
        QCOMPARE(first.count(), 1);
        QCOMPARE(waiting(0), OptionNum);
        GlobalFunction::getInstance()->dropOptionsOf(store.get());
    }

    void nothingRunsOnceAllIsPainted()
    {
        WatchedWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        PaintTurns::ask(window.m_apcViews[0]);

        QVERIFY(QTest::qWaitFor(
            [] {
                const EventCounter turns(qApp, QEvent::Timer);
                QTest::qWait(20);
                return turns.count() == 0;
            },
            30000));
    }

    void pressAndMoveRepaintByThemselves()
    {
        WatchedWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::qWait(50);  // the paints that come with showing
        ViewForm* view = window.m_apcViews[0];
        const auto repaints = [&window](const std::function<void()>& act) {
            QCoreApplication::processEvents();
            window.m_vecPaints.clear();
            act();
            return QTest::qWaitFor([&window] { return window.m_vecPaints.contains(1); }, 10000);
        };

        QVERIFY(repaints([view] { QTest::mousePress(view, Qt::LeftButton, Qt::NoModifier, {10, 10}); }));
        QVERIFY(repaints([view] {
            QMouseEvent move(QEvent::MouseMove, QPointF(20, 30), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(view, &move);
        }));
        QVERIFY(repaints([view] { QTest::mousePress(view, Qt::RightButton, Qt::NoModifier, {15, 15}); }));
    }

    // A task that queues its next option never waits until the view has drawn the last one.
    void recordIsFreeWhileAnOptionIsDrawn()
    {
        constexpr int Enough = 20;  // Far more than fit between two draws.
        const Store store = makeStore();
        store->getParamLines(1)->replaceAll(QVector<ParamLines::Line>(100000, {0, 0, 190, 170}));
        WatchedWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        std::atomic<bool> stop{false};
        std::atomic<int> turns{0};
        std::thread task([&stop, &turns] {
            while (!stop) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                const ViewRecord record(0);
                turns += record ? 1 : 0;
            }
        });
        int most = 0;
        for (int i = 0; i < 20 && most < Enough; ++i) {
            QByteArray text("<View>0</View><DataType>4</DataType><DataID>1</DataID>");
            Drawing::execute(text.data(), store.get());
            const int before = turns;
            window.m_apcViews[0]->repaint();
            most = std::max(most, turns - before);
        }
        stop = true;
        task.join();
        QVERIFY2(most >= Enough, qPrintable(QString::number(most)));
    }

    void aHiddenViewDoesNotHoldTheOthersUp()
    {
        const Store store = makeStore();
        WatchedWindow window;
        window.m_apcViews[0]->hide();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        queuePoints(store.get(), 0);
        queuePoints(store.get(), 1);

        window.m_apcViews[0]->timeout();
        window.m_apcViews[1]->timeout();

        QTRY_COMPARE_WITH_TIMEOUT(waiting(1), 0, 30000);
        QCOMPARE(waiting(0), OptionNum);
        GlobalFunction::getInstance()->dropOptionsOf(store.get());
    }
};

QTEST_MAIN(TestPaintTurns)
#include "testPaintTurns.moc"
