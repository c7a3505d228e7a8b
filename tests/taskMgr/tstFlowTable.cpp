#include "dialogDriver.h"
#include "saving/dlgSaveFile.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QtTest>

namespace {

/// A press of the mouse on a cell, as a user makes it.
void press(Tab& tab, int row, int column)
{
    if (!tab.m_cPage.isVisible()) {
        tab.m_cPage.resize(500, 400);
        tab.m_cPage.show();
    }
    const QRect cell = tab.m_pcTable->visualItemRect(tab.m_pcTable->item(row, column));
    QTest::mouseClick(tab.m_pcTable->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
}

}  // namespace

class tstFlowTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void editedDescriptionIsKept();
    void editedCountIsKept_data();
    void editedCountIsKept();
    void editsOfOtherCellsAreIgnored();
    void typedTextReachesTheStep();
    void pressingTheSameCellTwiceClearsTheSelection_data();
    void pressingTheSameCellTwiceClearsTheSelection();
    void stepIsAppendedAgainAfterTheSelectionIsCleared();
    void pressingAnotherCellMovesTheMemory();
    void removedRowIsForgotten();
    void cellWhereARemovedOneWasIsAnother();
    void runHereRunsUpToTheSelectedStep();
    void runHereNeedsASelection();
    void runHereShowsTheFailure();
    void sourceIsStoppedOnlyOnceTheFailureWasRead();
    void runHereShowsNoEmptyMessage();
    void runHereResetsTheCounters();
    void runHereWithoutASourceSaysSo();
    void preparationThatAStepStopsShowsNoEmptyMessage();
    void stepMayGoWhileTheFailureOfItsPreparationIsShown();
    void stepMayGoWhileItIsConfigured();
};

void tstFlowTable::initTestCase()
{
    Probes::install();
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstFlowTable::init()
{
    Probes::reset("new|");
    Reports::clear();
}

void tstFlowTable::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstFlowTable::editedDescriptionIsKept()
{
    auto task = makeTask(steps("ab"));
    const Tab tab(*task);

    tab.m_pcTable->item(1, 0)->setText(QStringLiteral("找区域"));

    QCOMPARE(task->getTaskItem().at(1).m_strDescribe, QStringLiteral("找区域"));
    QVERIFY(task->getTaskItem().at(0).m_strDescribe.isEmpty());
}

void tstFlowTable::editedCountIsKept_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("count");

    QTest::newRow("number") << "3" << 3;
    QTest::newRow("no limit") << "-1" << -1;
    QTest::newRow("nine nines make an end-of-task step") << "999999999" << 999999999;
    QTest::newRow("letters change nothing") << "abc" << 7;
    QTest::newRow("nothing changes nothing") << "" << 7;
    QTest::newRow("too large changes nothing") << "9999999999" << 7;
    QTest::newRow("hexadecimal changes nothing") << "0x10" << 7;
}

void tstFlowTable::editedCountIsKept()
{
    QFETCH(QString, text);
    QFETCH(int, count);
    auto task = makeTask({step("a", "", 7)});
    const Tab tab(*task);

    tab.m_pcTable->item(0, 1)->setText(text);

    QCOMPARE(task->getTaskItem().first().m_nMaxExeTimes, count);
    QCOMPARE(task->getTaskItem().first().runsAtTaskEnd(), count == 999999999);
    QCOMPARE(tab.cell(0, 1), text);
}

void tstFlowTable::editsOfOtherCellsAreIgnored()
{
    auto task = makeTask({step("a", "", 7)});
    const Tab tab(*task);
    TaskInfo::appendRow(tab.m_pcTable, step("stray"));

    tab.m_pcTable->item(0, 2)->setText(QStringLiteral("5"));
    tab.m_pcTable->item(1, 0)->setText(QStringLiteral("x"));
    tab.m_pcTable->item(1, 1)->setText(QStringLiteral("5"));
    task->TaskFlowTblCellChanged(-1, 0);
    task->TaskFlowTblCellChanged(0, 9);

    QCOMPARE(task->getTaskItem().size(), 1);
    QCOMPARE(task->getTaskItem().first().m_nMaxExeTimes, 7);
    QVERIFY(task->getTaskItem().first().m_strDescribe.isEmpty());
}

void tstFlowTable::typedTextReachesTheStep()
{
    auto task = makeTask(steps("a"));
    Tab tab(*task);
    tab.m_cPage.show();
    QVERIFY(QTest::qWaitForWindowActive(&tab.m_cPage));

    tab.m_pcTable->editItem(tab.m_pcTable->item(0, 1));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("12"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);

    QTRY_COMPARE(task->getTaskItem().first().m_nMaxExeTimes, 12);
}

