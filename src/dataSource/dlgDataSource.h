#pragma once

#include "dataSource/dataSource.h"

#include <QDialog>
#include <QMap>
#include <QString>

#include <memory>

QT_BEGIN_NAMESPACE
namespace Ui {
class DlgDataSource;
}
QT_END_NAMESPACE

/**
 * Lets the user choose a kind of source, configure an instance of it and name the record that its pictures go to.
 *
 * The store is changed by OK alone, which makes the output record when there is none yet.
 */
class DlgDataSource : public QDialog
{
    Q_OBJECT

public:
    /**
     * @param kinds the kinds to list, by name; read only, not owned
     * @param store of the task that gets the source; not owned
     * @param text the source's configuration text; empty for a new source
     */
    DlgDataSource(const QMap<QString, DataSource::DataSourceInfo*>* kinds, ArithmParamMgr* store, QString text,
                  QWidget* parent);
    ~DlgDataSource() override;

    QString getConfigString() const { return m_strResult; }  ///< The new text once accepted; until then the old one.

    /// Hands the current instance over to the caller; null when there is none.
    DataSource::DataSourceInstance* getDataSourceInstance();

public Q_SLOTS:
    void on_btnSetting_clicked();
    void on_btnOK_clicked();
    void on_btnCancel_clicked();
    void reject() override;  ///< Also what Escape does: the instance goes.

private:
    void showSettings();  ///< Fills the form from the text.
    void selectKind(const QString& name);
    void useInstance(DataSource::DataSourceInstance* instance);  ///< Takes it and lets the kind configure it.
    int outputID(const QString& type) const;                     ///< Of the output record, made when there is none.
    void warn(const QString& text);

    std::unique_ptr<Ui::DlgDataSource> m_pcUi;
    int m_nOldID = -1;  ///< Of the output record named by the text; -1 when it names none.
    DataSource::DataSourceInstance* m_pcInstance = nullptr;  ///< Current; the dialog's while m_pcOwned holds it.
    std::unique_ptr<DataSource::DataSourceInstance> m_pcOwned;
    QString m_strResult;
    QString m_strKindConfig;                                      ///< The kind's own configuration.
    ArithmParamMgr* m_pcStore;                                    ///< Not owned.
    const QMap<QString, DataSource::DataSourceInfo*>* m_pcKinds;  ///< Not owned.
};
