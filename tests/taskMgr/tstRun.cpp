#include "globalFunction.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"
#include "view/viewForm.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QtTest>

#include <sched.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace {

const char* const StartText = "执行任务";
const char* const StopText = "停止任务";

TaskItem step(const char* name, const char* result = "", int maxExeTimes = -1)
{
    return probeStep(QString::fromUtf8(name), QString::fromUtf8(result), maxExeTimes);
}

/// A source that gives a picture every few milliseconds.
const QString Paced = QStringLiteral("wait=3");

/// Waits for a condition without letting any signal arrive.
template <typename Condition>
bool waitWithoutEvents(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 30000)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

/// The processors that this program may use, as the probe writes them.
QString ownProcessors()
{
    cpu_set_t set;
    sched_getaffinity(0, sizeof(set), &set);
    QStringList cpus;
    for (std::size_t cpu = 0; cpu < 1024; ++cpu) {
        if (CPU_ISSET(cpu, &set))
            cpus += QString::number(cpu);
    }
    return cpus.join(QLatin1Char(','));
}

/// A message callback that does something else, once.
std::function<void()> s_fnOnMessage;
void callOnMessage(QString text)
{
    Reports::message(text);
    if (const auto call = std::exchange(s_fnOnMessage, nullptr))
        call();
}

std::mutex s_cMtxLog;
QStringList s_lstLog;  // Guarded by s_cMtxLog.
void keepLog(QtMsgType, const QMessageLogContext&, const QString& text)
{
    const std::lock_guard<std::mutex> lock(s_cMtxLog);
    s_lstLog += QString(text.constData(), text.size());
}

/// The lines logged while it lives.
class Log
{
public:
    Log() : m_pfnBefore(qInstallMessageHandler(keepLog)) { s_lstLog.clear(); }
    ~Log() { qInstallMessageHandler(m_pfnBefore); }

    static QStringList lines()
    {
        const std::lock_guard<std::mutex> lock(s_cMtxLog);
        return s_lstLog;
    }

private:
    QtMessageHandler m_pfnBefore;
};

}  // namespace

class tstRun : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void runButtonStartsAndStops();
    void tabIsDisabledWhileRunning();
    void taskWithoutASourceReportsAndReturnsToIdle();
    void stopCommandEndsTheRunWithoutAMessage();
    void failedStepEndsTheRunWithItsMessage();
    void startingARunningTaskDoesNothing();
    void stoppingAnIdleTaskDoesNothing();
    void stopRunsTheEndStepsOnce();
    void endStepsRunAfterAFailureToo();
    void errorOfAnEndStepReplacesTheMessageInTheThreadsWords();
    void errorOfAnEndStepIsNotReportedWhenStopped();
    void countersAreResetWhenARunStarts();
    void stopWaitsForTheStepInProgress();
    void labelOfThreadEntryIsOneBelowTheProcessor();
    void kernelBindsTheThread_data();
    void kernelBindsTheThread();
    void signalTellsHowTheRunEnded();
    void reportCalledByHandReturnsTheTabToIdle();
    void passesAreLoggedOnlyWhereAskedFor();

    void deletingARunningTaskWaitsForItsStep();
    void taskMayDieAtTheMomentOfItsLastSignal();
    void runThatEndsAtOnceNeverStaysRunning();
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
};

void tstRun::initTestCase()
{
    Probes::install();
    PluginFolders::addBase(QStringLiteral("algorithmEcho"));
    PluginFolders::addBase(QStringLiteral("algorithmSlow"));
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstRun::init()
{
    Probes::reset();
    Reports::clear();
    s_fnOnMessage = nullptr;
}

void tstRun::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstRun::runButtonStartsAndStops()
{
    auto task = makeTask({step("a")}, Paced);
    Tab tab(*task);

    tab.m_cRun.click();
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StopText));
    QVERIFY(task->IsRunning());
    QTRY_VERIFY(task->getPassNum() > 2);

    tab.m_cRun.click();
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StartText));
    QVERIFY(!task->IsRunning());
    const long long passes = task->getPassNum();
    QTest::qWait(30);
    QCOMPARE(task->getPassNum(), passes);
    QCOMPARE(Probes::sourceCalls("start"), 1);
    QCOMPARE(Probes::sourceCalls("stop"), 1);
}

