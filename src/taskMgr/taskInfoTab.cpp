#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMessages.h"

#include <QComboBox>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableWidget>

#include <limits>

namespace {

enum Column
{
    NameColumn,
    CountColumn,
    TimeColumn,
};

void setEnabled(QObject* widget, bool enabled)
{
    if (auto* w = qobject_cast<QWidget*>(widget))
        w->setEnabled(enabled);
}

void setText(QObject* button, const QString& text)
{
    if (auto* b = qobject_cast<QPushButton*>(button))
        b->setText(text);
}

void setIndex(QObject* combo, int index)
{
    if (auto* c = qobject_cast<QComboBox*>(combo))
        c->setCurrentIndex(index);
}

void insertRow(QTableWidget* table, int row, const TaskItem& item)
{
    const QSignalBlocker quiet(table);  // only the user's own edits are edits
    table->insertRow(row);
    auto* name = new QTableWidgetItem(item.m_strDescribe.isEmpty() ? item.m_strArithmName : item.m_strDescribe);
    name->setToolTip(item.m_strArithmName);
    auto* time = new QTableWidgetItem;
    time->setFlags(time->flags() & ~Qt::ItemIsEditable);
    table->setItem(row, NameColumn, name);
    table->setItem(row, CountColumn, new QTableWidgetItem(QString::number(item.m_nMaxExeTimes)));
    table->setItem(row, TimeColumn, time);
}

}  // namespace

void TaskInfo::addRunTaskButton(QObject* button)
{
    m_pcRunButton = button;
}

void TaskInfo::addSelectDataSourceButton(QObject* button)
{
    m_pcDataSourceButton = button;
}

void TaskInfo::addTaskFlowListWidget(QObject* table)
{
    m_pcFlowTable = table;
    m_pcSelectedItem = nullptr;
}

void TaskInfo::addViewSelectCombo(QObject* combo)
{
    m_pcViewCombo = combo;
    if (m_nView.load() >= 1)
        setIndex(combo, m_nView.load());
}

void TaskInfo::addThreadSelectCombo(QObject* combo)
{
    m_pcThreadCombo = combo;
    if (m_nKernel.load() >= 1)
        setIndex(combo, m_nKernel.load());
}

void TaskInfo::connectEvents()
{
    if (m_pcRunButton)
        connect(m_pcRunButton, SIGNAL(clicked()), this, SLOT(RunClicked()));
    if (m_pcViewCombo)
        connect(m_pcViewCombo, SIGNAL(currentIndexChanged(int)), this, SLOT(ViewSelected(int)));
    if (m_pcThreadCombo)
        connect(m_pcThreadCombo, SIGNAL(currentIndexChanged(int)), this, SLOT(ThreadSelected(int)));
    if (m_pcDataSourceButton)
        connect(m_pcDataSourceButton, SIGNAL(clicked()), this, SLOT(DataSourceClicked()));
    QTableWidget* table = flowTable();
    if (!table)
        return;
    table->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(showContextmenu(QPoint)));
    connect(table, SIGNAL(cellChanged(int, int)), this, SLOT(TaskFlowTblCellChanged(int, int)));
    connect(table, SIGNAL(itemPressed(QTableWidgetItem*)), this, SLOT(TableItemClicked(QTableWidgetItem*)));
}

// Kept on purpose: the thread combo and the table's cell and press signals stay connected until either side dies; the
// others let go of every receiver, not of this task alone.
void TaskInfo::disconnectEvents()
{
    if (m_pcRunButton)
        disconnect(m_pcRunButton, SIGNAL(clicked()), nullptr, nullptr);
    if (m_pcViewCombo)
        disconnect(m_pcViewCombo, SIGNAL(currentIndexChanged(int)), nullptr, nullptr);
    if (m_pcDataSourceButton)
        disconnect(m_pcDataSourceButton, SIGNAL(clicked()), nullptr, nullptr);
    if (m_pcFlowTable)
        disconnect(m_pcFlowTable, SIGNAL(customContextMenuRequested(QPoint)), nullptr, nullptr);
}

void TaskInfo::showRunning()
{
    setText(m_pcRunButton, TaskMessages::stopTask());
    for (QObject* widget :
         {m_pcDataSourceButton.data(), m_pcViewCombo.data(), m_pcThreadCombo.data(), m_pcFlowTable.data()})
        setEnabled(widget, false);
}

void TaskInfo::showIdle()
{
    setText(m_pcRunButton, TaskMessages::startTask());
    for (QObject* widget :
         {m_pcDataSourceButton.data(), m_pcViewCombo.data(), m_pcThreadCombo.data(), m_pcFlowTable.data()})
        setEnabled(widget, true);
}

void TaskInfo::showSelections()
{
    // A combo that lacks the entry reports another choice; both numbers are read before either combo can answer.
    const int kernel = m_nKernel.load();
    const int view = m_nView.load();
    setIndex(m_pcThreadCombo, kernel);
    setIndex(m_pcViewCombo, view);
}

void TaskInfo::appendRow(QTableWidget* table, const TaskItem& item)
{
    insertRow(table, table->rowCount(), item);
}

void TaskInfo::showAddedStep(int row)
{
    QTableWidget* table = flowTable();
    if (table)
        insertRow(table, qBound(0, row, table->rowCount()), m_lstItems.at(row));
}

void TaskInfo::showRemovedStep(int row)
{
    QTableWidget* table = flowTable();
    if (!table)
        return;
    for (int column = 0; column < table->columnCount(); ++column) {
        if (m_pcSelectedItem == table->item(row, column))
            m_pcSelectedItem = nullptr;
    }
    table->removeRow(row);
}

void TaskInfo::showStepTime(qint64 row, qint64 ms)
{
    QTableWidget* table = flowTable();
    if (!table || row < 0 || row >= table->rowCount())
        return;
    if (QTableWidgetItem* cell = table->item(static_cast<int>(row), TimeColumn))
        cell->setText(QString::number(ms));
}

QTableWidget* TaskInfo::flowTable() const
{
    return qobject_cast<QTableWidget*>(m_pcFlowTable);
}

int TaskInfo::selectedRow() const
{
    const QTableWidget* table = flowTable();
    const QList<QTableWidgetItem*> selected = table ? table->selectedItems() : QList<QTableWidgetItem*>();
    return selected.isEmpty() ? -1 : selected.first()->row();
}

void TaskInfo::TaskFlowTblCellChanged(int row, int column)
{
    QTableWidget* table = flowTable();
    QTableWidgetItem* cell = table ? table->item(row, column) : nullptr;
    if (!cell || row < 0 || row >= m_lstItems.size())
        return;
    if (column == NameColumn)
        m_lstItems[row].m_strDescribe = cell->text();
    if (column != CountColumn)
        return;
    bool ok = false;
    const int count = cell->text().toInt(&ok, 10);
    if (ok)
        m_lstItems[row].m_nMaxExeTimes = count;
}

void TaskInfo::TableItemClicked(QTableWidgetItem* item)
{
    QTableWidget* table = flowTable();
    if (!table)
        return;
    if (item && item == m_pcSelectedItem) {
        table->clearSelection();
        m_pcSelectedItem = nullptr;
        return;
    }
    const QList<QTableWidgetItem*> selected = table->selectedItems();
    m_pcSelectedItem = selected.isEmpty() ? nullptr : selected.first();
}
