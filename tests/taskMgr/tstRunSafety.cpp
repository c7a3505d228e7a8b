#include "globalFunction.h"
#include "processMemory.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"
#include "view/viewForm.h"

#include <QtTest>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

namespace {

const char* const StartText = "执行任务";
const char* const StopText = "停止任务";

QString s_strSlow;  // The library of the slow algorithm.

/// A message callback that does something else, once.
std::function<void()> s_fnOnMessage;
void callOnMessage(QString text)
{
    Reports::message(text);
    if (const auto call = std::exchange(s_fnOnMessage, nullptr))
        call();
}

}  // namespace

class tstRunSafety : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void deletingARunningTaskWaitsForItsStep();
    void taskMayDieAtTheMomentOfItsLastSignal();
    void runThatEndsAtOnceNeverStaysRunning();
    void endedThreadsLeaveNothingBehind();
    void startAndStopMayFollowEachOtherQuickly();
    void reportOfAnEarlierRunOnlyPassesItsMessageOn();
    void reportOfAnEarlierRunThatWasStoppedChangesNothing();
    void taskMayBeDeletedWhileItsMessageIsShown();
    void taskMayBeStartedAgainWhileItsMessageIsShown();
    void openEditorCommitsBeforeTheThreadStarts();
    void tabMayDieWhileTheTaskRuns();
    void runningTaskCanBeSaved();
    void viewMayBeChosenWhileTheTaskRuns();
    void tasksSharingAnAlgorithmNeverMixTheirResults();
    void optionsOfADeletedTaskLeaveEveryView();
    void stoppingAllTasksTogetherTakesOnePass();
    void tasksStoppedTogetherAreAllAskedBeforeOneIsWaitedForAndReturnToIdle();
};

void tstRunSafety::initTestCase()
{
    Probes::install();
    PluginFolders::addBase(QStringLiteral("algorithmEcho"));
    s_strSlow = PluginFolders::addBase(QStringLiteral("algorithmSlow"));
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstRunSafety::init()
{
    Probes::reset();
    Reports::clear();
    s_fnOnMessage = nullptr;
}

void tstRunSafety::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstRunSafety::deletingARunningTaskWaitsForItsStep()
{
    auto task = makeTask({step("gate"), step("end", "", 999999999)});
    task->startTask();
    QTRY_COMPARE(Probes::atGate(), 1);
    std::atomic<bool> opened{false};
    std::thread opener([&opened] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        opened = true;
        Probes::openGate();
    });

    task.reset();

    QVERIFY(opened);
    opener.join();
    QCOMPARE(Probes::trace(), QStringLiteral("gate,end"));
    QCoreApplication::processEvents();
    QCOMPARE(Reports::messages(), QStringList());
}

void tstRunSafety::taskMayDieAtTheMomentOfItsLastSignal()
{
    for (int round = 0; round < 300; ++round) {
        auto task = makeSourcelessTask({step("a")});
        task->startTask();
        if (round % 3 == 1)
            std::this_thread::yield();
        if (round % 3 == 2)
            QVERIFY(waitWithoutEvents([&task] { return !task->IsRunning(); }));
        task.reset();
    }
    QCoreApplication::processEvents();
    QCOMPARE(Reports::messages(), QStringList());  // reports of dead tasks go with them
}

void tstRunSafety::runThatEndsAtOnceNeverStaysRunning()
{
    auto task = makeSourcelessTask();
    Tab tab(*task);

    for (int run = 1; run <= 30; ++run) {
        tab.m_cRun.click();
        QTRY_COMPARE(Reports::messages().size(), run);
        QVERIFY(!task->IsRunning());
        QVERIFY(tab.allEnabled());
        QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StartText));
    }
}

// Nobody joins them.
void tstRunSafety::endedThreadsLeaveNothingBehind()
{
    constexpr int RunNum = 100;
    constexpr long StackBytes = 4L << 20;  // usual are twice as many
    auto task = makeTask({}, Paced);
    task->startTask();
    task->stopTask();
    const qint64 before = addressSpaceBytes();

    for (int run = 0; run < RunNum; ++run) {
        task->startTask();
        task->stopTask();
    }

    QVERIFY(addressSpaceBytes() - before < RunNum * StackBytes);
}

void tstRunSafety::startAndStopMayFollowEachOtherQuickly()
{
    auto task = makeTask({step("a"), step("end", "", 999999999)}, QStringLiteral("wait=1"));
    const Tab tab(*task);

    for (int run = 0; run < 100; ++run) {
        task->startTask();
        QVERIFY(task->IsRunning());
        if (run % 10 == 0)
            QCoreApplication::processEvents();
        task->stopTask();
        QVERIFY(!task->IsRunning());
        QVERIFY(tab.allEnabled());
    }

    QCOMPARE(Probes::sourceCalls("start"), 100);
    QCOMPARE(Probes::sourceCalls("stop"), 100);
    QCOMPARE(Probes::trace().count(QStringLiteral("end")), 100);
    QCoreApplication::processEvents();
    QVERIFY(tab.allEnabled());
    QCOMPARE(Reports::messages(), QStringList());
}