void tstRun::tabIsDisabledWhileRunning()
{
    auto task = makeTask({step("a")}, Paced);
    const Tab tab(*task);
    QVERIFY(tab.allEnabled());

    task->startTask();
    QVERIFY(tab.allDisabled());
    QVERIFY(tab.m_cRun.isEnabled());

    task->stopTask();
    QVERIFY(tab.allEnabled());
    QTest::qWait(20);  // the report of the stopped run changes nothing
    QVERIFY(tab.allEnabled());
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StartText));
    QCOMPARE(Reports::messages(), QStringList());
}

void tstRun::taskWithoutASourceReportsAndReturnsToIdle()
{
    auto task = makeSourcelessTask({step("a")});
    Tab tab(*task);

    tab.m_cRun.click();
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StopText));

    QTRY_COMPARE(Reports::messages(), QStringList{QStringLiteral("No datasource assigned.")});
    QVERIFY(!task->IsRunning());
    QVERIFY(tab.allEnabled());
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StartText));
    QCOMPARE(Probes::trace(), QString());
}

void tstRun::stopCommandEndsTheRunWithoutAMessage()
{
    auto task = makeTask({step("a", "<CMD>stop:done</CMD>"), step("b")}, Paced);
    const Tab tab(*task);

    task->startTask();

    QTRY_VERIFY(tab.allEnabled());
    QVERIFY(!task->IsRunning());
    QCOMPARE(Reports::prints(), QStringList{QStringLiteral("done")});
    QCOMPARE(Reports::messages(), QStringList());
    QCOMPARE(Probes::trace(), QStringLiteral("a"));
    QCOMPARE(Probes::sourceCalls("stop"), 1);
}

void tstRun::failedStepEndsTheRunWithItsMessage()
{
    const Log log;
    auto task = makeTask({step("a", "wrong")}, Paced);

    task->startTask();

    const QString message = QStringLiteral("算法\"Probe\"出错, 错误信息:wrong");
    QTRY_COMPARE(Reports::messages(), QStringList{message});
    QVERIFY(!task->IsRunning());
    QVERIFY(Log::lines().contains(message));
}

void tstRun::startingARunningTaskDoesNothing()
{
    auto task = makeTask({step("a")}, Paced);
    task->startTask();
    QTRY_VERIFY(task->getPassNum() > 0);

    task->startTask();

    QVERIFY(task->getPassNum() > 0);
    QVERIFY(task->IsRunning());
    QCOMPARE(Probes::sourceCalls("start"), 1);
    task->stopTask();
    QCOMPARE(Probes::sourceCalls("start"), 1);
    QCOMPARE(Probes::sourceCalls("stop"), 1);
}

void tstRun::stoppingAnIdleTaskDoesNothing()
{
    auto task = makeTask({step("end", "", 999999999)});
    Tab tab(*task);
    tab.m_cRun.setText(QStringLiteral("untouched"));

    task->stopTask();

    QCOMPARE(tab.m_cRun.text(), QStringLiteral("untouched"));
    QCOMPARE(Probes::trace(), QString());
}

void tstRun::stopRunsTheEndStepsOnce()
{
    auto task = makeTask({step("end", "<CMD>print:bye</CMD>", 999999999), step("a")}, Paced);
    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());
    QVERIFY(!Probes::trace().contains(QStringLiteral("end")));

    task->stopTask();

    QVERIFY(Probes::trace().endsWith(QStringLiteral("a,end")));
    QCOMPARE(Probes::trace().count(QStringLiteral("end")), 1);
    QCOMPARE(Reports::prints(), QStringList{QStringLiteral("bye")});
}

void tstRun::endStepsRunAfterAFailureToo()
{
    auto task = makeSourcelessTask({step("end", "", 999999999)});

    task->startTask();

    QTRY_COMPARE(Reports::messages(), QStringList{QStringLiteral("No datasource assigned.")});
    QCOMPARE(Probes::trace(), QStringLiteral("end"));
}

