#include "globalFunction.h"
#include "paramStore/arithmParamMgr.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QRegularExpression>
#include <QtTest>

#include <limits>

namespace {

const char* const TimeOutText =
    "Execute time out, there is a infinite loop or have a long waiting event, continue to "
    "wait?.";

TaskItem drawingStep(const char* option, int maxExeTimes = -1)
{
    TaskItem item;
    item.m_nMaxExeTimes = maxExeTimes;
    item.m_strArithmID = QStringLiteral("KW_Drawing");
    item.m_strOption = QString::fromUtf8(option);
    return item;
}

TaskItem slowStep(int milliseconds)
{
    TaskItem item = step("");
    item.m_strArithmID = QStringLiteral("Test.Slow");
    item.m_strOption = QString::number(milliseconds) + QLatin1Char(';');
    return item;
}

TaskItem traceStep(const char* name)
{
    TaskItem item = step(name);
    item.m_strArithmID = QStringLiteral("Test.Trace");
    return item;
}

/// A message callback that keeps which steps had run and how often the source had been stopped when a message came.
QStringList s_lstStates;
void keepState(QString)
{
    s_lstStates += Probes::trace() + QLatin1Char(' ') + QString::number(Probes::sourceCalls("stop"));
}

}  // namespace

class tstPass : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void passWithoutASourceFailsAndKeepsTheCounters();
    void passWithoutAPictureRunsNothing();
    void passWithoutStepsDoesNothing();
    void pictureIsInTheStoreWhenStepsRun();
    void storeIsNotClearedBetweenStepsAndPasses();
    void limitedStepRunsInItsFirstPasses();
    void stepsWithoutALimitRunInEveryPass_data();
    void stepsWithoutALimitRunInEveryPass();
    void executionCounterNeverOverflows();
    void resetAfterwardsResetsTheCountersOnEveryWayOut();
    void lastStepEndsThePass();
    void lastStepBehindTheListEndsAtItsEnd();
    void timeOutIsSeenBeforeTheNextStep();
    void timeOutOfNothingIsOver();
    void waitingForThePictureCountsForTheTimeOut();
    void endlessLoopTimesOut();
    void timesAreShownWhereCountersAreReset();
    void stepTimeIsTheAlgorithmsOwn();
    void timeIsShownInTheRowBehindASkip();
    void timesWithoutATableAreNotShown();
    void optionReachesTheAlgorithmUnchangedInEveryPass();
    void changedOptionIsUsedInTheNextPass();
    void changedAlgorithmIsUsedInTheNextPass();
    void drawingStepGetsTheTasksView();
    void changedViewIsUsedInTheNextPass();
    void viewIsClampedAndStoredBackWhenADrawingStepRuns_data();
    void viewIsClampedAndStoredBackWhenADrawingStepRuns();
    void viewOfTheTaskComesBeforeThatOfTheOption();
    void viewStaysWhereNoDrawingStepRuns();
    void endOfTaskDrawingGetsNoView();
    void impostorOfTheDrawingIdentifierIsNotReached();
    void singleRunMakesOnePassAndTheEndSteps();
    void singleRunResetsTheCountersFirst();
    void singleRunReportsInItsOwnWordsOnPurpose();
    void singleRunReportsThePassAndTheEnd();
    void singleRunReportsThePassBeforeTheEndAndTheEndBehindTheSource();
    void finishedPassesAreCounted();
};