void tstRunSafety::reportOfAnEarlierRunOnlyPassesItsMessageOn()
{
    auto task = makeTask({missingStep()}, Paced);
    Tab tab(*task);
    task->startTask();
    QVERIFY(waitWithoutEvents([&task] { return !task->IsRunning(); }));
    task->getTaskItem() = {step("a")};
    tab.m_cRun.click();

    QTRY_COMPARE(Reports::messages(), QStringList{QStringLiteral("Arithm\"缺\"is not existed.")});

    QVERIFY(task->IsRunning());
    QVERIFY(tab.allDisabled());
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StopText));
    QTRY_VERIFY(task->getPassNum() > 1);
    tab.m_cRun.click();
    QVERIFY(!task->IsRunning());
    QVERIFY(tab.allEnabled());
}

void tstRunSafety::reportOfAnEarlierRunThatWasStoppedChangesNothing()
{
    auto task = makeTask({step("a")}, Paced);
    const Tab tab(*task);
    task->startTask();
    task->stopTask();
    task->startTask();

    QTest::qWait(30);

    QVERIFY(task->IsRunning());
    QVERIFY(tab.allDisabled());
    // The report of a later run is still known as its own.
    task->stopTask();
    task->getTaskItem() = {missingStep()};
    task->startTask();
    QTRY_COMPARE(Reports::messages().size(), 1);
    QVERIFY(tab.allEnabled());
}

void tstRunSafety::taskMayBeDeletedWhileItsMessageIsShown()
{
    auto* task = makeSourcelessTask().release();
    const QPointer<TaskInfo> watched(task);
    Tab tab(*task);
    task->setMssageCallBack(callOnMessage);
    s_fnOnMessage = [task] { delete task; };

    task->startTask();

    QTRY_COMPARE(Reports::messages().size(), 1);
    QVERIFY(!watched);
}

void tstRunSafety::taskMayBeStartedAgainWhileItsMessageIsShown()
{
    auto task = makeTask({missingStep()}, Paced);
    const Tab tab(*task);
    task->setMssageCallBack(callOnMessage);
    s_fnOnMessage = [&task] {
        task->getTaskItem() = {step("a")};
        task->startTask();
    };

    task->startTask();
    QTRY_COMPARE(Reports::messages().size(), 1);

    QVERIFY(task->IsRunning());
    QVERIFY(tab.allDisabled());
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StopText));
    task->stopTask();
}

void tstRunSafety::openEditorCommitsBeforeTheThreadStarts()
{
    auto task = makeTask({step("a")}, Paced);
    Tab tab(*task);
    tab.m_cPage.resize(500, 400);
    tab.m_cPage.show();
    QVERIFY(QTest::qWaitForWindowActive(&tab.m_cPage));
    tab.m_pcTable->setFocus();
    tab.m_pcTable->editItem(tab.m_pcTable->item(0, 1));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("0"));

    task->startTask();
    QCOMPARE(task->getTaskItem().first().m_nMaxExeTimes, 0);
    QTest::qWait(20);
    task->stopTask();

    QCOMPARE(Probes::trace(), QString());
}

void tstRunSafety::tabMayDieWhileTheTaskRuns()
{
    auto task = makeTask({step("a")}, Paced);
    auto tab = std::make_unique<Tab>(*task);
    task->startTask();
    QTRY_VERIFY(task->getPassNum() > 1);

    tab.reset();

    const long long passes = task->getPassNum();
    QTRY_VERIFY(task->getPassNum() > passes);
    task->stopTask();
    task->getTaskItem() = {missingStep()};
    task->startTask();
    QTRY_COMPARE(Reports::messages().size(), 1);
    QVERIFY(!task->IsRunning());
}