void tstRun::errorOfAnEndStepReplacesTheMessageInTheThreadsWords()
{
    auto task = makeSourcelessTask({step("end", "broken", 999999999), step("end2", "", 999999999)});

    task->startTask();

    QTRY_COMPARE(Reports::messages(), QStringList{QStringLiteral("算法\"Probe\"出错, 错误信息:broken")});
    QCOMPARE(Probes::trace(), QStringLiteral("end"));
}

void tstRun::errorOfAnEndStepIsNotReportedWhenStopped()
{
    auto task = makeTask({step("end", "broken", 999999999), step("a")}, Paced);
    QSignalSpy spy(task.get(), &TaskInfo::threadFinished);
    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());

    task->stopTask();
    task->startTask();  // waits until the thread of the first run has emitted
    QCoreApplication::processEvents();

    QCOMPARE(Reports::messages(), QStringList());
    QVERIFY(task->IsRunning());
    QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("算法\"Probe\"出错, 错误信息:broken"));
    QCOMPARE(spy.at(0).at(1).toBool(), true);
    task->stopTask();
}

void tstRun::countersAreResetWhenARunStarts()
{
    auto task = makeTask({step("once", "", 1), step("a")}, Paced);

    for (int run = 1; run <= 2; ++run) {
        task->startTask();
        QTRY_VERIFY(task->getPassNum() > 2);
        task->stopTask();
        QCOMPARE(Probes::trace().count(QStringLiteral("once")), run);
    }
    QCOMPARE(task->getTaskItem().first().m_nExeTimes, 1);
}

void tstRun::stopWaitsForTheStepInProgress()
{
    auto task = makeTask({step("gate"), step("late"), step("end", "", 999999999)});
    task->startTask();
    QTRY_COMPARE(Probes::atGate(), 1);
    std::atomic<bool> opened{false};
    std::thread opener([&opened] {
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        opened = true;
        Probes::openGate();
    });

    task->stopTask();

    QVERIFY(opened);
    QCOMPARE(Probes::atGate(), 0);
    opener.join();
    // The steps behind it in the same pass do not start any more.
    QCOMPARE(Probes::trace(), QStringLiteral("gate,end"));
}

void tstRun::labelOfThreadEntryIsOneBelowTheProcessor()
{
    if (!ownProcessors().split(QLatin1Char(',')).contains(QStringLiteral("1")))
        QSKIP("needs processor 1");
    auto task = makeTask({step("a")}, Paced);
    Tab tab(*task);
    tab.m_cThreads.setCurrentText(QStringLiteral("绑定线程0"));

    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());
    task->stopTask();

    QCOMPARE(Probes::affinity(), QStringLiteral("1"));
}

void tstRun::kernelBindsTheThread_data()
{
    QTest::addColumn<int>("kernel");
    QTest::addColumn<QString>("processors");
    const bool hasOne = ownProcessors().split(QLatin1Char(',')).contains(QStringLiteral("1"));

    QTest::newRow("processor 1") << 1 << (hasOne ? QStringLiteral("1") : ownProcessors());
    QTest::newRow("none") << 0 << ownProcessors();
    QTest::newRow("none by default") << -1 << ownProcessors();
    QTest::newRow("a processor that does not exist") << 900 << ownProcessors();
    QTest::newRow("the last of the set") << 1023 << ownProcessors();
    QTest::newRow("the first outside of the set") << 1024 << ownProcessors();
    QTest::newRow("far outside of the set") << 2000 << ownProcessors();
}

void tstRun::kernelBindsTheThread()
{
    QFETCH(int, kernel);
    QFETCH(QString, processors);
    auto task = makeTask({step("a")}, Paced);
    task->ThreadSelected(kernel);

    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());
    task->stopTask();

    QCOMPARE(Probes::affinity(), processors);
    QVERIFY(ownProcessors().length() >= processors.length());  // the window's thread stays as it was
}