void tstPass::initTestCase()
{
    Probes::install();
    PluginFolders::addBase(QStringLiteral("algorithmSlow"));
    PluginFolders::addBase(QStringLiteral("algorithmTrace"));
    PluginFolders::addBase(QStringLiteral("algorithmDrawingID"));
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstPass::init()
{
    Probes::reset();
    Reports::clear();
    for (int view = 0; view < 4; ++view)
        GlobalFunction::getInstance()->addView(view, nullptr);
}

void tstPass::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstPass::passWithoutASourceFailsAndKeepsTheCounters()
{
    auto task = makeSourcelessTask(steps("a"));
    task->getTaskItem()[0].m_nExeTimes = 7;
    QString message;

    QVERIFY(!task->runOnce(message, true, -1, 10000));

    QCOMPARE(message, QStringLiteral("No datasource assigned."));
    QCOMPARE(task->getTaskItem().first().m_nExeTimes, 7);
    QCOMPARE(Probes::trace(), QString());
}

void tstPass::passWithoutAPictureRunsNothing()
{
    auto task = makeTask(steps("a"), QStringLiteral("count=1"));
    QVERIFY(pass(*task));

    QVERIFY(pass(*task));

    QCOMPARE(Probes::trace(), QStringLiteral("a"));
    QCOMPARE(task->getPassNum(), 1LL);
}

void tstPass::passWithoutStepsDoesNothing()
{
    auto task = makeTask({});
    QString message = QStringLiteral("as it was");

    for (int i = 0; i < 3; ++i)
        QVERIFY(pass(*task, message));

    QCOMPARE(message, QStringLiteral("as it was"));
    QCOMPARE(Probes::sourceCalls("requestPicture"), 3);
}

void tstPass::pictureIsInTheStoreWhenStepsRun()
{
    auto task = makeTask(steps("a"), QStringLiteral("size=5x2"));

    QVERIFY(pass(*task));

    const ParamDIB* picture = task->getArithmParamMgr()->findParamDIB(1);
    QVERIFY(picture);
    QCOMPARE(picture->getWidth(), 5);
    QCOMPARE(picture->getHeight(), 2);
    QCOMPARE(picture->getName(), QStringLiteral("img"));
}

void tstPass::storeIsNotClearedBetweenStepsAndPasses()
{
    auto task = makeTask({traceStep("a"), traceStep("b")});

    QVERIFY(pass(*task));
    QVERIFY(pass(*task));

    QCOMPARE(task->getArithmParamMgr()->getParamStrings(900)->getStrings(),
             (QVector<QByteArray>{"a|", "b|", "a|", "b|"}));
}

void tstPass::limitedStepRunsInItsFirstPasses()
{
    auto task = makeTask({step("a", "", 3), step("b")});

    for (int i = 0; i < 5; ++i)
        QVERIFY(pass(*task));
    QCOMPARE(Probes::trace(), QStringLiteral("a,b,a,b,a,b,b,b"));

    task->initTaskItemExeTimes();
    QVERIFY(pass(*task));
    QVERIFY(Probes::trace().endsWith(QStringLiteral("b,a,b")));
}

void tstPass::stepsWithoutALimitRunInEveryPass_data()
{
    QTest::addColumn<int>("maxExeTimes");
    QTest::addColumn<QString>("trace");

    QTest::newRow("never") << 0 << "";
    QTest::newRow("once") << 1 << "a";
    QTest::newRow("no limit") << -1 << "a,a";
    QTest::newRow("any negative number is no limit") << -5 << "a,a";
    QTest::newRow("eight nines are a limit") << 99999999 << "a,a";
    QTest::newRow("nine nines wait for the end") << 999999999 << "";
    QTest::newRow("one more is a limit") << 1000000000 << "a,a";
}

void tstPass::stepsWithoutALimitRunInEveryPass()
{
    QFETCH(int, maxExeTimes);
    QFETCH(QString, trace);
    auto task = makeTask({step("a", "", maxExeTimes)});

    QVERIFY(pass(*task));
    QVERIFY(pass(*task));

    QCOMPARE(Probes::trace(), trace);
    QCOMPARE(task->getTaskItem().first().m_nExeTimes, trace.count(QLatin1Char('a')));
}

void tstPass::executionCounterNeverOverflows()
{
    constexpr int Largest = std::numeric_limits<int>::max();
    auto task = makeTask(steps("a"));
    task->getTaskItem()[0].m_nExeTimes = Largest - 1;

    for (int i = 0; i < 3; ++i)
        QVERIFY(pass(*task));

    QCOMPARE(task->getTaskItem().first().m_nExeTimes, Largest);
    QCOMPARE(Probes::trace(), QStringLiteral("a,a,a"));
}

void tstPass::resetAfterwardsResetsTheCountersOnEveryWayOut()
{
    QString message;
    const auto countAfter = [&message](const QList<TaskItem>& items, const char* source) {
        auto task = makeTask(items, QString::fromUtf8(source));
        for (TaskItem& item : task->getTaskItem())
            item.m_nExeTimes = 7;
        task->runOnce(message, true, -1, 10000);
        return task->getTaskItem().first().m_nExeTimes;
    };

    QCOMPARE(countAfter({step("a")}, ""), 0);
    QCOMPARE(countAfter({step("a")}, "count=0"), 0);
    QCOMPARE(countAfter({step("a"), missingStep()}, ""), 0);
    QCOMPARE(countAfter({step("a", "<CMD>stop:</CMD>")}, ""), 0);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("oops")));
    QCOMPARE(countAfter({step("a", "oops")}, ""), 0);
}

