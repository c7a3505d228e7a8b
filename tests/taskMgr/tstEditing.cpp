#include "paramStore/arithmParamMgr.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QtTest>

namespace {

/// The options of the steps, in order.
QStringList options(TaskInfo& task)
{
    QStringList list;
    for (const TaskItem& item : task.getTaskItem())
        list += item.m_strOption;
    return list;
}

/// The texts of a menu's entries; "-" for a separator.
QStringList captions(const QMenu* menu)
{
    QStringList list;
    for (const QAction* action : menu->actions())
        list += action->isSeparator() ? QStringLiteral("-") : action->text();
    return list;
}

/// The menu entry of the probe.
QAction* probeEntry(const Tab& tab)
{
    const QMenu* menu = openedMenu(tab);
    return entry(subMenu(subMenu(menu, QStringLiteral("添加算法")), QStringLiteral("Test")), QStringLiteral("Probe"));
}

}  // namespace

class tstEditing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void menuOffersAlgorithmsByClassAndTheCommands();
    void menuOfExtensionAlgorithmsIsEnabledOnceThereIsOne();
    void menuIsBuiltOnceAndReused();
    void menuOpensWhereTheClickWas();
    void menuIsBuiltAgainForANewTable();
    void withoutASelectionTheStepIsAppended();
    void withASelectionTheStepIsInsertedBefore();
    void insertingAtTheFrontOnlyFetchesAPicture();
    void extensionAlgorithmsAreAddedToo();
    void cancelledWindowAddsNothing();
    void addingWithoutASourceSaysSoAndOpensTheWindow();
    void insertingAtTheFrontWithoutASourceSaysNothing();
    void modifyingTheFirstStepWithoutASourceSaysNothing();
    void failingPreparationIsShownAndTheWindowOpens();
    void unknownEntryIsNotFinded();
    void storeIsCleanedBeforeThePreparation();
    void preparationLeavesTheCountersAtZeroAndShowsTimes();
    void modifyingReplacesTheOption();
    void cancelledModificationChangesNothing();
    void modifyingNeedsASelection();
    void modifyingARowWithoutAStepIsASeriousError();
    void modifyingAStepOfAMissingAlgorithmIsRefused();
    void deletingAsksFirst();
    void deletingRemovesStepAndRow();
    void deletingReachesTheFirstAndTheLastStep();
    void deletingAnotherRowKeepsThePressedCell();
    void deletingNeedsASelection();
    void deletingARowWithoutAStepDoesNothing();
    void taskMayBeDeletedWhileABoxIsShown();
    void taskMayBeDeletedWhileItsSourceIsChosen();
    void textWithoutASourceKeepsTheOneThatIsThere();
};

void tstEditing::initTestCase()
{
    Probes::install();
    PluginFolders::addBase(QStringLiteral("algorithmChinese"));
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstEditing::init()
{
    Probes::reset("new|");
    Reports::clear();
}

void tstEditing::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstEditing::menuOffersAlgorithmsByClassAndTheCommands()
{
    auto task = makeTask({});
    const Tab tab(*task);

    const QMenu* menu = openedMenu(tab);

    QVERIFY(menu);
    QCOMPARE(captions(menu), QStringList({QStringLiteral("添加算法"), QStringLiteral("添加扩展算法"),
                                          QStringLiteral("-"), QStringLiteral("修改配置"), QStringLiteral("删除"),
                                          QStringLiteral("-"), QStringLiteral("执行到选中算法")}));
    const QMenu* plain = subMenu(menu, QStringLiteral("添加算法"));
    const QMenu* extension = subMenu(menu, QStringLiteral("添加扩展算法"));
    QCOMPARE(captions(plain), QStringList({QStringLiteral("系统"), QStringLiteral("滤波"), QStringLiteral("Test")}));
    QVERIFY(captions(subMenu(plain, QStringLiteral("系统"))).contains(QStringLiteral("绘制对象")));
    QCOMPARE(captions(subMenu(plain, QStringLiteral("滤波"))), QStringList{QStringLiteral("中值滤波")});
    QCOMPARE(captions(subMenu(plain, QStringLiteral("Test"))), QStringList{QStringLiteral("Probe")});
    QCOMPARE(captions(extension), QStringList{QStringLiteral("Test")});
    QCOMPARE(captions(subMenu(extension, QStringLiteral("Test"))), QStringList{QStringLiteral("Extension Probe")});
}

void tstEditing::menuOfExtensionAlgorithmsIsEnabledOnceThereIsOne()
{
    auto task = makeTask({});
    const Tab tab(*task);

    const QMenu* menu = openedMenu(tab);

    QVERIFY(entry(menu, QStringLiteral("添加算法"))->isEnabled());
    QVERIFY(entry(menu, QStringLiteral("添加扩展算法"))->isEnabled());
}

void tstEditing::menuIsBuiltOnceAndReused()
{
    auto task = makeTask({});
    const Tab tab(*task);

    const QMenu* first = openedMenu(tab);

    QCOMPARE(openedMenu(tab), first);
    QCOMPARE(tab.m_pcTable->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly).size(), 1);
}