void tstRun::signalTellsHowTheRunEnded()
{
    auto task = makeTask({step("a")}, Paced);
    QSignalSpy spy(task.get(), &TaskInfo::threadFinished);

    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());
    task->stopTask();
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(1).toBool(), true);

    task->getTaskItem() = {missingStep()};
    task->startTask();
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toString(), QStringLiteral("Arithm\"缺\"is not existed."));
    QCOMPARE(spy.at(1).at(1).toBool(), false);
}

void tstRun::reportCalledByHandReturnsTheTabToIdle()
{
    auto task = makeSourcelessTask();
    Tab tab(*task);
    tab.m_cRun.setText(QStringLiteral("untouched"));
    tab.m_cViews.setEnabled(false);

    task->threadFinishedArrived(QStringLiteral("text"), true);
    QCOMPARE(Reports::messages(), QStringList());
    QCOMPARE(tab.m_cRun.text(), QStringLiteral("untouched"));
    QVERIFY(!tab.m_cViews.isEnabled());

    task->threadFinishedArrived(QString(), false);
    QCOMPARE(Reports::messages(), QStringList());
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StartText));
    QVERIFY(tab.allEnabled());

    task->threadFinishedArrived(QStringLiteral("text"), false);
    QCOMPARE(Reports::messages(), QStringList{QStringLiteral("text")});
}

void tstRun::passesAreLoggedOnlyWhereAskedFor()
{
    const Log log;
    auto task = makeTask({step("a")}, QStringLiteral("count=3;wait=2"));
    const auto run = [&task] {
        task->getTaskItem()[0].m_strOption = QStringLiteral("a|");
        task->startTask();
        const bool enough = waitWithoutEvents([] { return Probes::sourceCalls("requestPicture") >= 4; });
        task->stopTask();
        return enough;
    };

    QVERIFY(run());
    QCOMPARE(Log::lines(), QStringList());

    QLoggingCategory::setFilterRules(QStringLiteral("lumivant.run.info=true"));
    task = makeTask({step("a")}, QStringLiteral("count=3;wait=2"));
    QVERIFY(run());
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(Log::lines(), QStringList{QStringLiteral("task \"task\": 3 passes")});
}

void tstRun::deletingARunningTaskWaitsForItsStep()
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

void tstRun::taskMayDieAtTheMomentOfItsLastSignal()
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

void tstRun::runThatEndsAtOnceNeverStaysRunning()
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

void tstRun::startAndStopMayFollowEachOtherQuickly()
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

void tstRun::reportOfAnEarlierRunOnlyPassesItsMessageOn()
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

void tstRun::reportOfAnEarlierRunThatWasStoppedChangesNothing()
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

void tstRun::taskMayBeDeletedWhileItsMessageIsShown()
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

void tstRun::taskMayBeStartedAgainWhileItsMessageIsShown()
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

void tstRun::openEditorCommitsBeforeTheThreadStarts()
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

void tstRun::tabMayDieWhileTheTaskRuns()
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

void tstRun::runningTaskCanBeSaved()
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

void tstRun::viewMayBeChosenWhileTheTaskRuns()
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

void tstRun::tasksSharingAnAlgorithmNeverMixTheirResults()
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

void tstRun::optionsOfADeletedTaskLeaveEveryView()
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

void tstRun::stoppingAllTasksTogetherTakesOnePass()
{
    constexpr int PassMs = 300;
    TaskItem slow = step("");
    slow.m_strArithmID = QStringLiteral("Test.Slow");
    slow.m_strOption = QString::number(PassMs) + QLatin1Char(';');
    for (int id = 0; id < 6; ++id) {
        TaskMgr::getInstance()->addTask(makeTask({slow}).release(), id);
        TaskMgr::getInstance()->getTask(id)->startTask();
    }
    QElapsedTimer timer;
    timer.start();

    TaskMgr::getInstance()->clear();

    QVERIFY2(timer.elapsed() < 6 * PassMs, "the tasks were waited for one after the other");
}

QTEST_MAIN(tstRun)
#include "tstRun.moc"
