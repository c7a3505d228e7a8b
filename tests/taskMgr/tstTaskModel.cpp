#include "arithm/arithmFactory.h"
#include "dialogDriver.h"
#include "paramStore/arithmParamMgr.h"
#include "processMemory.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

#include <array>
#include <cstring>
#include <thread>
#include <vector>

namespace {

TaskInfo* newTask()
{
    return new TaskInfo(QStringLiteral("task"), nullptr);
}

}  // namespace

class tstTaskModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void registryOfTasksMakesThatOfAlgorithmsButNotThatOfSources();
    void freshTaskHasItsDefaults();
    void freshStepHasNoLimit();
    void combosFollowWhatTheTaskHolds();
    void combosStayWhereTheTaskHoldsTheFirstEntry();
    void numbersThatTheCombosLackStayWithTheTask();
    void choosingInACombosChangesTheTask();
    void eachWidgetMayBeMissing();
    void flowTableAsksForItsOwnMenu();
    void deletedTaskLetsGoOfEveryReceiverOfItsButtons();
    void deletedTaskLeavesThreadComboAndTableCellsConnectedOnPurpose();
    void tabMayDieBeforeItsTask();
    void rowShowsDescribeOrNameAndAReadOnlyTime();
    void rowsFilledByTheProgramAreNoEdits();
    void cancelledSourceChoiceChangesNothing();
    void chosenSourceReplacesTheOldOneAndItsText();
    void deletingATaskRemovesItsSourceInstance();
    void textThatIsReadAgainReplacesTheSource();
    void deletedTaskGivesItsPicturesBack();

    void unknownIdFindsNothingAndAddsNothing();
    void idsStayWhenATaskIsRemoved();
    void removingAnUnknownIdDoesNothing();
    void replacedTaskLivesOnUntilAllGo();
    void replacedTaskKeepsRunningUntilAllGo();
    void addingTheSameTaskAgainKeepsItOnce();
    void replacedTaskMayComeBack();
    void addTaskOverwritesTheMisspeltCallBacks();
    void callBacksReachOnlyTasksAddedLater();
    void clearStopsAndDeletesRunningTasks();
    void deleteThisForgetsTheInstance();
    void instanceIsOneForManyThreads();

private:
    // Which registries there were before and after that of the tasks was made.
    bool m_bAlgorithmsBefore = true;
    bool m_bAlgorithmsAfter = false;
    bool m_bSourcesAfter = true;
};

void tstTaskModel::initTestCase()
{
    Probes::install();
    m_bAlgorithmsBefore = ArithmFactory::s_pcAF.load() != nullptr;
    TaskMgr::getInstance();
    m_bAlgorithmsAfter = ArithmFactory::s_pcAF.load() != nullptr;
    m_bSourcesAfter = DataSource::s_pcThis.load() != nullptr;
    makeTask({});  // loads the source library
}

void tstTaskModel::init()
{
    TaskMgr::getInstance()->clear();
    TaskMgr::getInstance()->setMssageCallBack(nullptr);
    TaskMgr::getInstance()->setPrintCallBack(nullptr);
    Probes::reset();
    Reports::clear();
}

void tstTaskModel::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstTaskModel::registryOfTasksMakesThatOfAlgorithmsButNotThatOfSources()
{
    QVERIFY(!m_bAlgorithmsBefore);
    QVERIFY(m_bAlgorithmsAfter);
    QVERIFY(!m_bSourcesAfter);
}

void tstTaskModel::freshTaskHasItsDefaults()
{
    TaskInfo task(QStringLiteral("名字"), nullptr);

    QCOMPARE(task.getName(), QStringLiteral("名字"));
    QCOMPARE(task.getKernel(), -1);
    QCOMPARE(task.getView(), 0);
    QVERIFY(!task.getDataSourceInstance());
    QVERIFY(task.getDataSourceConfig().isEmpty());
    QVERIFY(task.getTaskItem().isEmpty());
    QVERIFY(!task.IsRunning());
    QVERIFY(task.getArithmParamMgr());
    QCOMPARE(task.getPassNum(), 0LL);
}

void tstTaskModel::freshStepHasNoLimit()
{
    const TaskItem item;

    QCOMPARE(item.m_nMaxExeTimes, -1);
    QCOMPARE(item.m_nExeTimes, 0);
    QVERIFY(!item.runsAtTaskEnd());
}