void tstEditing::menuOpensWhereTheClickWas()
{
    auto task = makeTask(steps("ab"));
    Tab tab(*task);
    tab.m_cPage.move(40, 30);
    tab.m_cPage.show();

    Q_EMIT tab.m_pcTable->customContextMenuRequested(QPoint(20, 10));

    QMenu* menu = contextMenu(tab);
    QVERIFY(menu->isVisible());
    QCOMPARE(menu->pos(), tab.m_pcTable->viewport()->mapToGlobal(QPoint(20, 10)));
    menu->close();
}

void tstEditing::menuIsBuiltAgainForANewTable()
{
    auto task = makeTask({});
    auto first = std::make_unique<Tab>(*task);
    QVERIFY(openedMenu(*first));
    first.reset();

    const Tab second(*task);
    probeEntry(second)->trigger();

    QCOMPARE(options(*task), QStringList{QStringLiteral("new|")});
}

void tstEditing::withoutASelectionTheStepIsAppended()
{
    auto task = makeTask(steps("ab"), QStringLiteral("needsStart=1"));
    const Tab tab(*task);

    probeEntry(tab)->trigger();

    QCOMPARE(options(*task), QStringList({QStringLiteral("a|"), QStringLiteral("b|"), QStringLiteral("new|")}));
    const TaskItem& added = task->getTaskItem().last();
    QCOMPARE(added.m_strArithmID, QStringLiteral("Test.Probe"));
    QCOMPARE(added.m_strClassName, QStringLiteral("Test"));
    QCOMPARE(added.m_strArithmName, QStringLiteral("Probe"));
    QCOMPARE(added.m_nMaxExeTimes, -1);
    QCOMPARE(added.m_nExeTimes, 0);
    QVERIFY(added.m_strDescribe.isEmpty());
    QCOMPARE(tab.m_pcTable->rowCount(), 3);
    QCOMPARE(tab.cell(2, 0), QStringLiteral("Probe"));
    QCOMPARE(tab.cell(2, 1), QStringLiteral("-1"));
    // All steps ran before the window opened, the source only around that.
    QCOMPARE(Probes::traceAtConfig(), QStringLiteral("a,b"));
    QCOMPARE(Probes::configOption(), QString());
    QCOMPARE(Probes::sourceCalls("start"), 1);
    QCOMPARE(Probes::sourceCalls("stop"), 1);
}

void tstEditing::withASelectionTheStepIsInsertedBefore()
{
    auto task = makeTask(steps("abcd"));
    const Tab tab(*task);
    QAction* probe = probeEntry(tab);
    selectRow(tab, 2);

    probe->trigger();

    QCOMPARE(options(*task), QStringList({QStringLiteral("a|"), QStringLiteral("b|"), QStringLiteral("new|"),
                                          QStringLiteral("c|"), QStringLiteral("d|")}));
    QCOMPARE(tab.m_pcTable->rowCount(), 5);
    QCOMPARE(tab.cell(2, 0), QStringLiteral("Probe"));
    QVERIFY(!(tab.m_pcTable->item(2, 2)->flags() & Qt::ItemIsEditable));
    QCOMPARE(Probes::traceAtConfig(), QStringLiteral("a,b"));
}

void tstEditing::insertingAtTheFrontOnlyFetchesAPicture()
{
    auto task = makeTask(steps("ab"), QStringLiteral("needsStart=1"));
    const Tab tab(*task);
    QAction* probe = probeEntry(tab);
    selectRow(tab, 0);

    probe->trigger();

    QCOMPARE(options(*task), QStringList({QStringLiteral("new|"), QStringLiteral("a|"), QStringLiteral("b|")}));
    QCOMPARE(Probes::trace(), QString());
    QCOMPARE(Probes::sourceCalls("requestPicture"), 1);
    QCOMPARE(task->getArithmParamMgr()->findParamDIB(1)->getWidth(), 4);
    QCOMPARE(Probes::sourceCalls("stop"), 1);
}

