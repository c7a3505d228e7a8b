#pragma once

#include <QMap>
#include <QStringList>

class QTableWidget;

/**
 * A table of a dialog that lists records of a store, one row each, and remembers which row stands for which record.
 *
 * The table takes whole rows, one at a time, and cannot be edited or sorted. Window's thread.
 */
class RecordTable
{
public:
    static constexpr int NoRow = -1;
    static constexpr int NoID = -1;

    explicit RecordTable(QTableWidget* table);  ///< table: not owned, outlives this object.

    /**
     * Adds a row for each record in ascending identifier order, then fits the columns to their contents.
     *
     * @param records borrowed for the call; null counts as empty
     * @param textsOf gives a record's texts, one for each column from the left
     */
    template <typename Record, typename TextsOf>
    void fill(const QMap<int, Record*>* records, TextsOf textsOf)
    {
        if (records) {
            for (auto entry = records->cbegin(); entry != records->cend(); ++entry)
                addRow(entry.key(), textsOf(*entry.value()));
        }
        fitColumns();
    }

    /// As above with a name and a description for each record.
    template <typename Record>
    void fill(const QMap<int, Record*>* records)
    {
        fill(records, [](const Record& record) { return QStringList{record.getName(), record.getDescribe()}; });
    }

    int idOfRow(int row, int none = NoID) const;  ///< The record's identifier, or none for a row that is not there.
    int rowOfID(int id) const;                    ///< NoRow when the table does not list the record.
    int selectedRow() const;                      ///< NoRow when no row is selected.
    void selectRow(int row);                      ///< Selects the row and brings it into view.
    QString text(int row, int column) const;      ///< Empty for a cell that is not there.

private:
    void addRow(int id, const QStringList& texts);
    void fitColumns();

    QTableWidget* m_pcTable;  ///< Not owned.
    QMap<int, int> m_mapRowToID;
};
