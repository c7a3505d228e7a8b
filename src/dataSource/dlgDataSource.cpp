#include "dataSource/dlgDataSource.h"

#include "configDialog.h"
#include "dataSource/dataSourceInfo.h"
#include "dataSource/dataSourceInstance.h"
#include "dataSource/dataSourceMessages.h"
#include "optionText.h"
#include "paramStore/arithmParamMgr.h"
#include "ui_dlgDataSource.h"

#include <QMessageBox>

#include <utility>

DataSource::DataSourceInstance* DataSource::newDataSource(ArithmParamMgr* store, QString& config)
{
    DlgDataSource dialog(&m_mapKinds, store, config, nullptr);
    if (!ConfigDialog::accepted(dialog))
        return nullptr;
    config = dialog.getConfigString();
    return dialog.getDataSourceInstance();
}

DlgDataSource::DlgDataSource(const QMap<QString, DataSource::DataSourceInfo*>* kinds, ArithmParamMgr* store,
                             QString text, QWidget* parent)
    : QDialog(parent),
      m_pcUi(std::make_unique<Ui::DlgDataSource>()),
      m_strResult(std::move(text)),
      m_pcStore(store),
      m_pcKinds(kinds)
{
    m_pcUi->setupUi(this);
    // Its style leaves out the frame that the fields below have.
    m_pcUi->edtSelectedSource->setMinimumHeight(m_pcUi->edtName->sizeHint().height());
    if (m_pcKinds)
        m_pcUi->lbSourceNames->addItems(m_pcKinds->keys());
    showSettings();
}

DlgDataSource::~DlgDataSource() = default;

DataSource::DataSourceInstance* DlgDataSource::getDataSourceInstance()
{
    m_pcOwned.release();
    return m_pcInstance;
}

// The settings of an existing source are only shown: there is no instance until the user asks for one.
void DlgDataSource::showSettings()
{
    const OptionReader reader(m_strResult);
    selectKind(reader.text("DSName"));
    m_strKindConfig = reader.text("Config");
    m_pcUi->edtName->setText(reader.text("OutputName"));
    m_pcUi->edtDescribe->setText(reader.text("OutputDescribe"));
    reader.numberInto(m_nOldID, "OutputID");
    // Kept on purpose: "Gray16" is no item and falls back to the first, "RGB".
    const int type = m_pcUi->cbDataType->findText(reader.text("OutputType"));
    if (type >= 0)
        m_pcUi->cbDataType->setCurrentIndex(type);
}

void DlgDataSource::selectKind(const QString& name)
{
    const QList<QListWidgetItem*> items = m_pcUi->lbSourceNames->findItems(name, Qt::MatchExactly);
    if (!items.isEmpty())
        m_pcUi->lbSourceNames->setCurrentItem(items.first());
}

void DlgDataSource::on_btnSetting_clicked()
{
    const QList<QListWidgetItem*> selected = m_pcUi->lbSourceNames->selectedItems();
    if (selected.isEmpty())
        return;
    const QString kind = selected.first()->text();
    // Kept on purpose: the kind's configuration follows bare, so the kind first gets an empty one.
    const QString text = OptionWriter().text("DSName", kind).result() + m_strKindConfig;
    DataSource::DataSourceInstance* instance =
        DataSource::getInstance()->createDataSourceFromConfigString(m_pcStore, text);
    if (!instance) {
        warn(DataSourceMessages::notCreated());
        return;
    }
    useInstance(instance);
    m_pcUi->edtSelectedSource->setText(kind);
}

void DlgDataSource::useInstance(DataSource::DataSourceInstance* instance)
{
    m_pcOwned.reset(instance);
    m_pcInstance = instance;
    m_pcInstance->setConfigString(m_strKindConfig);
    setEnabled(false);
    m_pcInstance->showConfigWindow();
    setEnabled(true);
    m_pcUi->edtName->setFocus(Qt::TabFocusReason);
    const QString config = m_pcInstance->getConfigString();
    if (!config.isEmpty())
        m_strKindConfig = config;
}

void DlgDataSource::on_btnOK_clicked()
{
    if (m_pcUi->edtName->text().isEmpty()) {
        warn(DataSourceMessages::nameMissing());
        return;
    }
    if (!m_pcInstance) {
        warn(DataSourceMessages::noSource());
        return;
    }
    const QString name = m_pcUi->edtName->text();
    const QString describe = m_pcUi->edtDescribe->text();
    const QString type = m_pcUi->cbDataType->currentText();
    m_pcInstance->setDataType(type);
    m_pcInstance->setNameAndDescribe(name, describe);
    const int id = outputID(type);
    m_pcInstance->setDataID(id);
    m_strResult = OptionWriter()
                      .text("DSName", m_pcUi->edtSelectedSource->text())
                      .text("OutputName", name)
                      .text("OutputDescribe", describe)
                      .text("OutputType", type)
                      .number("OutputID", id)
                      .text("Config", m_strKindConfig)
                      .result();
    accept();
}

int DlgDataSource::outputID(const QString& type) const
{
    if (!m_pcStore)
        return -1;
    if (type == QLatin1String("RGB"))
        return m_pcStore->getParamDIB(m_nOldID)->getID();
    if (type == QLatin1String("Gray8"))
        return m_pcStore->getParamGray8(m_nOldID)->getID();
    if (type == QLatin1String("Gray16"))
        return m_pcStore->getParamGray16(m_nOldID)->getID();
    return -1;
}

void DlgDataSource::on_btnCancel_clicked()
{
    reject();
}

void DlgDataSource::reject()
{
    m_pcOwned.reset();
    m_pcInstance = nullptr;
    QDialog::reject();
}

void DlgDataSource::warn(const QString& text)
{
    QMessageBox::information(this, DataSourceMessages::warningTitle(), text);
}