void tstEditing::extensionAlgorithmsAreAddedToo()
{
    auto task = makeTask({});
    const Tab tab(*task);
    const QMenu* extension = subMenu(openedMenu(tab), QStringLiteral("添加扩展算法"));

    entry(subMenu(extension, QStringLiteral("Test")), QStringLiteral("Extension Probe"))->trigger();

    QCOMPARE(Probes::extConfigWindows(), 1);
    QCOMPARE(Probes::configWindows(), 0);
    QCOMPARE(task->getTaskItem().size(), 1);
    QCOMPARE(task->getTaskItem().first().m_strArithmID, QStringLiteral("Test.ExtProbe"));
}

void tstEditing::cancelledWindowAddsNothing()
{
    Probes::reset("");
    auto task = makeTask(steps("a"));
    const Tab tab(*task);
    QAction* probe = probeEntry(tab);

    probe->trigger();
    selectRow(tab, 0);
    probe->trigger();

    QCOMPARE(Probes::configWindows(), 2);
    QCOMPARE(task->getTaskItem().size(), 1);
    QCOMPARE(tab.m_pcTable->rowCount(), 1);
}

void tstEditing::addingWithoutASourceSaysSoAndOpensTheWindow()
{
    auto task = makeSourcelessTask();
    const Tab tab(*task);
    QAction* probe = probeEntry(tab);
    const BoxAnswer answer;

    probe->trigger();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("No datasource assigned.")});
    QCOMPARE(answer.m_lstTitles, QStringList{QStringLiteral("Warning")});
    QCOMPARE(answer.m_lstIcons.first(), QMessageBox::Information);
    QCOMPARE(answer.m_lstButtons.first(), QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(Probes::configWindows(), 1);
    QCOMPARE(task->getTaskItem().size(), 1);
}

void tstEditing::insertingAtTheFrontWithoutASourceSaysNothing()
{
    auto task = makeSourcelessTask(steps("ab"));
    const Tab tab(*task);
    QAction* probe = probeEntry(tab);
    const BoxAnswer answer;

    selectRow(tab, 0);
    probe->trigger();
    QCOMPARE(answer.m_lstTexts, QStringList());

    selectRow(tab, 1);
    probe->trigger();
    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("No datasource assigned.")});
    QCOMPARE(task->getTaskItem().size(), 4);
}

void tstEditing::modifyingTheFirstStepWithoutASourceSaysNothing()
{
    auto task = makeSourcelessTask(steps("ab"));
    const Tab tab(*task);
    const BoxAnswer answer;

    selectRow(tab, 0);
    task->modifyOption();
    QCOMPARE(answer.m_lstTexts, QStringList());

    selectRow(tab, 1);
    task->modifyOption();
    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("No datasource assigned.")});
    QCOMPARE(options(*task), QStringList({QStringLiteral("new|"), QStringLiteral("new|")}));
}

void tstEditing::failingPreparationIsShownAndTheWindowOpens()
{
    auto task = makeTask({missingStep()});
    const Tab tab(*task);
    QAction* probe = probeEntry(tab);
    const BoxAnswer answer;

    probe->trigger();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("Arithm\"缺\"is not existed.")});
    QCOMPARE(Probes::configWindows(), 1);
    QCOMPARE(task->getTaskItem().size(), 2);
}

void tstEditing::unknownEntryIsNotFinded()
{
    auto task = makeTask(steps("a"));
    const Tab tab(*task);
    QAction stranger;
    const BoxAnswer answer;

    task->addArithm(&stranger);
    task->insertArithm(0, &stranger);

    QCOMPARE(answer.m_lstTexts,
             QStringList({QStringLiteral("Arithm is not finded."), QStringLiteral("Arithm is not finded.")}));
    QCOMPARE(answer.m_lstTitles.first(), QStringLiteral("Warning"));
    QCOMPARE(task->getTaskItem().size(), 1);
    QCOMPARE(Probes::trace(), QString());
}

