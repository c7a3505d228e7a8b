#pragma once

#include <QDialog>
#include <QString>

#include <memory>

class ArithmParam;
class ArithmParamMgr;
struct LoadingOption;

QT_BEGIN_NAMESPACE
namespace Ui {
class DlgLoadFile;
}
QT_END_NAMESPACE

/**
 * Asks which picture file a loading step reads and into what record.
 *
 * OK makes the record in the store at once, so that the dialogs of later steps can list it.
 */
class DlgLoadFile : public QDialog
{
    Q_OBJECT

public:
    /// store: borrowed; without one OK does nothing.
    DlgLoadFile(QString config, ArithmParamMgr* store, QWidget* parent);
    ~DlgLoadFile() override;

    QString getConfigString() const { return m_strConfig; }  ///< The option text; empty once the dialog is cancelled.

public Q_SLOTS:
    void reject() override;
    void on_btnBrowser_clicked();
    void on_btnOK_clicked();
    void on_btnCancel_clicked();

private:
    void parseConfigString();
    bool createConfigString();  ///< False when something is missing; the user was told.
    void setCurFile(const QString& path);
    void makeRecord(const LoadingOption& option);  ///< Makes a new record unless one of the chosen kind exists.
    void removeRecord(int type);                   ///< The current record, of that kind.
    ArithmParam* newRecord(int type);              ///< Under a fresh identifier; owned by the store.
    void warn(const QString& text);

    std::unique_ptr<Ui::DlgLoadFile> m_pcUi;
    int m_nType;     ///< LoadingOption::PicType; -1: no record made yet.
    int m_nID = -1;  ///< The record; -1: none.
    QString m_strConfig;
    QString m_strPath;          ///< The file that was last found good.
    ArithmParamMgr* m_pcStore;  ///< Not owned; may be null.
};
