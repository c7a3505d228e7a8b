#pragma once

#include "forms/recordTable.h"

#include <QDialog>
#include <QString>

#include <memory>

class ArithmParamMgr;

QT_BEGIN_NAMESPACE
namespace Ui {
class DlgMemoryDiskConfig;
}
QT_END_NAMESPACE

/// Lets the user choose the picture that a step writes and the memory disk that it goes to. Only lists records.
class DlgMemoryDiskConfig : public QDialog
{
    Q_OBJECT

public:
    /// @param store lists nothing when null; not owned
    DlgMemoryDiskConfig(QString config, ArithmParamMgr* store, QWidget* parent);
    ~DlgMemoryDiskConfig() override;

    QString getConfigString() const { return m_strConfig; }  ///< The new option text; empty when cancelled.

public Q_SLOTS:
    void on_tblRGB_cellDoubleClicked(int row, int column);
    void on_tblGray8_cellDoubleClicked(int row, int column);
    void on_btnOK_clicked();
    void on_btnCancel_clicked();
    void reject() override;  ///< Also what Escape does.

private:
    void showInput();                   ///< Takes the input over from the configuration text.
    QString nameOfRGB(int id) const;    ///< Empty when the store has no such record.
    QString nameOfGray8(int id) const;  ///< The same for grey pictures.
    void chooseInput(int id, const QString& name, const QString& type);

    std::unique_ptr<Ui::DlgMemoryDiskConfig> m_pcUi;
    QString m_strConfig;
    RecordTable m_cRGB;
    RecordTable m_cGray8;
    ArithmParamMgr* m_pcStore;  ///< Not owned.
    int m_nInputID = 0;         ///< 0 when none.
    QString m_strInputType;     ///< Empty until a row is chosen.
};
