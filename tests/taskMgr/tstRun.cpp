#include "processMemory.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QLoggingCategory>
#include <QtTest>

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

#include <atomic>
#include <limits>
#include <mutex>
#include <thread>

namespace {

const char* const StartText = "执行任务";
const char* const StopText = "停止任务";

/// The reports of a task, as they arrive on the window's thread.
struct ArrivedReports : QObject
{
    explicit ArrivedReports(TaskInfo& task)
    {
        connect(&task, &TaskInfo::threadFinished, this, [this](const QString& message, bool stopped) {
            m_lstMessages += message;
            m_lstStopped += stopped;
        });
    }

    QStringList m_lstMessages;
    QList<bool> m_lstStopped;
};

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

/// While it lives, threads with default attributes ask for a stack that no address space has.
class ImpossibleStacks
{
public:
    ImpossibleStacks()
    {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_getstacksize(&attributes, &m_nBefore);
        pthread_attr_destroy(&attributes);
        setDefault(std::numeric_limits<std::size_t>::max() / 4 * 3);
    }
    ~ImpossibleStacks() { setDefault(m_nBefore); }
    ImpossibleStacks(const ImpossibleStacks&) = delete;
    ImpossibleStacks& operator=(const ImpossibleStacks&) = delete;

private:
    static void setDefault(std::size_t stackBytes)
    {
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_setstacksize(&attributes, stackBytes);
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }

