#include "drawingSupport.h"
#include "globalFunction.h"
#include "threadGuards.h"
#include "view/paintTurns.h"
#include "view/viewForm.h"

#include <QHBoxLayout>
#include <QtTest>

#include <algorithm>
#include <array>

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
