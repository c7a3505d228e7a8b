#include "paramStore/arithmParamMgr.h"
#include "taskMgr/projectText.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QtTest>

namespace {

TaskItem fullStep()
{
    TaskItem item;
    item.m_nMaxExeTimes = 999999999;
    item.m_nExeTimes = 5;
    item.m_strArithmID = QStringLiteral("Test.Probe");
    item.m_strOption = QStringLiteral("\n <A>1</A> \r\n");
    item.m_strClassName = QStringLiteral("系统");
    item.m_strArithmName = QStringLiteral("Probe");
    item.m_strDescribe = QStringLiteral("找 区域");
    return item;
}

const char* const StepText =
    "<-TaskItem->\n"
    "<-MaxExeTimes->999999999</-MaxExeTimes->\n"
    "<-ArithmID->Test.Probe</-ArithmID->\n"
    "<-OptionStr->\n"
    "<A>1</A>\n"
    "</-OptionStr->\n"
    "<-ClassName->系统</-ClassName->\n"
    "<-ArithmName->Probe</-ArithmName->\n"
    "<-Describe->找 区域</-Describe->\n"
    "</-TaskItem->\n";

}  // namespace

class tstProjectText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void taskIsWrittenLineByLine();
    void taskWithASourceWritesItsTrimmedText();
    void trimmedSourceTextIsStoredBackButOptionsStay();
    void sourceThatCannotBeMadeIsNotWritten();
    void projectHoldsTasksInAscendingIds();
    void projectWithoutTasksIsEmpty();
    void savedTextHasNoEmptyLine();
    void emptyTextLeavesNoTasks();
    void loadedTasksGetIdsInFileOrder();
    void loadingReplacesWhatWasThere();
    void fieldsAreReadInAnyCase();
    void missingCountLoadsAsZero();
    void missingFieldsStayEmpty();
    void badNumbersLoadAsZero();
    void optionKeepsItsLineFeeds();
    void firstEmptyStepEndsTheReading();
    void firstEmptyTaskEndsTheReading();
    void unknownTextIsIgnored();
    void unknownSourceLeavesNone();
    void stepsOfMissingAlgorithmsLoad();
    void windowsLineEndsAreTolerated();
    void textBehindANulIsIgnored();
    void truncatedTextsLoadWhatIsThere();
    void widgetsFollowTheLoadedTask();
    void loadedRowsAreAppended();
    void namedIdentifiersAreNeverHandedOutAsFresh();
    void manyStepsLoad();
    void savedAndLoadedProjectIsTheSame();
};

void tstProjectText::initTestCase()
{
    Probes::install();
    TaskMgr::getInstance();
}

void tstProjectText::init()
{
    TaskMgr::getInstance()->clear();
}

void tstProjectText::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstProjectText::taskIsWrittenLineByLine()
{
    TaskInfo task(QStringLiteral("任务 1"), nullptr);
    task.ThreadSelected(2);
    task.ViewSelected(3);
    task.getTaskItem() += fullStep();

    QCOMPARE(task.toString(), QStringLiteral("<-TaskName->任务 1</-TaskName->\n"
                                             "<-Kernel->2</-Kernel->\n"
                                             "<-View->3</-View->\n") +
                                  QString::fromUtf8(StepText));
}

void tstProjectText::taskWithASourceWritesItsTrimmedText()
{
    TaskInfo task(QString(), nullptr);
    task.fromString(QStringLiteral("<-DataSource->\r\n ") + sourceText(QStringLiteral("size=2x2")) +
                    QStringLiteral("\n\n</-DataSource->"));

    QCOMPARE(task.toString(), QStringLiteral("<-TaskName-></-TaskName->\n"
                                             "<-Kernel->0</-Kernel->\n"
                                             "<-View->0</-View->\n"
                                             "<-DataSource->\n") +
                                  sourceText(QStringLiteral("size=2x2")) + QStringLiteral("\n</-DataSource->\n"));
}

void tstProjectText::trimmedSourceTextIsStoredBackButOptionsStay()
{
    TaskInfo task(QString(), nullptr);
    task.fromString(QStringLiteral("<-DataSource->\n") + sourceText(QString()) + QStringLiteral("\n</-DataSource->"));
    task.getTaskItem() += fullStep();
    QCOMPARE(task.getDataSourceConfig(), QStringLiteral("\n") + sourceText(QString()) + QStringLiteral("\n"));

    task.toString();

    QCOMPARE(task.getDataSourceConfig(), sourceText(QString()));
    QCOMPARE(task.getTaskItem().first().m_strOption, fullStep().m_strOption);
}