void tstFlowTable::pressingTheSameCellTwiceClearsTheSelection_data()
{
    QTest::addColumn<int>("column");

    QTest::newRow("name") << 0;
    QTest::newRow("count") << 1;
    QTest::newRow("time") << 2;
}

void tstFlowTable::pressingTheSameCellTwiceClearsTheSelection()
{
    QFETCH(int, column);
    auto task = makeTask(steps("abc"));
    Tab tab(*task);
    const QTableWidgetItem* cell = tab.m_pcTable->item(1, column);

    press(tab, 1, column);
    QVERIFY(cell->isSelected());
    press(tab, 1, column);
    QVERIFY(tab.m_pcTable->selectedItems().isEmpty());
    press(tab, 1, column);
    QVERIFY(cell->isSelected());
}

void tstFlowTable::stepIsAppendedAgainAfterTheSelectionIsCleared()
{
    auto task = makeTask(steps("ab"));
    Tab tab(*task);
    const QMenu* plain = subMenu(openedMenu(tab), QStringLiteral("添加算法"));
    QAction* probe = entry(subMenu(plain, QStringLiteral("Test")), QStringLiteral("Probe"));

    press(tab, 1, 1);
    probe->trigger();
    QCOMPARE(task->getTaskItem().at(1).m_strOption, QStringLiteral("new|"));
    press(tab, 2, 1);  // The selected cell, one row further down now.
    probe->trigger();

    QCOMPARE(task->getTaskItem().size(), 4);
    QCOMPARE(task->getTaskItem().at(2).m_strOption, QStringLiteral("b|"));
    QCOMPARE(task->getTaskItem().at(3).m_strOption, QStringLiteral("new|"));
}

void tstFlowTable::pressingAnotherCellMovesTheMemory()
{
    auto task = makeTask(steps("abc"));
    Tab tab(*task);

    press(tab, 1, 0);
    press(tab, 2, 0);
    QCOMPARE(tab.m_pcTable->selectedItems().first()->row(), 2);
    press(tab, 1, 0);
    QCOMPARE(tab.m_pcTable->selectedItems().first()->row(), 1);
    press(tab, 1, 0);
    QVERIFY(tab.m_pcTable->selectedItems().isEmpty());
}

void tstFlowTable::removedRowIsForgotten()
{
    auto task = makeTask(steps("abc"));
    Tab tab(*task);
    press(tab, 1, 0);
    const BoxAnswer answer(QMessageBox::Yes);
    task->delArithm();
    tab.m_pcTable->clearSelection();

    for (int row = 0; row < 2; ++row) {
        press(tab, row, 0);
        QVERIFY(tab.m_pcTable->item(row, 0)->isSelected());
    }
}

void tstFlowTable::cellWhereARemovedOneWasIsAnother()
{
    auto task = makeTask(steps("abc"));
    Tab tab(*task);
    const QTableWidgetItem* gone = tab.m_pcTable->item(1, 0);
    press(tab, 1, 0);
    const BoxAnswer answer(QMessageBox::Yes);
    task->delArithm();

    // A new cell soon gets the memory of the old one, where the allocator does not hold it back.
    bool met = false;
    for (int row = 2; row < 20; ++row) {
        TaskInfo::appendRow(tab.m_pcTable, step("new"));
        for (int column = 0; column < 3; ++column) {
            QTableWidgetItem* cell = tab.m_pcTable->item(row, column);
            if (cell != gone)
                continue;
            met = true;
            tab.m_pcTable->setCurrentItem(cell);
            task->TableItemClicked(cell);
            QVERIFY(cell->isSelected());
        }
    }
    if (!met)
        QSKIP("No new cell lies where the old one was.");
}

void tstFlowTable::runHereRunsUpToTheSelectedStep()
{
    auto task = makeTask(steps("abcde"), QStringLiteral("needsStart=1"));
    const Tab tab(*task);
    selectRow(tab, 2);
    const BoxAnswer answer;

    entry(openedMenu(tab), QStringLiteral("执行到选中算法"))->trigger();

    QCOMPARE(Probes::trace(), QStringLiteral("a,b,c"));
    QVERIFY(!tab.cell(2, 2).isEmpty());
    QCOMPARE(tab.cell(3, 2), QString());
    QCOMPARE(Probes::sourceCalls("start"), 1);
    QCOMPARE(Probes::sourceCalls("stop"), 1);
    QCOMPARE(Probes::sourceCalls("requestPicture"), 1);
    QCOMPARE(answer.m_lstTexts, QStringList());
}

void tstFlowTable::runHereNeedsASelection()
{
    auto task = makeTask(steps("a"));
    const Tab tab(*task);
    const BoxAnswer answer;

    task->runHere();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("No arithm is selected.")});
    QCOMPARE(answer.m_lstTitles, QStringList{QStringLiteral("Warning")});
    QCOMPARE(answer.m_lstButtons.first(), QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(Probes::sourceCalls("start"), 0);
}

