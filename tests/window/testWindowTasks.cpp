#include "globalFunction.h"
#include "windowFixture.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QMenu>
#include <QSplitter>
#include <QStyle>
#include <QToolTip>
#include <QVBoxLayout>

#include <unistd.h>

/// The task commands: tabs, add, delete, start and stop, and what errors of tasks show.
class TestWindowTasks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void addedTaskGetsATabWithItsWidgetsInOrder();
    void threadComboHasOneEntryForEachConfiguredProcessor();
    void flowTableHasItsHeadersWidthsAndTip();
    void tabsTakeTheirWidthAndTheViewsTheRest();
    void narrowColumnsCanBeMadeNarrower();
    void headersFitIntoTheirColumns();
    void countThatIsCutOffIsShownWholeInATip();
    void menuOfExtensionAlgorithmsIsDisabledWhileThereIsNone();
    void addedTabBecomesCurrentAndItsIndexTheId();
    void emptyNameIsAllowed();
    void cancelledNameAddsNothing();
    void combosSteerTheTask();
    void deleteWithoutATabAsksNothing();
    void deleteAnsweredNoKeepsTheTask();
    void deleteAnsweredYesRemovesTaskAndTab();
    void deletingTheMiddleOfThreeLeavesTheIdsZeroAndTwo();
    void replacedTaskGoesOnAndItsTabWorksKeptOnPurpose();
    void deletingAShiftedTabLeavesItsTaskRunningKeptOnPurpose();
    void startAllAndStopAllWalkTheIdsBelowTheNumberKeptOnPurpose();
    void startAllLeavesRunningTasksAlone();
    void functionKeysStartAndStopAll();
    void taskWithoutSourceShowsOneBox();
    void boxesOfManyTasksFollowOneAnotherAndNoneIsLost();
    void messageComesInAnAboutBox();
    void markupInAMessageIsShownAsItIs();
    void viewsTakeOptionsBeforeTheyAreShown();
    void destroyingTheWindowStopsRunningTasks();

private:
    void openThreeRunnable(const WindowFixture& fixture);

    std::unique_ptr<QTemporaryDir> m_pcFolder;
};

namespace {

int threadNum()
{
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

/// What comes up while the mouse rests on a cell.
QString tipOver(QTableWidget& table, int row, int column)
{
    const QPoint place = table.visualItemRect(table.item(row, column)).center();
    QHelpEvent help(QEvent::ToolTip, place, table.viewport()->mapToGlobal(place));
    QApplication::sendEvent(table.viewport(), &help);
    return QToolTip::text();
}

const QString Start = QStringLiteral("执行任务");
const QString Stop = QStringLiteral("停止任务");

}  // namespace

void TestWindowTasks::init()
{
    m_pcFolder = std::make_unique<QTemporaryDir>();
}

void TestWindowTasks::openThreeRunnable(const WindowFixture& fixture)
{
    const QString path = m_pcFolder->filePath(QStringLiteral("three.lmv"));
    writeFile(path, taskOnDisk("a", 0) + taskOnDisk("b", 1) + taskOnDisk("c", 2));
    QVERIFY(fixture.open(path));
    QCOMPARE(fixture.tabs()->count(), 3);
}

void TestWindowTasks::addedTaskGetsATabWithItsWidgetsInOrder()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("检测")));

    QCOMPARE(fixture.tabs()->count(), 1);
    QCOMPARE(fixture.tabs()->tabText(0), QStringLiteral("检测"));
    QCOMPARE(fixture.tabs()->tabToolTip(0), QStringLiteral("检测"));
    auto* const layout = qobject_cast<QVBoxLayout*>(fixture.tabs()->widget(0)->layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->count(), 5);
    const auto* const run = qobject_cast<QPushButton*>(layout->itemAt(0)->widget());
    const auto* const threads = qobject_cast<QComboBox*>(layout->itemAt(1)->widget());
    const auto* const views = qobject_cast<QComboBox*>(layout->itemAt(2)->widget());
    const auto* const source = qobject_cast<QPushButton*>(layout->itemAt(3)->widget());
    QVERIFY(run != nullptr && threads != nullptr && views != nullptr && source != nullptr);
    QVERIFY(qobject_cast<QTableWidget*>(layout->itemAt(4)->widget()) != nullptr);
    QCOMPARE(run->text(), Start);
    QCOMPARE(source->text(), QStringLiteral("图片来源"));
    QStringList texts;
    for (int i = 0; i < views->count(); ++i)
        texts.append(views->itemText(i));
    QCOMPARE(texts, QStringList({"视窗1", "视窗2", "视窗3", "视窗4"}));
    QCOMPARE(threads->itemText(0), QStringLiteral("自动线程"));
}