void tstProjectText::sourceThatCannotBeMadeIsNotWritten()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(QStringLiteral("<-DataSource-><DSName>Nobody</DSName></-DataSource->"));

    QVERIFY(!task.toString().contains(QStringLiteral("DataSource")));
}

void tstProjectText::projectHoldsTasksInAscendingIds()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    tasks->addTask(new TaskInfo(QStringLiteral("b"), nullptr), 5);
    tasks->addTask(new TaskInfo(QStringLiteral("a"), nullptr), 2);

    QCOMPARE(tasks->toString(), QStringLiteral("<=TaskInfo=>\n"
                                               "<-TaskName->a</-TaskName->\n"
                                               "<-Kernel->-1</-Kernel->\n"
                                               "<-View->0</-View->\n"
                                               "\n"
                                               "</=TaskInfo=>\n"
                                               "<=TaskInfo=>\n"
                                               "<-TaskName->b</-TaskName->\n"
                                               "<-Kernel->-1</-Kernel->\n"
                                               "<-View->0</-View->\n"
                                               "\n"
                                               "</=TaskInfo=>\n"));
}

void tstProjectText::projectWithoutTasksIsEmpty()
{
    TaskMgr::getInstance()->addTask(nullptr, 0);

    QVERIFY(!TaskMgr::getInstance()->getTask(0));
    QCOMPARE(TaskMgr::getInstance()->toString(), QString());
}

void tstProjectText::savedTextHasNoEmptyLine()
{
    auto* task = new TaskInfo(QString(), nullptr);
    TaskItem item = probeStep(QString());
    item.m_strOption = QStringLiteral("a\n\n\nb");
    task->getTaskItem() += item;
    TaskMgr::getInstance()->addTask(task, 0);

    const QString saved = ProjectText::collapseEmptyLines(TaskMgr::getInstance()->toString());

    QVERIFY(!saved.contains(QStringLiteral("\n\n")));
    QVERIFY(saved.contains(QStringLiteral("<-OptionStr->\na\nb\n</-OptionStr->")));
}

void tstProjectText::emptyTextLeavesNoTasks()
{
    TaskMgr::getInstance()->addTask(new TaskInfo(QString(), nullptr), 0);

    TaskMgr::getInstance()->fromString(QString());

    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 0);
}

void tstProjectText::loadedTasksGetIdsInFileOrder()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    tasks->addTask(new TaskInfo(QStringLiteral("b"), nullptr), 9);
    tasks->addTask(new TaskInfo(QStringLiteral("a"), nullptr), 4);

    tasks->fromString(tasks->toString());

    QCOMPARE(tasks->getTaskNum(), 2);
    QCOMPARE(tasks->getTask(0)->getName(), QStringLiteral("a"));
    QCOMPARE(tasks->getTask(1)->getName(), QStringLiteral("b"));
}

void tstProjectText::loadingReplacesWhatWasThere()
{
    const QPointer<TaskInfo> old(new TaskInfo(QString(), nullptr));
    TaskMgr::getInstance()->addTask(old, 3);

    TaskMgr::getInstance()->fromString(QStringLiteral("<=TaskInfo=>x</=TaskInfo=>"));

    QVERIFY(!old);
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 1);
    QVERIFY(TaskMgr::getInstance()->getTask(0)->getName().isEmpty());
}

void tstProjectText::fieldsAreReadInAnyCase()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(
        QStringLiteral("<-view->2</-VIEW-><-TASKNAME->n</-taskname-><-taskitem-><-arithmid->A</-ARITHMID->"
                       "</-TASKITEM->"));

    QCOMPARE(task.getName(), QStringLiteral("n"));
    QCOMPARE(task.getView(), 2);
    QCOMPARE(task.getTaskItem().first().m_strArithmID, QStringLiteral("A"));
}

void tstProjectText::missingCountLoadsAsZero()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(QStringLiteral("<-TaskItem-><-ArithmID->A</-ArithmID-></-TaskItem->"));

    QCOMPARE(task.getTaskItem().first().m_nMaxExeTimes, 0);
}