void tstFlowTable::runHereShowsTheFailure()
{
    auto task = makeTask({step("a", "oops!"), step("b")});
    const Tab tab(*task);
    selectRow(tab, 1);
    const BoxAnswer answer;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("oops!")));

    task->runHere();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("算法\"Probe\"出错, 错误信息:oops!")});
    QCOMPARE(answer.m_lstTitles, QStringList{QStringLiteral("Warning")});
    QCOMPARE(Probes::sourceCalls("stop"), 1);
    QCOMPARE(Reports::messages(), QStringList());
}

void tstFlowTable::sourceIsStoppedOnlyOnceTheFailureWasRead()
{
    auto task = makeTask({missingStep(), step("b")});
    const Tab tab(*task);
    selectRow(tab, 1);
    int stops = 0;
    for (const auto command : {&TaskInfo::runHere, &TaskInfo::modifyOption}) {
        int stopsAtBox = -1;
        const DialogDriver::WhenModal<QMessageBox> user([&stopsAtBox](QMessageBox& box) {
            stopsAtBox = Probes::sourceCalls("stop");
            box.button(QMessageBox::Ok)->click();
        });

        (task.get()->*command)();

        QCOMPARE(stopsAtBox, stops);
        QCOMPARE(Probes::sourceCalls("stop"), ++stops);
    }
}

void tstFlowTable::runHereShowsNoEmptyMessage()
{
    auto task = makeTask({step("a", "<CMD>stop:enough</CMD>")});
    const Tab tab(*task);
    selectRow(tab, 0);
    const BoxAnswer answer;

    task->runHere();

    QCOMPARE(answer.m_lstTexts, QStringList());
    QCOMPARE(Reports::prints(), QStringList{QStringLiteral("enough")});
}

void tstFlowTable::runHereResetsTheCounters()
{
    auto task = makeTask({step("a", "", 1)});
    const Tab tab(*task);
    selectRow(tab, 0);

    task->runHere();
    task->runHere();

    QCOMPARE(Probes::trace(), QStringLiteral("a,a"));
    QCOMPARE(task->getTaskItem().first().m_nExeTimes, 0);
}

void tstFlowTable::runHereWithoutASourceSaysSo()
{
    auto task = makeSourcelessTask(steps("a"));
    const Tab tab(*task);
    selectRow(tab, 0);
    const BoxAnswer answer;

    task->runHere();

    QCOMPARE(answer.m_lstTexts, QStringList{QStringLiteral("No datasource assigned.")});
    QCOMPARE(Probes::trace(), QString());
}

void tstFlowTable::preparationThatAStepStopsShowsNoEmptyMessage()
{
    auto task = makeTask({step("a", "<CMD>stop:enough</CMD>"), step("b")});
    const Tab tab(*task);
    selectRow(tab, 1);
    const BoxAnswer answer;

    task->modifyOption();

    QCOMPARE(answer.m_lstTexts, QStringList());
    QCOMPARE(Probes::configWindows(), 1);
    QCOMPARE(task->getTaskItem().at(1).m_strOption, QStringLiteral("new|"));
}

void tstFlowTable::stepMayGoWhileTheFailureOfItsPreparationIsShown()
{
    auto task = makeSourcelessTask(steps("ab"));
    const Tab tab(*task);
    selectRow(tab, 1);
    const DialogDriver::WhenModal<QMessageBox> user([&task](QMessageBox& box) {
        task->getTaskItem().removeLast();
        box.button(QMessageBox::Ok)->click();
    });

    task->modifyOption();

    QCOMPARE(Probes::configWindows(), 0);
    QCOMPARE(task->getTaskItem().size(), 1);
}

void tstFlowTable::stepMayGoWhileItIsConfigured()
{
    TaskItem saving;
    saving.m_strArithmID = QStringLiteral("KW_Saving");
    auto task = makeTask({step("a"), saving});
    const Tab tab(*task);
    selectRow(tab, 1);
    const DialogDriver::WhenModal<DlgSaveFile> user([&task](DlgSaveFile& dialog) {
        task->getTaskItem().removeLast();
        dialog.findChild<QLineEdit*>(QStringLiteral("edtBasePath"))->setText(QStringLiteral("/tmp"));
        dialog.on_btnOK_clicked();
    });

    task->modifyOption();

    QCOMPARE(task->getTaskItem().size(), 1);
    QCOMPARE(task->getTaskItem().first().m_strOption, QStringLiteral("a|"));
}

QTEST_MAIN(tstFlowTable)
#include "tstFlowTable.moc"