void tstPass::lastStepEndsThePass()
{
    auto task = makeTask(steps("abcde"));
    QString message;

    QVERIFY(task->runOnce(message, false, 2, -1));

    QCOMPARE(Probes::trace(), QStringLiteral("a,b,c"));
}

void tstPass::lastStepBehindTheListEndsAtItsEnd()
{
    auto task = makeTask(steps("ab"));
    QString message;

    QVERIFY(task->runOnce(message, false, 99, -1));

    QCOMPARE(Probes::trace(), QStringLiteral("a,b"));
}

void tstPass::timeOutIsSeenBeforeTheNextStep()
{
    auto task = makeTask({slowStep(60), step("b")});
    QString message;

    QVERIFY(!task->runOnce(message, true, -1, 20));

    QCOMPARE(message, QString::fromUtf8(TimeOutText));
    QCOMPARE(Probes::trace(), QString());
    QVERIFY(task->runOnce(message, true, -1, -1));  // no time-out asked for
    QCOMPARE(Probes::trace(), QStringLiteral("b"));
}

void tstPass::timeOutOfNothingIsOver()
{
    auto task = makeTask({slowStep(20), step("b")});
    QString message;

    QVERIFY(!task->runOnce(message, true, -1, 0));

    QCOMPARE(message, QString::fromUtf8(TimeOutText));
    QCOMPARE(Probes::trace(), QString());
}

void tstPass::waitingForThePictureCountsForTheTimeOut()
{
    auto task = makeTask({step("a")}, QStringLiteral("wait=60"));
    QString message;

    QVERIFY(!task->runOnce(message, true, -1, 20));

    QCOMPARE(message, QString::fromUtf8(TimeOutText));
    QCOMPARE(Probes::trace(), QString());
}

void tstPass::endlessLoopTimesOut()
{
    auto task = makeTask({step("a", "<CMD>skip:0</CMD>")});
    QString message;

    QVERIFY(!task->runOnce(message, true, -1, 1000));

    QCOMPARE(message, QString::fromUtf8(TimeOutText));
    QVERIFY(Probes::trace().startsWith(QStringLiteral("a,a")));
    QCOMPARE(task->getTaskItem().first().m_nExeTimes, 0);
}

void tstPass::timesAreShownWhereCountersAreReset()
{
    auto task = makeTask({slowStep(30), step("b", "", 0), step("c")});
    const Tab tab(*task);
    QString message;

    QVERIFY(task->runOnce(message, false, -1, -1));
    QCOMPARE(tab.cell(0, 2), QString());

    QVERIFY(task->runOnce(message, true, -1, -1));
    QVERIFY(tab.cell(0, 2).toInt() >= 30);
    QCOMPARE(tab.cell(1, 2), QString());  // did not run
    bool isNumber = false;
    tab.cell(2, 2).toInt(&isNumber);
    QVERIFY(isNumber);
}

void tstPass::stepTimeIsTheAlgorithmsOwn()
{
    constexpr int WaitMs = 150;
    auto task = makeTask({slowStep(WaitMs), step("b")}, QStringLiteral("wait=150"));
    const Tab tab(*task);
    QString message;

    // A busy machine may delay a step, but not every time.
    bool own = false;
    for (int round = 0; round < 20 && !own; ++round) {
        QVERIFY(task->runOnce(message, true, -1, -1));
        QVERIFY(tab.cell(0, 2).toInt() >= WaitMs);
        own = tab.cell(0, 2).toInt() < 2 * WaitMs && tab.cell(1, 2).toInt() < WaitMs;
    }
    QVERIFY(own);
}

void tstPass::timeIsShownInTheRowBehindASkip()
{
    auto task = makeTask({step("a", "<CMD>skip:3</CMD>"), step("b"), step("c"), step("d", "<CMD>skip:-9</CMD>", 1),
                          step("e", "<CMD>skip:9</CMD>")});
    const Tab tab(*task);
    QString message;

    QVERIFY(task->runOnce(message, true, -1, -1));

    QCOMPARE(Probes::trace(), QStringLiteral("a,d,a,e"));
    QCOMPARE(tab.cell(0, 2), QString());
    QVERIFY(!tab.cell(2, 2).isEmpty());   // a's time: its place plus three, less one
    QCOMPARE(tab.cell(3, 2), QString());  // d went in front of the list, e behind it
    QCOMPARE(tab.cell(4, 2), QString());
}

