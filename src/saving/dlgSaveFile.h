#pragma once

#include <QDialog>
#include <QString>

#include <memory>

class ArithmParamMgr;
struct SavingOption;

QT_BEGIN_NAMESPACE
namespace Ui {
class DlgSaveFile;
}
QT_END_NAMESPACE

/// Asks what a saving step writes, where, and how the file is named.
class DlgSaveFile : public QDialog
{
    Q_OBJECT

public:
    /// store: borrowed; without one there is nothing to choose from.
    DlgSaveFile(QString config, ArithmParamMgr* store, QWidget* parent);
    ~DlgSaveFile() override;

    QString getConfigString() const { return m_strConfig; }  ///< The option text; empty once the dialog is cancelled.

public Q_SLOTS:
    void reject() override;
    void on_btnBrowser_clicked();
    void on_btnSelectPic_clicked();
    void on_cmbWnd_currentIndexChanged(int index);
    void on_btnOK_clicked();
    void on_btnCancel_clicked();

private:
    void listStrings();
    void parseConfigString();
    bool createConfigString();                  ///< False when something is missing; the user was told.
    bool readRecordInto(SavingOption& option);  ///< As createConfigString, for a picture record.
    void warn(const QString& text);

    std::unique_ptr<Ui::DlgSaveFile> m_pcUi;
    QString m_strConfig;
    ArithmParamMgr* m_pcStore;  ///< Not owned; may be null.
};