void TestWindowTasks::threadComboHasOneEntryForEachConfiguredProcessor()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    const auto* const threads = fixture.tabs()->widget(0)->findChildren<QComboBox*>().at(0);
    const int processors =
        QDir(QStringLiteral("/sys/devices/system/cpu")).entryList({QStringLiteral("cpu[0-9]*")}, QDir::Dirs).size();
    if (processors > 0)
        QCOMPARE(threads->count(), 1 + processors);
    QVERIFY(threads->count() >= 2);
    for (int i = 1; i < threads->count(); ++i)
        QCOMPARE(threads->itemText(i), QStringLiteral("绑定线程%1").arg(i - 1));
}

void TestWindowTasks::flowTableHasItsHeadersWidthsAndTip()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    const QTableWidget* const table = fixture.table(0);
    QCOMPARE(table->columnCount(), 3);
    QCOMPARE(table->rowCount(), 0);
    QCOMPARE(table->horizontalHeaderItem(0)->text(), QStringLiteral("功能名称"));
    QCOMPARE(table->horizontalHeaderItem(1)->text(), QStringLiteral("次数"));
    QCOMPARE(table->horizontalHeaderItem(2)->text(), QStringLiteral("耗时"));
    QCOMPARE(table->columnWidth(0), 150);
    QCOMPARE(table->columnWidth(1), 35);
    QCOMPARE(table->columnWidth(2), 35);
    QCOMPARE(table->toolTip(), QStringLiteral("次数999999999(9个9)表示任务结束时才执行的算法"));
}

void TestWindowTasks::tabsTakeTheirWidthAndTheViewsTheRest()
{
    const WindowFixture fixture;
    const auto* const splitter = fixture.child<QSplitter>("splitter");
    QCOMPARE(splitter->sizes().at(0), 316);
    fixture.m_pcWindow->resize(fixture.m_pcWindow->width() + 300, fixture.m_pcWindow->height());
    QCoreApplication::processEvents();
    QCOMPARE(splitter->sizes().at(0), 316);
}

void TestWindowTasks::narrowColumnsCanBeMadeNarrower()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    const QHeaderView* const header = fixture.table(0)->horizontalHeader();
    const QPoint edge(header->sectionViewportPosition(1) + 34, header->height() / 2);
    const auto drag = [header](QEvent::Type type, QPoint place) {
        QMouseEvent event(type, place, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(header->viewport(), &event);
    };
    drag(QEvent::MouseButtonPress, edge);
    drag(QEvent::MouseMove, edge - QPoint(10, 0));
    drag(QEvent::MouseButtonRelease, edge - QPoint(10, 0));
    QCOMPARE(header->sectionSize(1), 25);
}

void TestWindowTasks::headersFitIntoTheirColumns()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    const QTableWidget* const table = fixture.table(0);
    const QHeaderView* const header = table->horizontalHeader();
    const int margin = header->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
    for (int column = 0; column < 3; ++column) {
        const QString text = table->horizontalHeaderItem(column)->text();
        QVERIFY(header->fontMetrics().horizontalAdvance(text) + 2 * margin <= table->columnWidth(column));
    }
}

void TestWindowTasks::countThatIsCutOffIsShownWholeInATip()
{
    const WindowFixture fixture;
    const QString path = m_pcFolder->filePath(QStringLiteral("counts.lmv"));
    writeFile(path, taskWithoutSource("a", stepOf("Id", "一", "999999999") + stepOf("Id", "二", "3")));
    QVERIFY(fixture.open(path));
    QTableWidget* const table = fixture.table(0);

    QCOMPARE(tipOver(*table, 0, 1), QStringLiteral("999999999"));
    QCOMPARE(tipOver(*table, 1, 1), QStringLiteral("次数999999999(9个9)表示任务结束时才执行的算法"));
    QCOMPARE(tipOver(*table, 0, 0), QStringLiteral("一"));
    QCOMPARE(table->columnWidth(1), 35);
}