void tstRunSafety::runningTaskCanBeSaved()
{
    auto task = makeTask({step("a"), step("b", "", 5), step("c", "", 999999999)}, QStringLiteral("wait=1"));
    const QString before = task->toString();
    task->startTask();

    for (int i = 0; i < 50; ++i) {
        QCOMPARE(task->toString(), before);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    QVERIFY(task->IsRunning());
    task->stopTask();
}

void tstRunSafety::viewMayBeChosenWhileTheTaskRuns()
{
    TaskItem drawing;
    drawing.m_strArithmID = QStringLiteral("KW_Drawing");
    drawing.m_strOption = QStringLiteral("<DataType>3</DataType><DataID>5</DataID>");
    auto task = makeTask({drawing}, QStringLiteral("wait=1"));
    task->startTask();

    for (int i = 0; i < 50; ++i) {
        task->ViewSelected(i % 9);
        task->ThreadSelected(i % 3);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    task->ViewSelected(9);

    QTRY_COMPARE(task->getView(), 3);
    task->stopTask();
}

void tstRunSafety::tasksSharingAnAlgorithmNeverMixTheirResults()
{
    std::vector<std::unique_ptr<TaskInfo>> tasks;
    QStringList expected;
    for (int number = 1; number <= 3; ++number) {
        const QString text = QString::number(number).repeated(1000 + number * 300);
        expected += text;
        TaskItem echo = step("");
        echo.m_strArithmID = QStringLiteral("Test.Echo");
        echo.m_strOption = QStringLiteral("<CMD>print:") + text + QStringLiteral("</CMD>");
        tasks.push_back(makeTask({echo}, QStringLiteral("wait=1")));
        tasks.back()->startTask();
    }

    for (const auto& task : tasks)
        QTRY_VERIFY(task->getPassNum() > 20);
    for (const auto& task : tasks)
        task->stopTask();

    const QStringList prints = Reports::prints();
    for (const QString& text : prints)
        QVERIFY(expected.contains(text));
    for (const QString& text : qAsConst(expected))
        QVERIFY(prints.contains(text));
}

void tstRunSafety::optionsOfADeletedTaskLeaveEveryView()
{
    ViewForm visible(0);
    ViewForm hidden(1);
    for (int view = 0; view < 2; ++view)
        GlobalFunction::getInstance()->addView(view, nullptr);
    visible.resize(100, 100);
    visible.show();
    QVERIFY(QTest::qWaitForWindowExposed(&visible));
    TaskItem drawing;
    drawing.m_strArithmID = QStringLiteral("KW_Drawing");
    drawing.m_strOption = QStringLiteral("<DataType>3</DataType><DataID>5</DataID>");

    for (int view = 0; view < 2; ++view) {
        auto task = makeTask({drawing}, QStringLiteral("wait=1"));
        task->ViewSelected(view);
        task->startTask();
        QTRY_VERIFY(task->getPassNum() > 15);
        task.reset();
        const ViewRecord record(view);
        QVERIFY(record);
        QCOMPARE(record->m_nCount, 0);
    }
    visible.update();
    hidden.show();
    QTest::qWait(350);  // both views look at their queues
}

void tstRunSafety::stoppingAllTasksTogetherTakesOnePass()
{
    constexpr int TaskNum = 6;
    TaskItem slow = step("");
    slow.m_strArithmID = QStringLiteral("Test.Slow");
    slow.m_strOption = QStringLiteral("100;");
    for (int id = 0; id < TaskNum; ++id) {
        TaskMgr::getInstance()->addTask(makeTask({slow}).release(), id);
        TaskMgr::getInstance()->getTask(id)->startTask();
    }
    QTRY_VERIFY(PluginFolders::algorithmCalls(s_strSlow, "execute") >= TaskNum);
    const int before = PluginFolders::algorithmCalls(s_strSlow, "execute");

    TaskMgr::getInstance()->clear();

    // None began one pass after the other while others were waited for.
    QVERIFY(PluginFolders::algorithmCalls(s_strSlow, "execute") <= before + TaskNum);
}

void tstRunSafety::tasksStoppedTogetherAreAllAskedBeforeOneIsWaitedForAndReturnToIdle()
{
    auto held = makeTask({step("gate")});
    auto quick = makeTask({step("a")}, Paced);
    auto idle = makeTask({step("b")}, Paced);
    const Tab heldTab(*held);
    const Tab quickTab(*quick);
    held->startTask();
    quick->startTask();
    QTRY_COMPARE(Probes::atGate(), 1);
    // The task that is waited for goes on only once the one behind it has ended.
    bool quickEnded = false;
    std::thread opener([&quick, &quickEnded] {
        quickEnded = waitWithoutEvents([&quick] { return !quick->IsRunning(); });
        Probes::openGate();
    });

    TaskInfo::stopTasks({held.get(), quick.get(), idle.get()});

    opener.join();
    QVERIFY(quickEnded);
    for (TaskInfo* const task : {held.get(), quick.get(), idle.get()})
        QVERIFY(!task->IsRunning());
    for (const Tab* const tab : {&heldTab, &quickTab}) {
        QVERIFY(tab->allEnabled());
        QCOMPARE(tab->m_cRun.text(), QString::fromUtf8(StartText));
    }
    QCoreApplication::processEvents();
    QCOMPARE(Reports::messages(), QStringList());
    QCOMPARE(Probes::traceCount("b"), 0);
}

QTEST_MAIN(tstRunSafety)
#include "tstRunSafety.moc"