void tstProjectText::missingFieldsStayEmpty()
{
    TaskInfo task(QStringLiteral("old"), nullptr);

    task.fromString(QStringLiteral("<-TaskItem->x</-TaskItem->"));

    const TaskItem& item = task.getTaskItem().first();
    QVERIFY(task.getName().isEmpty());
    QCOMPARE(task.getKernel(), 0);
    QCOMPARE(task.getView(), 0);
    QVERIFY(!task.getDataSourceInstance());
    QVERIFY(item.m_strArithmID.isEmpty() && item.m_strOption.isEmpty() && item.m_strClassName.isEmpty());
    QVERIFY(item.m_strArithmName.isEmpty() && item.m_strDescribe.isEmpty());
    QCOMPARE(item.m_nExeTimes, 0);
}

void tstProjectText::badNumbersLoadAsZero()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(
        QStringLiteral("<-Kernel->0x2</-Kernel-><-View->two</-View-><-TaskItem-><-MaxExeTimes->"
                       "99999999999</-MaxExeTimes-></-TaskItem->"));

    QCOMPARE(task.getKernel(), 0);
    QCOMPARE(task.getView(), 0);
    QCOMPARE(task.getTaskItem().first().m_nMaxExeTimes, 0);
}

void tstProjectText::optionKeepsItsLineFeeds()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(QStringLiteral("<-TaskItem-><-OptionStr->\nx\n</-OptionStr-></-TaskItem->"));

    QCOMPARE(task.getTaskItem().first().m_strOption, QStringLiteral("\nx\n"));
}

void tstProjectText::firstEmptyStepEndsTheReading()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(QStringLiteral("<-TaskItem->a</-TaskItem-><-TaskItem-></-TaskItem-><-TaskItem->b</-TaskItem->"));

    QCOMPARE(task.getTaskItem().size(), 1);
}

void tstProjectText::firstEmptyTaskEndsTheReading()
{
    TaskMgr::getInstance()->fromString(
        QStringLiteral("<=TaskInfo=>a</=TaskInfo=><=TaskInfo=></=TaskInfo=><=TaskInfo=>b</=TaskInfo=>"));

    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 1);
}

void tstProjectText::unknownTextIsIgnored()
{
    TaskMgr::getInstance()->fromString(QStringLiteral(
        "junk<=TaskInfo=>junk<-TaskName->a</-TaskName->more<-New->5</-New-><-TaskItem->x</-TaskItem->junk"
        "<-TaskItem->y</-TaskItem-></=TaskInfo=>junk"));

    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 1);
    QCOMPARE(TaskMgr::getInstance()->getTask(0)->getName(), QStringLiteral("a"));
    QCOMPARE(TaskMgr::getInstance()->getTask(0)->getTaskItem().size(), 2);
}

void tstProjectText::unknownSourceLeavesNone()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(QStringLiteral("<-DataSource-><DSName>Nobody</DSName></-DataSource->"));

    QVERIFY(!task.getDataSourceInstance());
    QCOMPARE(task.getDataSourceConfig(), QStringLiteral("<DSName>Nobody</DSName>"));
}

void tstProjectText::stepsOfMissingAlgorithmsLoad()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(QStringLiteral("<-TaskItem-><-ArithmID->Nobody</-ArithmID-></-TaskItem->"));

    QCOMPARE(task.getTaskItem().size(), 1);
    QCOMPARE(task.getTaskItem().first().m_strArithmID, QStringLiteral("Nobody"));
}

void tstProjectText::windowsLineEndsAreTolerated()
{
    const QString text = QStringLiteral("<=TaskInfo=>\n<-TaskName->x</-TaskName->\n<-View->1</-View->\n") +
                         QString::fromUtf8(StepText) + QStringLiteral("</=TaskInfo=>\n");

    TaskMgr::getInstance()->fromString(QString(text).replace(QStringLiteral("\n"), QStringLiteral("\r\n")));

    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 1);
    QCOMPARE(TaskMgr::getInstance()->getTask(0)->getView(), 1);
    QVERIFY(TaskMgr::getInstance()->getTask(0)->toString().endsWith(QString::fromUtf8(StepText)));
}

