#include "forms/recordTable.h"

#include "forms/wholeTextTip.h"

#include <QHeaderView>
#include <QTableWidget>

RecordTable::RecordTable(QTableWidget* table) : m_pcTable(table)
{
    m_pcTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pcTable->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pcTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pcTable->setAlternatingRowColors(true);
    m_pcTable->setWordWrap(false);
    m_pcTable->setTabKeyNavigation(false);  // Tab leaves the table for the next field
    m_pcTable->verticalHeader()->hide();
    m_pcTable->horizontalHeader()->setStretchLastSection(true);
    m_pcTable->horizontalHeader()->setHighlightSections(false);
    m_pcTable->setItemDelegate(new WholeTextTip(m_pcTable));
}

int RecordTable::idOfRow(int row, int none) const
{
    return m_mapRowToID.value(row, none);
}

int RecordTable::rowOfID(int id) const
{
    return m_mapRowToID.key(id, NoRow);
}

int RecordTable::selectedRow() const
{
    const QModelIndexList rows = m_pcTable->selectionModel()->selectedRows();
    return rows.isEmpty() ? NoRow : rows.first().row();
}

void RecordTable::selectRow(int row)
{
    m_pcTable->selectRow(row);
}

QString RecordTable::text(int row, int column) const
{
    const QTableWidgetItem* item = m_pcTable->item(row, column);
    return item ? item->text() : QString();
}

void RecordTable::addRow(int id, const QStringList& texts)
{
    const int row = m_pcTable->rowCount();
    m_pcTable->insertRow(row);
    for (int column = 0; column < texts.size(); ++column)
        m_pcTable->setItem(row, column, new QTableWidgetItem(texts.at(column)));
    m_mapRowToID.insert(row, id);
}

void RecordTable::fitColumns()
{
    m_pcTable->resizeColumnsToContents();
}
