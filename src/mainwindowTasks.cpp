// The task commands of the main window: tabs, add, delete, start and stop all.
#include "mainwindow.h"

#include "dlgNameInput.h"
#include "forms/wholeTextTip.h"
#include "taskMgr/taskMgr.h"
#include "ui_mainwindow.h"
#include "view/viewForm.h"
#include "windowMessages.h"

#include <QComboBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <array>

namespace {

constexpr int HeaderPixelSize = 12;  // Two Chinese characters fit into the narrow columns.

QComboBox* makeThreadCombo(int processorNum)
{
    auto* const combo = new QComboBox;
    combo->addItem(WindowMessages::autoThread());
    for (int number = 0; number < processorNum; ++number)
        combo->addItem(WindowMessages::boundThread(number));
    return combo;
}

QComboBox* makeViewCombo()
{
    auto* const combo = new QComboBox;
    for (int number = 1; number <= ViewForm::ViewNum; ++number)
        combo->addItem(WindowMessages::view(number));
    return combo;
}

QTableWidget* makeFlowTable()
{
    constexpr std::array<int, 3> ColumnWidths{150, 35, 35};
    constexpr int NarrowestColumn = 20;
    auto* const table = new QTableWidget(0, static_cast<int>(ColumnWidths.size()));
    table->setHorizontalHeaderLabels(
        {WindowMessages::columnName(), WindowMessages::columnCount(), WindowMessages::columnTime()});
    table->setToolTip(WindowMessages::tableTip());
    table->setItemDelegate(new WholeTextTip(table));

    QHeaderView* const header = table->horizontalHeader();
    QFont font = header->font();
    font.setPixelSize(HeaderPixelSize);
    header->setFont(font);
    header->setMinimumSectionSize(NarrowestColumn);
    for (int column = 0; column < table->columnCount(); ++column)
        table->setColumnWidth(column, ColumnWidths[static_cast<size_t>(column)]);
    return table;
}

/// Calls a function with every task that the walk over the ids 0 to the number of tasks meets.
template <typename Function>
void forEachTask(Function function)
{
    TaskMgr* const tasks = TaskMgr::getInstance();
    for (int id = 0; id < tasks->getTaskNum(); ++id) {
        if (TaskInfo* const task = tasks->getTask(id))
            function(*task);
    }
}

}  // namespace

/// Builds the tab of a task, shows its steps in it and hands the widgets to the task; returns the tab's index.
int MainWindow::addTaskTab(TaskInfo* task)
{
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    auto* const run = new QPushButton(WindowMessages::runTask());
    QComboBox* const threads = makeThreadCombo(s_nProcessorNum);
    QComboBox* const views = makeViewCombo();
    auto* const source = new QPushButton(WindowMessages::dataSource());
    QTableWidget* const table = makeFlowTable();
    for (QWidget* const widget : std::initializer_list<QWidget*>{run, threads, views, source, table})
        layout->addWidget(widget);
    // Before the events are connected: filling the table is no edit.
    for (const TaskItem& item : qAsConst(task->getTaskItem()))
        TaskInfo::appendRow(table, item);

    const int index = m_pcUi->tabWidget->addTab(page, task->getName());
    m_pcUi->tabWidget->setTabToolTip(index, task->getName());
    task->addRunTaskButton(run);
    task->addSelectDataSourceButton(source);
    task->addTaskFlowListWidget(table);
    task->addThreadSelectCombo(threads);
    task->addViewSelectCombo(views);
    task->connectEvents();
    return index;
}

/// The widgets of tasks that live on die; the tasks know.
void MainWindow::clearTabs()
{
    while (m_pcUi->tabWidget->count() > 0) {
        QWidget* const page = m_pcUi->tabWidget->widget(0);
        m_pcUi->tabWidget->removeTab(0);
        page->deleteLater();
    }
}

void MainWindow::on_addProcess_triggered()
{
    dlgNameInput dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    auto* const task = new TaskInfo(dialog.getName(), HaveErrorMessage);
    const int index = addTaskTab(task);
    m_pcUi->tabWidget->setCurrentIndex(index);
    // Kept on purpose: ids are the tab indices of the moment, so one may meet the id of an older task.
    TaskMgr::getInstance()->addTask(task, index);
}

void MainWindow::on_delProcess_triggered()
{
    const int index = m_pcUi->tabWidget->currentIndex();
    if (index < 0 || !confirmed(WindowMessages::askDelete()))
        return;
    // Kept on purpose: the tab's index is taken for the task's id, although ids are never renumbered.
    QWidget* const page = m_pcUi->tabWidget->widget(index);
    TaskMgr::getInstance()->removeTask(index);
    m_pcUi->tabWidget->removeTab(index);
    page->deleteLater();
}

void MainWindow::on_btnStartAll_clicked()
{
    forEachTask([](TaskInfo& task) {
        if (!task.IsRunning())
            task.RunClicked();
    });
}

void MainWindow::on_btnStopAll_clicked()
{
    // Together they take one pass, not the sum of all, for which the window would not answer.
    QList<TaskInfo*> tasks;
    forEachTask([&tasks](TaskInfo& task) { tasks.append(&task); });
    TaskInfo::stopTasks(tasks);
}