void tstEditing::storeIsCleanedBeforeThePreparation()
{
    auto task = makeTask({});
    const Tab tab(*task);
    task->getArithmParamMgr()->getParamStrings(77);

    probeEntry(tab)->trigger();

    QVERIFY(!task->getArithmParamMgr()->findParamStrings(77));
    QVERIFY(task->getArithmParamMgr()->findParamDIB(1));
}

void tstEditing::preparationLeavesTheCountersAtZeroAndShowsTimes()
{
    auto task = makeTask({step("a", "", 1)});
    const Tab tab(*task);

    probeEntry(tab)->trigger();

    QCOMPARE(task->getTaskItem().first().m_nExeTimes, 0);
    QVERIFY(!tab.cell(0, 2).isEmpty());
    QCOMPARE(tab.cell(1, 2), QString());
}

void tstEditing::modifyingReplacesTheOption()
{
    auto task = makeTask(steps("abc"));
    const Tab tab(*task);
    selectRow(tab, 1);

    entry(openedMenu(tab), QStringLiteral("修改配置"))->trigger();

    QCOMPARE(options(*task), QStringList({QStringLiteral("a|"), QStringLiteral("new|"), QStringLiteral("c|")}));
    QCOMPARE(Probes::traceAtConfig(), QStringLiteral("a"));
    QCOMPARE(Probes::configOption(), QStringLiteral("b|"));
}

void tstEditing::cancelledModificationChangesNothing()
{
    Probes::reset("");
    auto task = makeTask(steps("ab"));
    const Tab tab(*task);
    selectRow(tab, 0);

    task->modifyOption();

    QCOMPARE(Probes::configWindows(), 1);
    QCOMPARE(options(*task), QStringList({QStringLiteral("a|"), QStringLiteral("b|")}));
    QCOMPARE(Probes::trace(), QString());
    QCOMPARE(Probes::sourceCalls("requestPicture"), 1);
}

void tstEditing::modifyingNeedsASelection()
{
    auto task = makeTask(steps("a"));
    const Tab tab(*task);
    const BoxAnswer answer;

    task->modifyOption();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("No arithm have been selected.")});
    QCOMPARE(Probes::configWindows(), 0);
}

void tstEditing::modifyingARowWithoutAStepIsASeriousError()
{
    auto task = makeTask(steps("a"));
    const Tab tab(*task);
    TaskInfo::appendRow(tab.m_pcTable, step("stray"));
    selectRow(tab, 1);
    const BoxAnswer answer;

    task->modifyOption();

    QCOMPARE(answer.m_lstTexts,
             QStringList{QStringLiteral(
                 "Serious error, arithm num is not equal with arithm list，please reconfig this task.")});
    QCOMPARE(Probes::trace(), QString());
}

void tstEditing::modifyingAStepOfAMissingAlgorithmIsRefused()
{
    auto task = makeTask({missingStep()});
    const Tab tab(*task);
    selectRow(tab, 0);
    const BoxAnswer answer;

    task->modifyOption();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("No arithm have been selected, please delete it.")});
}

void tstEditing::deletingAsksFirst()
{
    auto task = makeTask(steps("ab"));
    const Tab tab(*task);
    selectRow(tab, 0);
    const BoxAnswer answer(QMessageBox::No);

    task->delArithm();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("Would you like to delete the arithm? It can not be recover "
                                                           "after delete.")});
    QCOMPARE(answer.m_lstTitles, QStringList{QStringLiteral("Warning")});
    QCOMPARE(answer.m_lstButtons.first(), QMessageBox::StandardButtons(QMessageBox::Yes | QMessageBox::No));
    QCOMPARE(answer.m_lstDefaults.first(), QMessageBox::No);
    QCOMPARE(task->getTaskItem().size(), 2);
    QCOMPARE(tab.m_pcTable->rowCount(), 2);
}

void tstEditing::deletingRemovesStepAndRow()
{
    auto task = makeTask(steps("abc"));
    const Tab tab(*task);
    tab.m_pcTable->item(1, 0)->setText(QStringLiteral("second"));
    selectRow(tab, 1);
    const BoxAnswer answer(QMessageBox::Yes);

    entry(openedMenu(tab), QStringLiteral("删除"))->trigger();

    QCOMPARE(options(*task), QStringList({QStringLiteral("a|"), QStringLiteral("c|")}));
    QCOMPARE(tab.m_pcTable->rowCount(), 2);
    QCOMPARE(tab.cell(0, 0), QStringLiteral("Probe"));
    QCOMPARE(tab.cell(1, 0), QStringLiteral("Probe"));
}