void TestWindowTasks::menuOfExtensionAlgorithmsIsDisabledWhileThereIsNone()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    Q_EMIT fixture.table(0)->customContextMenuRequested(QPoint(5, 5));
    auto* const menu = fixture.table(0)->findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(menu != nullptr);
    const QList<QAction*> actions = menu->actions();

    QCOMPARE(actions.at(0)->text(), QStringLiteral("添加算法"));
    QVERIFY(actions.at(0)->isEnabled());
    QCOMPARE(actions.at(1)->text(), QStringLiteral("添加扩展算法"));
    QVERIFY(!actions.at(1)->isEnabled());
    menu->close();
}

void TestWindowTasks::addedTabBecomesCurrentAndItsIndexTheId()
{
    const WindowFixture fixture;
    for (int i = 0; i < 3; ++i) {
        QVERIFY(fixture.addTask(QStringLiteral("task%1").arg(i)));
        QCOMPARE(fixture.tabs()->currentIndex(), i);
        QCOMPARE(TaskMgr::getInstance()->getTask(i)->getName(), QStringLiteral("task%1").arg(i));
    }
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 3);
}

void TestWindowTasks::emptyNameIsAllowed()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QString()));
    QCOMPARE(fixture.tabs()->count(), 1);
    QCOMPARE(fixture.tabs()->tabText(0), QString());
    QCOMPARE(TaskMgr::getInstance()->getTask(0)->getName(), QString());
}

void TestWindowTasks::cancelledNameAddsNothing()
{
    const WindowFixture fixture;
    ModalDriver driver;
    driver.name(QStringLiteral("a"), "btnCancel");
    fixture.trigger("addProcess");
    QVERIFY(driver.done());
    QCOMPARE(fixture.tabs()->count(), 0);
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 0);
}

void TestWindowTasks::combosSteerTheTask()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    const auto combos = fixture.tabs()->widget(0)->findChildren<QComboBox*>();
    combos.at(0)->setCurrentIndex(1);
    combos.at(1)->setCurrentIndex(2);
    QCOMPARE(TaskMgr::getInstance()->getTask(0)->getKernel(), 1);
    QCOMPARE(TaskMgr::getInstance()->getTask(0)->getView(), 2);
}

void TestWindowTasks::deleteWithoutATabAsksNothing()
{
    const WindowFixture fixture;
    ModalDriver driver;
    fixture.trigger("delProcess");
    QVERIFY(driver.done());
}

void TestWindowTasks::deleteAnsweredNoKeepsTheTask()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    ModalDriver driver;
    driver.box(QMessageBox::No);
    fixture.trigger("delProcess");
    QVERIFY(driver.done());
    QVERIFY(driver.m_lstBoxes.at(0).asks(QStringLiteral("是否确定要删除当前显示的任务.")));
    QCOMPARE(fixture.tabs()->count(), 1);
    QVERIFY(TaskMgr::getInstance()->getTask(0) != nullptr);
}

void TestWindowTasks::deleteAnsweredYesRemovesTaskAndTab()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    const QPointer<TaskInfo> task = TaskMgr::getInstance()->getTask(0);
    const QPointer<QWidget> page = fixture.tabs()->widget(0);
    ModalDriver driver;
    driver.box(QMessageBox::Yes);
    fixture.trigger("delProcess");
    QVERIFY(driver.done());
    QVERIFY(task.isNull());
    QCOMPARE(fixture.tabs()->count(), 0);
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 0);
    QTRY_VERIFY(page.isNull());
}

void TestWindowTasks::deletingTheMiddleOfThreeLeavesTheIdsZeroAndTwo()
{
    const WindowFixture fixture;
    for (const char* const name : {"a", "b", "c"})
        QVERIFY(fixture.addTask(QString::fromLatin1(name)));
    TaskInfo* const third = TaskMgr::getInstance()->getTask(2);
    fixture.tabs()->setCurrentIndex(1);
    QVERIFY(fixture.deleteTask());

    QCOMPARE(fixture.tabs()->count(), 2);
    QCOMPARE(fixture.tabs()->tabText(0), QStringLiteral("a"));
    QCOMPARE(fixture.tabs()->tabText(1), QStringLiteral("c"));
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 2);
    QVERIFY(TaskMgr::getInstance()->getTask(0) != nullptr);
    QVERIFY(TaskMgr::getInstance()->getTask(1) == nullptr);
    QCOMPARE(TaskMgr::getInstance()->getTask(2), third);
}

