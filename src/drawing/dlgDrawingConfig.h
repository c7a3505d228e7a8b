#pragma once

#include "forms/recordTable.h"

#include <QDialog>
#include <QString>

#include <memory>
#include <vector>

class ArithmParam;
class ArithmParamMgr;
class QPushButton;

QT_BEGIN_NAMESPACE
namespace Ui {
class DlgDrawingConfig;
}
QT_END_NAMESPACE

/**
 * Lets the user choose the record that a drawing step shows, and how. Only lists records.
 *
 * What OK writes is what the select button took from the form last, or else what the dialog was opened with.
 */
class DlgDrawingConfig : public QDialog
{
    Q_OBJECT

public:
    /// @param store lists nothing when null; not owned
    DlgDrawingConfig(QString option, ArithmParamMgr* store, QWidget* parent);
    ~DlgDrawingConfig() override;

    /// The new option text once accepted; empty when the chosen record was not there.
    QString getConfigString() const { return m_strResult; }

    void parseConfigString();  ///< Sets the controls of the current page from the configuration.

public Q_SLOTS:
    void on_btnSelectElement_clicked();
    void on_btnOK_clicked();
    void on_btnCancel_clicked();
    void on_btnColorPoints_clicked();
    void on_btnColorLines_clicked();
    void on_btnColorPolys_clicked();
    void on_btnColorAreas_clicked();
    void on_btnColorStrings_clicked();

private:
    static constexpr int KindNum = 8;
    static constexpr int NoKind = -1;
    static bool isKind(int kind) { return kind >= 0 && kind < KindNum; }

    void fillTables();
    void showOption(const QString& option);
    const ArithmParam* recordOf(int kind, int id) const;  ///< Null when the store does not hold it.
    RecordTable& tableOf(int kind) { return m_vecTables[static_cast<std::size_t>(kind)]; }
    int chosenID();  ///< RecordTable::NoID when what was chosen is not listed.
    void warn(const QString& text);

    // dlgDrawingConfigPages.cpp
    QString bodyOfPage(int kind);  ///< Not const: rewrites the font size that it read.
    QString stringsBody();
    void showPoints();
    void showLines();
    void showPolys();
    void showAreas();
    void showStrings();
    void paintColorButtons();
    void askColor(QPushButton* button);

    std::unique_ptr<Ui::DlgDrawingConfig> m_pcUi;
    ArithmParamMgr* m_pcStore;             ///< Not owned.
    std::vector<RecordTable> m_vecTables;  ///< By kind.
    int m_nKind = NoKind;                  ///< The chosen kind of records.
    int m_nRow = RecordTable::NoRow;       ///< The chosen row of that kind's table.
    QString m_strBody;                     ///< The chosen configuration.
    QString m_strResult;
};