void tstProjectText::textBehindANulIsIgnored()
{
    const QString task = QStringLiteral("<=TaskInfo=>x</=TaskInfo=>");

    TaskMgr::getInstance()->fromString(task + QChar(0) + task);

    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 1);
}

void tstProjectText::truncatedTextsLoadWhatIsThere()
{
    auto* task = new TaskInfo(QStringLiteral("t"), nullptr);
    task->getTaskItem() += fullStep();
    TaskMgr::getInstance()->addTask(task, 0);
    const QString text = TaskMgr::getInstance()->toString();

    for (int length = 0; length < text.length(); ++length) {
        TaskMgr::getInstance()->fromString(text.left(length));
        QCOMPARE(TaskMgr::getInstance()->getTaskNum(), length == text.length() - 1 ? 1 : 0);
    }
}

void tstProjectText::widgetsFollowTheLoadedTask()
{
    TaskInfo task(QString(), nullptr);
    const Tab tab(task);

    task.fromString(QStringLiteral("<-Kernel->2</-Kernel-><-View->3</-View->"));

    QCOMPARE(tab.m_cThreads.currentIndex(), 2);
    QCOMPARE(tab.m_cViews.currentIndex(), 3);
    QCOMPARE(task.getKernel(), 2);
    QCOMPARE(task.getView(), 3);
}

void tstProjectText::loadedRowsAreAppended()
{
    TaskInfo task(QString(), nullptr);
    const Tab tab(task);

    task.fromString(QString::fromUtf8(StepText));

    QCOMPARE(tab.m_pcTable->rowCount(), 1);
    QCOMPARE(tab.cell(0, 0), QStringLiteral("找 区域"));
    QCOMPARE(tab.cell(0, 1), QStringLiteral("999999999"));
    QCOMPARE(tab.cell(0, 2), QString());
    QCOMPARE(task.getTaskItem().first().m_strDescribe, QStringLiteral("找 区域"));
}

void tstProjectText::namedIdentifiersAreNeverHandedOutAsFresh()
{
    TaskInfo task(QString(), nullptr);

    task.fromString(QStringLiteral("<-DataSource->") + sourceText(QString(), 1) +
                    QStringLiteral("</-DataSource-><-TaskItem-><-OptionStr->\n<DataID>2</DataID><OutID> 5 </OutID>"
                                   "<BadID>-1</BadID>\n</-OptionStr-></-TaskItem->"));

    ArithmParamMgr* store = task.getArithmParamMgr();
    QList<int> fresh;
    for (int i = 0; i < 6; ++i)
        fresh += store->getParamStrings(-1)->getID();
    for (const int named : {1, 2, 5})
        QVERIFY(!fresh.contains(named));
}

void tstProjectText::manyStepsLoad()
{
    constexpr int StepNum = 20000;
    const QString text = QStringLiteral("<=TaskInfo=>\n") + QString::fromUtf8(StepText).repeated(StepNum) +
                         QStringLiteral("</=TaskInfo=>\n");

    TaskMgr::getInstance()->fromString(text);

    const QList<TaskItem>& items = TaskMgr::getInstance()->getTask(0)->getTaskItem();
    QCOMPARE(items.size(), StepNum);
    QCOMPARE(items.last().m_strDescribe, QStringLiteral("找 区域"));
    QCOMPARE(items.last().m_strOption, QStringLiteral("\n<A>1</A>\n"));
}

void tstProjectText::savedAndLoadedProjectIsTheSame()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    for (int id = 0; id < 3; ++id) {
        auto* task = new TaskInfo(QString(), nullptr);
        task->fromString(QStringLiteral("<-TaskName->t</-TaskName-><-Kernel->1</-Kernel-><-DataSource->") +
                         sourceText(QStringLiteral("wait=1"), id + 1) + QStringLiteral("</-DataSource->") +
                         QString::fromUtf8(StepText).repeated(id));
        tasks->addTask(task, id);
    }
    const QString saved = ProjectText::collapseEmptyLines(tasks->toString());

    tasks->fromString(saved);

    QCOMPARE(ProjectText::collapseEmptyLines(tasks->toString()), saved);
    QCOMPARE(saved.count(QStringLiteral("<-TaskItem->")), 3);
    QCOMPARE(saved.count(QStringLiteral("<=TaskInfo=>")), 3);
}

QTEST_MAIN(tstProjectText)
#include "tstProjectText.moc"