void tstTaskModel::combosFollowWhatTheTaskHolds()
{
    TaskInfo task(QString(), nullptr);
    task.ViewSelected(3);
    task.ThreadSelected(2);

    const Tab tab(task);

    QCOMPARE(tab.m_cViews.currentIndex(), 3);
    QCOMPARE(tab.m_cThreads.currentIndex(), 2);
    task.ViewSelected(1);
    task.ThreadSelected(1);
    const Tab second(task);
    QCOMPARE(second.m_cViews.currentIndex(), 1);
    QCOMPARE(second.m_cThreads.currentIndex(), 1);
}

void tstTaskModel::combosStayWhereTheTaskHoldsTheFirstEntry()
{
    TaskInfo task(QString(), nullptr);
    QComboBox views;
    QComboBox threads;
    for (QComboBox* combo : {&views, &threads}) {
        combo->addItems({QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")});
        combo->setCurrentIndex(2);
    }

    task.addViewSelectCombo(&views);
    task.addThreadSelectCombo(&threads);

    QCOMPARE(views.currentIndex(), 2);
    QCOMPARE(threads.currentIndex(), 2);
}

// A project from a machine with more processors.
void tstTaskModel::numbersThatTheCombosLackStayWithTheTask()
{
    TaskInfo task(QString(), nullptr);
    task.fromString(QStringLiteral("<-Kernel->40</-Kernel-><-View->7</-View->"));

    const Tab tab(task);

    QCOMPARE(tab.m_cThreads.currentIndex(), -1);
    QCOMPARE(tab.m_cViews.currentIndex(), -1);
    QCOMPARE(task.getKernel(), 40);
    QCOMPARE(task.getView(), 7);
}

void tstTaskModel::choosingInACombosChangesTheTask()
{
    TaskInfo task(QString(), nullptr);
    Tab tab(task);

    tab.m_cViews.setCurrentIndex(2);
    tab.m_cThreads.setCurrentIndex(1);

    QCOMPARE(task.getView(), 2);
    QCOMPARE(task.getKernel(), 1);
}

void tstTaskModel::eachWidgetMayBeMissing()
{
    auto task = makeTask({probeStep(QStringLiteral("a"))}, QStringLiteral("wait=5"));
    task->connectEvents();
    task->runHere();
    task->modifyOption();
    task->delArithm();
    task->showContextmenu({});
    task->TableItemClicked(nullptr);
    task->TaskFlowTblCellChanged(0, 0);

    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());
    task->stopTask();

    QVERIFY(!task->IsRunning());
    QCOMPARE(task->getTaskItem().size(), 1);
}

void tstTaskModel::flowTableAsksForItsOwnMenu()
{
    TaskInfo task(QString(), nullptr);

    const Tab tab(task);

    QCOMPARE(tab.m_pcTable->contextMenuPolicy(), Qt::CustomContextMenu);
}

void tstTaskModel::deletedTaskLetsGoOfEveryReceiverOfItsButtons()
{
    auto* task = newTask();
    Tab tab(*task);
    int runClicks = 0;
    int viewChanges = 0;
    int otherSignals = 0;
    const auto countOther = [&otherSignals] { ++otherSignals; };
    connect(&tab.m_cSource, &QPushButton::clicked, this, countOther);
    connect(tab.m_pcTable, &QWidget::customContextMenuRequested, this, countOther);
    connect(&tab.m_cRun, &QPushButton::clicked, this, [&runClicks] { ++runClicks; });
    connect(&tab.m_cViews, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [&viewChanges] { ++viewChanges; });
    tab.m_cRun.click();
    QTRY_VERIFY(!task->IsRunning() && tab.allEnabled());
    QCOMPARE(runClicks, 1);

    delete task;

    tab.m_cRun.click();
    tab.m_cSource.click();
    tab.m_cViews.setCurrentIndex(1);
    Q_EMIT tab.m_pcTable->customContextMenuRequested({});
    QCOMPARE(runClicks, 1);
    QCOMPARE(viewChanges, 0);
    QCOMPARE(otherSignals, 0);
}

void tstTaskModel::deletedTaskLeavesThreadComboAndTableCellsConnectedOnPurpose()
{
    auto* task = newTask();
    Tab tab(*task);
    const QSignalSpy threadChanges(&tab.m_cThreads, QOverload<int>::of(&QComboBox::currentIndexChanged));
    const QSignalSpy cellChanges(tab.m_pcTable, &QTableWidget::cellChanged);
    const QSignalSpy presses(tab.m_pcTable, &QTableWidget::itemPressed);

    delete task;

    tab.m_cThreads.setCurrentIndex(1);
    tab.m_pcTable->setRowCount(1);
    tab.m_pcTable->setItem(0, 0, new QTableWidgetItem);
    Q_EMIT tab.m_pcTable->itemPressed(tab.m_pcTable->item(0, 0));
    QCOMPARE(threadChanges.count(), 1);
    QCOMPARE(cellChanges.count(), 1);
    QCOMPARE(presses.count(), 1);
}

void tstTaskModel::tabMayDieBeforeItsTask()
{
    auto task = makeTask({probeStep(QStringLiteral("a"))}, QStringLiteral("wait=5"));
    auto tab = std::make_unique<Tab>(*task);
    task->TableItemClicked(tab->m_pcTable->item(0, 0));
    task->showContextmenu({});
    task->startTask();
    QTRY_VERIFY(!Probes::trace().isEmpty());

    tab.reset();

    task->stopTask();
    QVERIFY(!task->IsRunning());
    task->showContextmenu({});
    task->TableItemClicked(nullptr);
    task->runHere();
    task->fromString(QStringLiteral("<-Kernel->1</-Kernel-><-TaskItem->x</-TaskItem->"));
    QCOMPARE(task->getTaskItem().size(), 2);
}

void tstTaskModel::rowShowsDescribeOrNameAndAReadOnlyTime()
{
    QTableWidget table(0, 3);
    const TaskItem named = probeStep(QString(), QString(), 7);
    TaskItem described = named;
    described.m_strDescribe = QStringLiteral("找区域");

    TaskInfo::appendRow(&table, named);
    TaskInfo::appendRow(&table, described);

    QCOMPARE(table.item(0, 0)->text(), QStringLiteral("Probe"));
    QCOMPARE(table.item(1, 0)->text(), QStringLiteral("找区域"));
    QCOMPARE(table.item(0, 0)->toolTip(), QStringLiteral("Probe"));
    QCOMPARE(table.item(1, 0)->toolTip(), QStringLiteral("Probe"));
    QCOMPARE(table.item(0, 1)->text(), QStringLiteral("7"));
    QCOMPARE(table.item(0, 2)->text(), QString());
    QVERIFY(table.item(0, 0)->flags() & Qt::ItemIsEditable);
    QVERIFY(table.item(0, 1)->flags() & Qt::ItemIsEditable);
    QVERIFY(!(table.item(0, 2)->flags() & Qt::ItemIsEditable));
}

void tstTaskModel::rowsFilledByTheProgramAreNoEdits()
{
    QTableWidget table(0, 3);
    const QSignalSpy spy(&table, &QTableWidget::cellChanged);

    TaskInfo::appendRow(&table, probeStep(QString()));

    QCOMPARE(spy.count(), 0);
    QVERIFY(!table.signalsBlocked());
}

void tstTaskModel::cancelledSourceChoiceChangesNothing()
{
    auto task = makeTask({});
    const QString config = task->getDataSourceConfig();
    const auto* instance = task->getDataSourceInstance();
    QTimer closeDialog;
    connect(&closeDialog, &QTimer::timeout, this, [] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            dialog->reject();
    });
    closeDialog.start(5);

    task->DataSourceClicked();

    QVERIFY(instance);
    QCOMPARE(task->getDataSourceInstance(), instance);
    QCOMPARE(task->getDataSourceConfig(), config);
}