void TestWindowTasks::replacedTaskGoesOnAndItsTabWorksKeptOnPurpose()
{
    const int threadsBefore = threadNum();
    WindowFixture fixture;
    openThreeRunnable(fixture);
    const QPointer<TaskInfo> third = TaskMgr::getInstance()->getTask(2);
    fixture.press("btnStartAll");
    QVERIFY(third->IsRunning());
    fixture.tabs()->setCurrentIndex(1);
    QVERIFY(fixture.deleteTask());

    QVERIFY(fixture.addTask(QStringLiteral("new")));

    QCOMPARE(fixture.tabs()->count(), 3);
    QCOMPARE(TaskMgr::getInstance()->getTask(2)->getName(), QStringLiteral("new"));
    QVERIFY(!third.isNull());
    QVERIFY(third->IsRunning());
    fixture.tabs()->setCurrentIndex(1);
    QCOMPARE(fixture.runButton(1)->text(), Stop);
    QTest::mouseClick(fixture.runButton(1), Qt::LeftButton);
    QCOMPARE(fixture.runButton(1)->text(), Start);
    QVERIFY(!third->IsRunning());
    QTest::mouseClick(fixture.runButton(1), Qt::LeftButton);
    QVERIFY(third->IsRunning());

    ModalDriver driver;
    driver.box(QMessageBox::Yes);
    QVERIFY(fixture.m_pcWindow->close());
    QVERIFY(driver.done());
    QVERIFY(third.isNull());
    QTRY_VERIFY(threadNum() <= threadsBefore + 1);  // The platform may have started one of its own.
}

void TestWindowTasks::deletingAShiftedTabLeavesItsTaskRunningKeptOnPurpose()
{
    const WindowFixture fixture;
    openThreeRunnable(fixture);
    const QPointer<TaskInfo> third = TaskMgr::getInstance()->getTask(2);
    third->startTask();
    fixture.tabs()->setCurrentIndex(1);
    QVERIFY(fixture.deleteTask());
    QCOMPARE(fixture.tabs()->tabText(1), QStringLiteral("c"));
    fixture.tabs()->setCurrentIndex(1);
    const QPointer<QWidget> page = fixture.tabs()->widget(1);

    QVERIFY(fixture.deleteTask());

    QCOMPARE(fixture.tabs()->count(), 1);
    QTRY_VERIFY(page.isNull());
    QVERIFY(!third.isNull());
    QVERIFY(third->IsRunning());
    third->stopTask();  // Its widgets are gone.
    QVERIFY(!third->IsRunning());
}

void TestWindowTasks::startAllAndStopAllWalkTheIdsBelowTheNumberKeptOnPurpose()
{
    const WindowFixture fixture;
    openThreeRunnable(fixture);
    fixture.tabs()->setCurrentIndex(0);
    QVERIFY(fixture.deleteTask());
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 2);

    fixture.press("btnStartAll");
    QVERIFY(TaskMgr::getInstance()->getTask(1)->IsRunning());
    QVERIFY(!TaskMgr::getInstance()->getTask(2)->IsRunning());

    TaskMgr::getInstance()->getTask(2)->startTask();
    fixture.press("btnStopAll");
    QVERIFY(!TaskMgr::getInstance()->getTask(1)->IsRunning());
    QVERIFY(TaskMgr::getInstance()->getTask(2)->IsRunning());
}

void TestWindowTasks::startAllLeavesRunningTasksAlone()
{
    const WindowFixture fixture;
    openThreeRunnable(fixture);
    QTest::mouseClick(fixture.runButton(0), Qt::LeftButton);
    QVERIFY(TaskMgr::getInstance()->getTask(0)->IsRunning());

    fixture.press("btnStartAll");
    for (int id = 0; id < 3; ++id) {
        QVERIFY(TaskMgr::getInstance()->getTask(id)->IsRunning());
        QCOMPARE(fixture.runButton(id)->text(), Stop);
    }
    fixture.press("btnStopAll");
    for (int id = 0; id < 3; ++id) {
        QVERIFY(!TaskMgr::getInstance()->getTask(id)->IsRunning());
        QCOMPARE(fixture.runButton(id)->text(), Start);
    }
}

void TestWindowTasks::functionKeysStartAndStopAll()
{
    const WindowFixture fixture;
    openThreeRunnable(fixture);
    QApplication::setActiveWindow(fixture.m_pcWindow.get());
    QTest::keyClick(fixture.m_pcWindow.get(), Qt::Key_F5);
    QTRY_VERIFY(TaskMgr::getInstance()->getTask(2)->IsRunning());
    QTest::keyClick(fixture.m_pcWindow.get(), Qt::Key_F5, Qt::ShiftModifier);
    QTRY_VERIFY(!TaskMgr::getInstance()->getTask(0)->IsRunning());
}