void tstPass::timesWithoutATableAreNotShown()
{
    auto task = makeTask(steps("ab"));
    Tab tab(*task);
    tab.m_pcTable->setRowCount(1);
    delete tab.m_pcTable->takeItem(0, 2);
    QString message;

    QVERIFY(task->runOnce(message, true, -1, -1));

    QVERIFY(!tab.m_pcTable->item(0, 2));
    QCOMPARE(Probes::trace(), QStringLiteral("a,b"));
}

// The probe scribbles on the text that it gets.
void tstPass::optionReachesTheAlgorithmUnchangedInEveryPass()
{
    auto task = makeTask({step("图像"), step("a longer name"), step("b")});

    for (int i = 0; i < 3; ++i)
        QVERIFY(pass(*task));

    QCOMPARE(Probes::trace(), QStringLiteral("图像,a longer name,b,图像,a longer name,b,图像,a longer name,b"));
    QCOMPARE(task->getTaskItem().first().m_strOption, QStringLiteral("图像|"));
}

void tstPass::changedOptionIsUsedInTheNextPass()
{
    auto task = makeTask({step("a")});
    QVERIFY(pass(*task));

    task->getTaskItem()[0].m_strOption = QStringLiteral("b|");
    QVERIFY(pass(*task));
    task->getTaskItem()[0].m_strOption[0] = QLatin1Char('c');
    QVERIFY(pass(*task));
    task->getTaskItem()[0].m_strOption.clear();
    QVERIFY(pass(*task));

    QCOMPARE(Probes::trace(), QStringLiteral("a,b,c,"));
}

void tstPass::changedAlgorithmIsUsedInTheNextPass()
{
    auto task = makeTask({step("a")});
    QString message;
    QVERIFY(pass(*task));

    task->getTaskItem()[0].m_strArithmID = QStringLiteral("Test.Missing");
    QVERIFY(!pass(*task, message));
    task->getTaskItem()[0].m_strArithmID = QStringLiteral("Test.Trace");
    QVERIFY(pass(*task));

    QCOMPARE(Probes::trace(), QStringLiteral("a"));
    QCOMPARE(message, QStringLiteral("Arithm\"Probe\"is not existed."));
    QCOMPARE(task->getArithmParamMgr()->getParamStrings(900)->getStrings(), QVector<QByteArray>{"a|"});
}

void tstPass::drawingStepGetsTheTasksView()
{
    auto task = makeTask({drawingStep("<DataType>3</DataType><DataID>5</DataID>")});
    task->ViewSelected(2);

    QVERIFY(pass(*task));
    QVERIFY(pass(*task));

    QCOMPARE(queuedFor(2), 2);
    QCOMPARE(queuedFor(0), 0);
    task.reset();
    QCOMPARE(queuedFor(2), 0);
}

void tstPass::changedViewIsUsedInTheNextPass()
{
    auto task = makeTask({drawingStep("<DataType>3</DataType><DataID>5</DataID>")});

    QVERIFY(pass(*task));
    task->ViewSelected(1);
    QVERIFY(pass(*task));

    QCOMPARE(queuedFor(0), 1);
    QCOMPARE(queuedFor(1), 1);
}

void tstPass::viewIsClampedAndStoredBackWhenADrawingStepRuns_data()
{
    QTest::addColumn<int>("view");
    QTest::addColumn<int>("clamped");

    QTest::newRow("above") << 7 << 3;
    QTest::newRow("just above") << 4 << 3;
    QTest::newRow("last") << 3 << 3;
    QTest::newRow("first") << 0 << 0;
    QTest::newRow("below") << -1 << 0;
}

void tstPass::viewIsClampedAndStoredBackWhenADrawingStepRuns()
{
    QFETCH(int, view);
    QFETCH(int, clamped);
    auto task = makeTask({drawingStep("<DataType>3</DataType><DataID>5</DataID>")});
    task->ViewSelected(view);

    QVERIFY(pass(*task));

    QCOMPARE(task->getView(), clamped);
    QCOMPARE(queuedFor(clamped), 1);
}