void tstTaskModel::chosenSourceReplacesTheOldOneAndItsText()
{
    auto task = makeTask({});
    Tab tab(*task);
    const auto* old = task->getDataSourceInstance();
    const DialogDriver::InDialog<QDialog> user([](QDialog& dialog) {
        auto* kinds = DialogDriver::child<QListWidget>(dialog, "lbSourceNames");
        QCOMPARE(kinds->item(0)->text(), QStringLiteral("Memory Disk 0"));
        DialogDriver::clickRow(kinds, 0);
        DialogDriver::click(dialog, "btnSetting");
        DialogDriver::type(dialog, "edtName", QStringLiteral("other"));
        DialogDriver::click(dialog, "btnOK");
    });

    tab.m_cSource.click();

    QVERIFY(user.came());
    QVERIFY(task->getDataSourceInstance());
    QVERIFY(task->getDataSourceInstance() != old);
    QCOMPARE(task->getDataSourceConfig(),
             QStringLiteral("<DSName>Memory Disk 0</DSName><OutputName>other</OutputName><OutputDescribe>"
                            "</OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID><Config></Config>"));
    QCOMPARE(Probes::sourceCalls("removeInstance"), 1);
}

void tstTaskModel::textThatIsReadAgainReplacesTheSource()
{
    const auto task = makeTask({});

    task->fromString(QStringLiteral("<-DataSource-><DSName>Memory Disk 0</DSName></-DataSource->"));

    QVERIFY(task->getDataSourceInstance());
    QCOMPARE(Probes::sourceCalls("removeInstance"), 1);
}

