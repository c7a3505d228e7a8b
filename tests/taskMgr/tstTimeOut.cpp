#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QElapsedTimer>
#include <QtTest>

namespace {

QString s_strSlow;  ///< Path of the slow algorithm.

constexpr int EndlessStepMs = 500;

/// A step that sends the pass back to itself for ever.
TaskItem endlessStep()
{
    TaskItem item = step("");
    item.m_strArithmID = QStringLiteral("Test.Slow");
    item.m_strOption = QString::number(EndlessStepMs) + QStringLiteral(";<CMD>skip:0</CMD>");
    return item;
}

}  // namespace

/// Passes that the user waits for and that never end: each test takes the whole ten seconds.
class tstTimeOut : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void runHereTimesOutAfterTenSeconds();
    void preparingRunTimesOutAfterTenSecondsAndTheWindowOpens();
};

void tstTimeOut::initTestCase()
{
    Probes::install();
    s_strSlow = PluginFolders::addBase(QStringLiteral("algorithmSlow"));
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstTimeOut::init()
{
    Probes::reset("new|");
}

void tstTimeOut::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstTimeOut::runHereTimesOutAfterTenSeconds()
{
    auto task = makeTask({endlessStep()});
    const Tab tab(*task);
    selectRow(tab, 0);
    const BoxAnswer answer;
    QElapsedTimer timer;
    timer.start();

    task->runHere();

    QVERIFY(timer.elapsed() >= 10000);
    // No step starts later than that, so there is room for only so many.
    QVERIFY(PluginFolders::algorithmCalls(s_strSlow, "execute") <= 10000 / EndlessStepMs + 1);
    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("Execute time out, there is a infinite loop or have a long "
                                                           "waiting event, continue to wait?.")});
    QCOMPARE(answer.m_lstTitles, QStringList{QStringLiteral("Warning")});
    QCOMPARE(Probes::sourceCalls("stop"), 1);
}

void tstTimeOut::preparingRunTimesOutAfterTenSecondsAndTheWindowOpens()
{
    auto task = makeTask({endlessStep(), step("b")});
    const Tab tab(*task);
    selectRow(tab, 1);
    const BoxAnswer answer;
    const int before = PluginFolders::algorithmCalls(s_strSlow, "execute");
    QElapsedTimer timer;
    timer.start();

    task->modifyOption();

    QVERIFY(timer.elapsed() >= 10000);
    QVERIFY(PluginFolders::algorithmCalls(s_strSlow, "execute") - before <= 10000 / EndlessStepMs + 1);
    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("Execute time out, there is a infinite loop or have a long "
                                                           "waiting event, continue to wait?.")});
    QCOMPARE(Probes::configWindows(), 1);
    QCOMPARE(task->getTaskItem().at(1).m_strOption, QStringLiteral("new|"));
    QCOMPARE(Probes::sourceCalls("stop"), 1);
}

QTEST_MAIN(tstTimeOut)
#include "tstTimeOut.moc"