void tstPass::viewOfTheTaskComesBeforeThatOfTheOption()
{
    auto task = makeTask({drawingStep("<View>1</View><DataType>3</DataType><DataID>5</DataID>")});

    QVERIFY(pass(*task));

    QCOMPARE(queuedFor(0), 1);
    QCOMPARE(queuedFor(1), 0);
}

void tstPass::viewStaysWhereNoDrawingStepRuns()
{
    auto task = makeTask({step("a"), drawingStep("", 0)});
    task->ViewSelected(7);

    QVERIFY(pass(*task));

    QCOMPARE(task->getView(), 7);
}

void tstPass::endOfTaskDrawingGetsNoView()
{
    // Without a view of its own such a step draws where its option text says.
    auto task = makeTask({drawingStep("<View>1</View><DataType>3</DataType><DataID>5</DataID>", 999999999)});
    task->ViewSelected(2);

    task->runTaskOnce();

    QCOMPARE(queuedFor(1), 1);
    QCOMPARE(queuedFor(2), 0);
}

void tstPass::impostorOfTheDrawingIdentifierIsNotReached()
{
    auto task = makeTask({drawingStep("no drawing at all")});

    QVERIFY(pass(*task));  // the impostor's result would be its option text, an error
}

void tstPass::singleRunMakesOnePassAndTheEndSteps()
{
    auto task = makeTask({step("end1", "", 999999999), step("a"), step("end2", "", 999999999), step("b")},
                         QStringLiteral("needsStart=1"));

    task->runTaskOnce();

    QCOMPARE(Probes::trace(), QStringLiteral("a,b,end1,end2"));
    QCOMPARE(Probes::sourceCalls("start"), 1);
    QCOMPARE(Probes::sourceCalls("stop"), 1);
    QCOMPARE(Reports::messages(), QStringList());
    QVERIFY(!task->IsRunning());
}

void tstPass::singleRunResetsTheCountersFirst()
{
    auto task = makeTask({step("a", "", 1)});

    task->runTaskOnce();
    task->runTaskOnce();

    QCOMPARE(Probes::trace(), QStringLiteral("a,a"));
    QCOMPARE(task->getTaskItem().first().m_nExeTimes, 1);
}

void tstPass::singleRunReportsInItsOwnWordsOnPurpose()
{
    auto task = makeTask({step("end1", "bad", 999999999), step("end2", "", 999999999)});

    task->runTaskOnce();

    QCOMPARE(Reports::messages(), QStringList{QStringLiteral("Arithm \"Probe\" error, message:bad")});
    QCOMPARE(Probes::trace(), QStringLiteral("end1"));
}

void tstPass::singleRunReportsThePassAndTheEnd()
{
    auto task = makeSourcelessTask({step("end", "", 999999999), missingStep(999999999)});

    task->runTaskOnce();

    QCOMPARE(Reports::messages(),
             QStringList({QStringLiteral("No datasource assigned."), QStringLiteral("Arithm\"缺\"is not existed.")}));
    QCOMPARE(Probes::trace(), QStringLiteral("end"));
}

void tstPass::singleRunReportsThePassBeforeTheEndAndTheEndBehindTheSource()
{
    auto task = makeTask({missingStep(), step("end", "bad", 999999999)});
    task->setMssageCallBack(keepState);
    s_lstStates.clear();

    task->runTaskOnce();

    QCOMPARE(s_lstStates, QStringList({QStringLiteral(" 0"), QStringLiteral("end 1")}));
}

void tstPass::finishedPassesAreCounted()
{
    auto task = makeTask({step("a")}, QStringLiteral("count=5"));
    QString message;
    for (int i = 0; i < 3; ++i)
        QVERIFY(pass(*task));
    QCOMPARE(task->getPassNum(), 3LL);

    QVERIFY(task->runOnce(message, true, -1, -1));  // a pass for the user's eyes is none of a run
    task->getTaskItem() += missingStep();
    QVERIFY(!pass(*task));  // did not run to its end
    QVERIFY(pass(*task));   // no picture any more
    QCOMPARE(task->getPassNum(), 3LL);

    task->runTaskOnce();
    QCOMPARE(task->getPassNum(), 0LL);
}

QTEST_MAIN(tstPass)
#include "tstPass.moc"