void tstTaskModel::deletingATaskRemovesItsSourceInstance()
{
    auto task = makeTask({});
    QCOMPARE(Probes::sourceCalls("removeInstance"), 0);

    task.reset();

    QCOMPARE(Probes::sourceCalls("removeInstance"), 1);
}

void tstTaskModel::deletedTaskGivesItsPicturesBack()
{
    constexpr int TaskNum = 20;
    constexpr int Width = 8000;
    constexpr int Height = 5000;
    const qint64 before = residentBytes();

    for (int i = 0; i < TaskNum; ++i) {
        auto task = makeSourcelessTask();
        ParamGray8* picture = task->getArithmParamMgr()->getParamGray8(1);
        picture->resize(Width, Height);
        QVERIFY(picture->getGray8());
        std::memset(picture->getGray8(), i, Width * Height);
    }

    // Half of all pictures: a sanitizer keeps some of what was given back.
    QVERIFY(residentBytes() - before < TaskNum / 2 * Width * Height);
}

void tstTaskModel::unknownIdFindsNothingAndAddsNothing()
{
    TaskMgr* tasks = TaskMgr::getInstance();

    QVERIFY(!tasks->getTask(5));

    QCOMPARE(tasks->getTaskNum(), 0);
}

void tstTaskModel::idsStayWhenATaskIsRemoved()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    const QPointer<TaskInfo> second(newTask());
    TaskInfo* first = newTask();
    TaskInfo* third = newTask();
    tasks->addTask(first, 0);
    tasks->addTask(second, 1);
    tasks->addTask(third, 2);

    tasks->removeTask(1);

    QVERIFY(!second);
    QCOMPARE(tasks->getTaskNum(), 2);
    QCOMPARE(tasks->getTask(0), first);
    QCOMPARE(tasks->getTask(2), third);
    // A walk over the ids 0 to 1 finds task 0 alone.
    QVERIFY(!tasks->getTask(1));
}

void tstTaskModel::removingAnUnknownIdDoesNothing()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    tasks->addTask(newTask(), 0);

    tasks->removeTask(7);

    QCOMPARE(tasks->getTaskNum(), 1);
}

void tstTaskModel::replacedTaskLivesOnUntilAllGo()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    const QPointer<TaskInfo> old(newTask());
    const QPointer<TaskInfo> late(newTask());
    tasks->addTask(old, 0);

    tasks->addTask(late, 0);

    QVERIFY(old);
    QCOMPARE(tasks->getTask(0), late.data());
    QCOMPARE(tasks->getTaskNum(), 1);
    tasks->removeTask(0);
    QVERIFY(!late);
    QVERIFY(old);
    tasks->clear();
    QVERIFY(!old);
}

void tstTaskModel::replacedTaskKeepsRunningUntilAllGo()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    const QPointer<TaskInfo> old(makeTask({probeStep(QStringLiteral("old"))}, QStringLiteral("wait=5")).release());
    Tab tab(*old);
    tasks->addTask(old, 0);
    tab.m_cRun.click();

    tasks->addTask(newTask(), 0);

    Probes::reset();
    QTRY_VERIFY(Probes::trace().startsWith(QStringLiteral("old,old")));
    tab.m_cRun.click();  // its tab goes on working
    QVERIFY(!old->IsRunning());
    QCOMPARE(tab.m_cRun.text(), QStringLiteral("执行任务"));
    tab.m_cRun.click();
    QVERIFY(old->IsRunning());
    TaskMgr::deleteThis();
    QVERIFY(!old);
}