    std::size_t m_nBefore = 0;
};

/// The threads on which the callbacks of a task were called last.
std::atomic<std::thread::id> s_cMessageThread;
std::atomic<std::thread::id> s_cPrintThread;
void keepMessageThread(QString)
{
    s_cMessageThread = std::this_thread::get_id();
}
void keepPrintThread(QString)
{
    s_cPrintThread = std::this_thread::get_id();
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
    void threadThatCannotBeMadeLeavesTheTaskIdleInSilence();
    void stoppingAnIdleTaskDoesNothing();
    void stopRunsTheEndStepsOnce();
    void endStepsRunAfterAFailureToo();
    void sourceIsStartedBeforeTheFirstPassAndStoppedBehindTheEndSteps();
    void errorOfAnEndStepReplacesTheMessageInTheThreadsWords();
    void errorOfAnEndStepIsNotReportedWhenStopped();
    void countersAreResetWhenARunStarts();
    void stopWaitsForTheStepInProgress();
    void labelOfThreadEntryIsOneBelowTheProcessor();
    void kernelBindsTheThread_data();
    void kernelBindsTheThread();
    void threadGivesWayToTheWindow();
    void passesFollowEachOtherWithoutAPause();
    void messagesArriveOnTheWindowsThreadAndPrintsOnTheTasks();
    void tasksRunSideBySide();
    void signalTellsHowTheRunEnded();
    void reportCalledByHandReturnsTheTabToIdle();
    void passesAreLoggedOnlyWhereAskedFor();
    void passAfterAStopRunsWhole();
    void endedRunsGiveTheirStacksBack();
};

void tstRun::initTestCase()
{
    Probes::install();
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstRun::init()
{
    Probes::reset();
    Reports::clear();
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

void tstRun::threadThatCannotBeMadeLeavesTheTaskIdleInSilence()
{
    auto task = makeTask({step("a"), step("end", "", 999999999)}, Paced);
    const Tab tab(*task);
    {
        const ImpossibleStacks noThreads;
        task->startTask();
    }
    QVERIFY(!task->IsRunning());
    QVERIFY(tab.allEnabled());
    QCOMPARE(tab.m_cRun.text(), QString::fromUtf8(StartText));
    task->stopTask();  // there is nothing to wait for
    QCoreApplication::processEvents();
    QCOMPARE(Reports::messages(), QStringList());
    QCOMPARE(Probes::trace(), QString());

    task->startTask();  // the next attempt succeeds
    QTRY_VERIFY(task->getPassNum() > 0);
    task->stopTask();
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

void tstRun::sourceIsStartedBeforeTheFirstPassAndStoppedBehindTheEndSteps()
{
    auto task = makeTask({step("a", "<CMD>stop:</CMD>"), step("gate", "", 999999999)}, QStringLiteral("needsStart=1"));
    const Tab tab(*task);

    task->startTask();

    QTRY_COMPARE(Probes::atGate(), 1);
    QCOMPARE(Probes::trace(), QStringLiteral("a,gate"));
    QCOMPARE(Probes::sourceCalls("start"), 1);
    QCOMPARE(Probes::sourceCalls("stop"), 0);
    QVERIFY(task->IsRunning());
    Probes::openGate();
    QTRY_VERIFY(tab.allEnabled());
    QCOMPARE(Probes::sourceCalls("stop"), 1);
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
    const ArrivedReports reports(*task);
    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());

    task->stopTask();
    task->startTask();  // waits until the thread of the first run has emitted
    QCoreApplication::processEvents();

    QCOMPARE(Reports::messages(), QStringList());
    QVERIFY(task->IsRunning());
    QCOMPARE(reports.m_lstMessages, QStringList{QStringLiteral("算法\"Probe\"出错, 错误信息:broken")});
    QCOMPARE(reports.m_lstStopped, QList<bool>{true});
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

void tstRun::threadGivesWayToTheWindow()
{
    auto task = makeTask({step("a")}, Paced);
    const int before = getpriority(PRIO_PROCESS, 0);

    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());
    task->stopTask();

    QCOMPARE(Probes::priority(), std::min(before + 10, 19));
    QCOMPARE(Probes::priorityAtStartOfSource(), before);  // its own threads inherit that
}

// A pause of a millisecond would be too long.
void tstRun::passesFollowEachOtherWithoutAPause()
{
    auto task = makeTask({});

    task->startTask();

    QTRY_VERIFY_WITH_TIMEOUT(task->getPassNum() >= 20000, 20000);
    task->stopTask();
}

void tstRun::messagesArriveOnTheWindowsThreadAndPrintsOnTheTasks()
{
    auto task = makeTask({step("a", "<CMD>print:x</CMD>"), missingStep()}, Paced);
    task->setMssageCallBack(keepMessageThread);
    task->setPrintCallBack(keepPrintThread);

    task->startTask();

    QTRY_VERIFY(s_cMessageThread.load() != std::thread::id());
    QVERIFY(s_cMessageThread.load() == std::this_thread::get_id());
    QVERIFY(s_cPrintThread.load() != std::thread::id());
    QVERIFY(s_cPrintThread.load() != std::this_thread::get_id());
}

void tstRun::tasksRunSideBySide()
{
    auto first = makeTask({step("gate")}, Paced);
    auto second = makeTask({step("gate")}, Paced);

    first->startTask();
    second->startTask();

    QTRY_COMPARE(Probes::atGate(), 2);  // each within its step
    Probes::openGate();
    first->stopTask();
    QVERIFY(second->IsRunning());
    second->stopTask();
}

void tstRun::signalTellsHowTheRunEnded()
{
    auto task = makeTask({step("a")}, Paced);
    const ArrivedReports reports(*task);

    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());
    task->stopTask();
    QTRY_COMPARE(reports.m_lstStopped, QList<bool>{true});

    task->getTaskItem() = {missingStep()};
    task->startTask();
    QTRY_COMPARE(reports.m_lstStopped, QList<bool>({true, false}));
    QCOMPARE(reports.m_lstMessages.last(), QStringLiteral("Arithm\"缺\"is not existed."));
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
    task->runTaskOnce();
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(Log::lines(),
             (QStringList{QStringLiteral("task \"task\": 3 passes"), QStringLiteral("task \"task\": 0 passes")}));
}

void tstRun::passAfterAStopRunsWhole()
{
    auto task = makeTask({step("a"), step("b")}, Paced);
    task->startTask();
    task->stopTask();
    Probes::reset();
    QString message;

    QVERIFY(task->runOnce(message, true, -1, 10000));

    QCOMPARE(Probes::trace(), QStringLiteral("a,b"));
}

void tstRun::endedRunsGiveTheirStacksBack()
{
    auto task = makeTask({step("a")}, Paced);
    const auto runs = [&task](int number) {
        for (int i = 0; i < number; ++i) {
            task->startTask();
            task->stopTask();
        }
    };
    runs(10);
    const qint64 before = addressSpaceBytes();

    runs(40);

    // The stack of a thread takes 8 MB; the library keeps a few for the next.
    QVERIFY(addressSpaceBytes() - before < 100L * 1024 * 1024);
}

QTEST_MAIN(tstRun)
#include "tstRun.moc"