void tstEditing::deletingReachesTheFirstAndTheLastStep()
{
    auto task = makeTask(steps("abc"));
    const Tab tab(*task);
    const BoxAnswer answer(QMessageBox::Yes);

    selectRow(tab, 0);
    task->delArithm();
    QCOMPARE(options(*task), QStringList({QStringLiteral("b|"), QStringLiteral("c|")}));

    selectRow(tab, 1);
    task->delArithm();
    QCOMPARE(options(*task), QStringList{QStringLiteral("b|")});
    QCOMPARE(tab.m_pcTable->rowCount(), 1);
}

void tstEditing::deletingAnotherRowKeepsThePressedCell()
{
    auto task = makeTask(steps("abc"));
    const Tab tab(*task);
    QTableWidgetItem* pressed = tab.m_pcTable->item(2, 0);
    selectRow(tab, 2);
    task->TableItemClicked(pressed);
    selectRow(tab, 0);
    const BoxAnswer answer(QMessageBox::Yes);
    task->delArithm();
    selectRow(tab, 1);

    task->TableItemClicked(pressed);  // again: takes the selection back

    QVERIFY(tab.m_pcTable->selectedItems().isEmpty());
}

void tstEditing::deletingNeedsASelection()
{
    auto task = makeTask(steps("a"));
    const Tab tab(*task);
    const BoxAnswer answer;

    task->delArithm();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("No arithm have been selected.")});
    QCOMPARE(task->getTaskItem().size(), 1);
}

void tstEditing::deletingARowWithoutAStepDoesNothing()
{
    auto task = makeTask(steps("a"));
    const Tab tab(*task);
    TaskInfo::appendRow(tab.m_pcTable, step("stray"));
    selectRow(tab, 1);
    const BoxAnswer answer(QMessageBox::Yes);

    task->delArithm();

    QCOMPARE(answer.m_lstTexts.size(), 1);
    QCOMPARE(task->getTaskItem().size(), 1);
    QCOMPARE(tab.m_pcTable->rowCount(), 2);
}

void tstEditing::taskMayBeDeletedWhileABoxIsShown()
{
    using Command = void (*)(TaskInfo&, const Tab&);
    const QList<Command> commands = {
        [](TaskInfo& task, const Tab&) { task.runHere(); },
        [](TaskInfo& task, const Tab&) { task.modifyOption(); },
        [](TaskInfo& task, const Tab&) { task.delArithm(); },
        [](TaskInfo&, const Tab& tab) { probeEntry(tab)->trigger(); },
    };
    for (const Command command : commands) {
        auto* task = makeSourcelessTask(steps("ab")).release();
        const QPointer<TaskInfo> watched(task);
        const Tab tab(*task);
        selectRow(tab, 1);
        QTimer deleter;
        connect(&deleter, &QTimer::timeout, this, [&watched] {
            if (QApplication::activeModalWidget() && watched)
                delete watched.data();
        });
        deleter.start(1);
        QTimer closer;
        connect(&closer, &QTimer::timeout, this, [&watched] {
            if (!watched && QApplication::activeModalWidget())
                QApplication::activeModalWidget()->close();
        });
        closer.start(5);

        command(*task, tab);

        QVERIFY(!watched);
        QCOMPARE(Probes::configWindows(), 0);
    }
}

void tstEditing::taskMayBeDeletedWhileItsSourceIsChosen()
{
    QPointer<TaskInfo> task = makeTask({}).release();
    QTimer user;
    connect(&user, &QTimer::timeout, this, [&task] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            delete task;
            dialog->reject();
        }
    });
    user.start(5);

    task->DataSourceClicked();

    QVERIFY(!task);
}

void tstEditing::textWithoutASourceKeepsTheOneThatIsThere()
{
    auto task = makeTask({});
    const auto* instance = task->getDataSourceInstance();
    QVERIFY(instance);

    task->fromString(QStringLiteral("<-Kernel->1</-Kernel-><-View->0</-View->"));

    QCOMPARE(task->getDataSourceInstance(), instance);
    QCOMPARE(task->getDataSourceConfig(), QString());
}

QTEST_MAIN(tstEditing)
#include "tstEditing.moc"