void tstTaskModel::addingTheSameTaskAgainKeepsItOnce()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    const QPointer<TaskInfo> task(newTask());
    tasks->addTask(task, 0);

    tasks->addTask(task, 0);

    tasks->removeTask(0);
    QVERIFY(!task);
    tasks->clear();  // would delete it a second time
    QCOMPARE(tasks->getTaskNum(), 0);
}

void tstTaskModel::replacedTaskMayComeBack()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    const QPointer<TaskInfo> first(newTask());
    const QPointer<TaskInfo> second(newTask());
    tasks->addTask(first, 0);
    tasks->addTask(second, 0);

    tasks->addTask(first, 1);

    QCOMPARE(tasks->getTaskNum(), 2);
    tasks->removeTask(1);
    QVERIFY(!first);
    tasks->clear();
    QVERIFY(!second);
}

void tstTaskModel::addTaskOverwritesTheMisspeltCallBacks()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    tasks->setMssageCallBack(Reports::message);
    tasks->setPrintCallBack(Reports::print);
    auto task = makeTask({probeStep(QStringLiteral("a"), QStringLiteral("<CMD>print:hello</CMD>"))});
    task->setMssageCallBack(nullptr);
    task->setPrintCallBack(nullptr);
    TaskInfo* added = task.release();

    tasks->addTask(added, 0);
    added->threadFinishedArrived(QStringLiteral("over"), false);
    added->runTaskOnce();

    QCOMPARE(Reports::messages(), QStringList{QStringLiteral("over")});
    QCOMPARE(Reports::prints(), QStringList{QStringLiteral("hello")});
}

void tstTaskModel::callBacksReachOnlyTasksAddedLater()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    const auto addPrinting = [tasks](int id) {
        const QString result = QStringLiteral("<CMD>print:%1</CMD>").arg(id);
        tasks->addTask(makeTask({probeStep(QStringLiteral("a"), result)}).release(), id);
    };
    addPrinting(0);
    tasks->setMssageCallBack(Reports::message);
    tasks->setPrintCallBack(Reports::print);
    addPrinting(1);

    for (int id = 0; id < 2; ++id) {
        tasks->getTask(id)->threadFinishedArrived(QString::number(id), false);
        tasks->getTask(id)->runTaskOnce();
    }

    QCOMPARE(Reports::messages(), QStringList{QStringLiteral("1")});
    QCOMPARE(Reports::prints(), QStringList{QStringLiteral("1")});
}

void tstTaskModel::clearStopsAndDeletesRunningTasks()
{
    TaskMgr* tasks = TaskMgr::getInstance();
    QList<QPointer<TaskInfo>> running;
    for (int id = 0; id < 3; ++id) {
        running += makeTask({probeStep(QStringLiteral("a"))}, QStringLiteral("wait=20")).release();
        tasks->addTask(running.last(), id);
        running.last()->startTask();
    }
    QTRY_VERIFY(!Probes::trace().isEmpty());

    tasks->clear();

    for (const QPointer<TaskInfo>& task : qAsConst(running))
        QVERIFY(!task);
    const QString trace = Probes::trace();
    QTest::qWait(60);
    QCOMPARE(Probes::trace(), trace);
    QCOMPARE(tasks->getTaskNum(), 0);
}

void tstTaskModel::deleteThisForgetsTheInstance()
{
    const QPointer<TaskInfo> task(newTask());
    TaskMgr::getInstance()->addTask(task, 0);

    TaskMgr::deleteThis();

    QVERIFY(!task);
    QVERIFY(!TaskMgr::s_pcInstance.load());
    TaskMgr::deleteThis();  // once more does nothing
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 0);
}

void tstTaskModel::instanceIsOneForManyThreads()
{
    TaskMgr::deleteThis();
    std::array<TaskMgr*, 8> seen{};
    std::vector<std::thread> threads;

    for (TaskMgr*& instance : seen)
        threads.emplace_back([&instance] { instance = TaskMgr::getInstance(); });
    for (std::thread& thread : threads)
        thread.join();

    for (TaskMgr* instance : seen)
        QCOMPARE(instance, TaskMgr::s_pcInstance.load());
}

QTEST_MAIN(tstTaskModel)
#include "tstTaskModel.moc"
