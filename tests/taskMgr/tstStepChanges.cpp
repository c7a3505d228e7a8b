#include "paramStore/arithmParamMgr.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QtTest>

/// What a task does with steps that change, and with texts that it is given anew.
class tstStepChanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void stepWhoseAlgorithmIsExchangedRunsTheOther();
    void drawingStepThatBecomesAnEndStepLosesTheTasksView();
    void identifiersThatASourceTextNamesAreNotGivenAgain();
    void identifierOneOfAnOptionIsNotGivenAgain();
    void runningTaskThatIsDeletedStopsFirst();
};

void tstStepChanges::initTestCase()
{
    Probes::install();
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstStepChanges::init()
{
    Probes::reset();
    Reports::clear();
    for (int view = 0; view < 4; ++view)
        GlobalFunction::getInstance()->addView(view, nullptr);
}

void tstStepChanges::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstStepChanges::stepWhoseAlgorithmIsExchangedRunsTheOther()
{
    auto task = makeTask(steps("a"));
    QVERIFY(pass(*task));

    TaskItem& item = task->getTaskItem().first();
    item.m_strArithmID = missingStep().m_strArithmID;
    QVERIFY(!pass(*task));
    item.m_strArithmID = QStringLiteral("Test.Probe");
    QVERIFY(pass(*task));

    QCOMPARE(Probes::trace(), QStringLiteral("a,a"));
}

void tstStepChanges::drawingStepThatBecomesAnEndStepLosesTheTasksView()
{
    TaskItem drawing;
    drawing.m_strArithmID = QStringLiteral("KW_Drawing");
    drawing.m_strOption = QStringLiteral("<View>1</View><DataType>3</DataType><DataID>5</DataID>");
    auto task = makeTask({drawing});
    task->ViewSelected(2);
    QVERIFY(pass(*task));
    QCOMPARE(queuedFor(2), 1);

    task->getTaskItem().first().m_nMaxExeTimes = TaskItem::AtTaskEnd;
    task->runTaskOnce();

    QCOMPARE(queuedFor(1), 1);
    QCOMPARE(queuedFor(2), 1);
}

void tstStepChanges::identifiersThatASourceTextNamesAreNotGivenAgain()
{
    auto task = makeSourcelessTask();
    task->fromString(QStringLiteral("<-TaskName->t</-TaskName-><-DataSource->") +
                     sourceText(QStringLiteral("<FrameID>2</FrameID>"), 1) + QStringLiteral("</-DataSource->"));

    task->getArithmParamMgr()->getParamStrings(-1);
    QVERIFY(task->getArithmParamMgr()->findParamStrings(3));
}

void tstStepChanges::identifierOneOfAnOptionIsNotGivenAgain()
{
    auto task = makeSourcelessTask();
    task->fromString(
        QStringLiteral("<-TaskName->t</-TaskName-><-TaskItem-><-ArithmID->Test.Probe</-ArithmID->"
                       "<-OptionStr->a|<ID>1</ID></-OptionStr-></-TaskItem->"));

    task->getArithmParamMgr()->getParamStrings(-1);
    QVERIFY(task->getArithmParamMgr()->findParamStrings(2));
}

void tstStepChanges::runningTaskThatIsDeletedStopsFirst()
{
    auto task = makeTask(steps("a"), Paced);
    task->startTask();
    QVERIFY(waitWithoutEvents([] { return Probes::traceCount("a") > 2; }));

    task.reset();

    const int passes = Probes::traceCount("a");
    QTest::qWait(50);
    QCOMPARE(Probes::traceCount("a"), passes);
}

QTEST_MAIN(tstStepChanges)
#include "tstStepChanges.moc"