void TestWindowTasks::taskWithoutSourceShowsOneBox()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    ModalDriver driver;
    driver.box(QMessageBox::Ok);
    QTest::mouseClick(fixture.runButton(0), Qt::LeftButton);
    QTRY_COMPARE(driver.m_lstBoxes.size(), 1);
    QCOMPARE(driver.m_lstBoxes.at(0).m_strTitle, QStringLiteral("警告"));
    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, QStringLiteral("No datasource assigned."));
    QTRY_COMPARE(fixture.runButton(0)->text(), Start);
    QVERIFY(driver.done());
}

void TestWindowTasks::boxesOfManyTasksFollowOneAnotherAndNoneIsLost()
{
    constexpr int TaskNum = 6;
    const WindowFixture fixture;
    for (int i = 0; i < TaskNum; ++i)
        QVERIFY(fixture.addTask(QString::number(i)));
    ModalDriver driver;
    for (int i = 0; i < TaskNum; ++i) {
        // Open for a while, so that the other tasks end meanwhile.
        driver.dialog([&driver](QWidget* widget) {
            driver.m_lstBoxes.append(ModalDriver::Box());
            ModalDriver::press(qobject_cast<QMessageBox*>(widget)->button(QMessageBox::Ok), 150);
            return true;
        });
    }

    fixture.press("btnStartAll");

    QTRY_COMPARE(driver.m_lstBoxes.size(), TaskNum);
    QTRY_COMPARE(fixture.runButton(0)->text(), Start);
    QTRY_VERIFY(QApplication::activeModalWidget() == nullptr);
    for (int i = 0; i < TaskNum; ++i)
        QVERIFY(!TaskMgr::getInstance()->getTask(i)->IsRunning());
    QVERIFY(driver.done());
    QCOMPARE(driver.m_nMostBoxes, 1);
}

void TestWindowTasks::messageComesInAnAboutBox()
{
    const WindowFixture fixture;
    ModalDriver driver;
    driver.dialog([&driver](QWidget* widget) {
        auto* const box = qobject_cast<QMessageBox*>(widget);
        driver.m_lstBoxes.append({box->windowTitle(), box->text(), box->standardButtons(), QMessageBox::NoButton});
        ModalDriver::press(box->button(QMessageBox::Ok));
        // The program's own icon; an information or a warning has another.
        return box->icon() == QMessageBox::NoIcon && box->iconPixmap().size() == QSize(48, 48);
    });

    HaveErrorMessage(QStringLiteral("text"));

    QVERIFY(driver.done());
    QTRY_VERIFY(fixture.m_pcWindow->findChildren<QMessageBox*>().isEmpty());
    QCOMPARE(driver.m_lstBoxes.at(0).m_strTitle, QStringLiteral("警告"));
    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, QStringLiteral("text"));
    QCOMPARE(driver.m_lstBoxes.at(0).m_nButtons, QMessageBox::StandardButtons(QMessageBox::Ok));
}

void TestWindowTasks::markupInAMessageIsShownAsItIs()
{
    const WindowFixture fixture;
    ModalDriver driver;
    driver.dialog([&driver](QWidget* widget) {
        auto* const box = qobject_cast<QMessageBox*>(widget);
        driver.m_lstBoxes.append({box->windowTitle(), box->text(), box->standardButtons(), QMessageBox::NoButton});
        const bool plain = box->textFormat() == Qt::PlainText;
        ModalDriver::press(box->button(QMessageBox::Ok));
        return plain;
    });
    HaveErrorMessage(QStringLiteral("<CMD>stop</CMD>"));
    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstBoxes.at(0).m_strTitle, QStringLiteral("警告"));
    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, QStringLiteral("<CMD>stop</CMD>"));
}

void TestWindowTasks::viewsTakeOptionsBeforeTheyAreShown()
{
    GlobalFunction::getInstance()->removeView(3);
    const MainWindow window;
    QVERIFY(ViewRecord(3));
}

void TestWindowTasks::destroyingTheWindowStopsRunningTasks()
{
    QPointer<TaskInfo> task;
    {
        const WindowFixture fixture;
        openThreeRunnable(fixture);
        fixture.press("btnStartAll");
        task = TaskMgr::getInstance()->getTask(1);
        QVERIFY(task->IsRunning());
    }
    QVERIFY(task.isNull());
    QVERIFY(TaskMgr::s_pcInstance.load() == nullptr);
}

QTEST_MAIN(TestWindowTasks)
#include "testWindowTasks.moc"
