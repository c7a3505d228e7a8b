#include "memoryDisk/dlgMemoryDiskConfig.h"

#include "configDialog.h"
#include "forms/readOnlyField.h"
#include "memoryDisk/memoryDisk.h"
#include "memoryDisk/memoryDiskMessages.h"
#include "memoryDisk/memoryDiskOption.h"
#include "paramStore/arithmParamMgr.h"
#include "ui_dlgMemoryDiskConfig.h"

#include <QMessageBox>

#include <utility>

namespace {

std::unique_ptr<Ui::DlgMemoryDiskConfig> makeForm(QDialog* dialog)
{
    auto form = std::make_unique<Ui::DlgMemoryDiskConfig>();
    form->setupUi(dialog);
    return form;
}

QString nameOf(const ArithmParam* record)
{
    return record ? record->getName() : QString();
}

}  // namespace

char* MemoryDisk::showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    QString text = ConfigDialog::textOf<DlgMemoryDiskConfig>(option, store);
    return transConfigStr(text);
}

DlgMemoryDiskConfig::DlgMemoryDiskConfig(QString config, ArithmParamMgr* store, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint),
      m_pcUi(makeForm(this)),
      m_strConfig(std::move(config)),
      m_cRGB(m_pcUi->tblRGB),
      m_cGray8(m_pcUi->tblGray8),
      m_pcStore(store)
{
    ReadOnlyField::show(m_pcUi->edtType);
    ReadOnlyField::show(m_pcUi->edtName);
    if (m_pcStore) {
        m_cRGB.fill(m_pcStore->requestParamDIBMap());
        m_cGray8.fill(m_pcStore->requestParamGray8Map());
    }
    showInput();
}

DlgMemoryDiskConfig::~DlgMemoryDiskConfig() = default;

// Kept on purpose: the disk is not taken back, nor is the type that OK writes, although the form shows it. Who confirms
// without choosing the record again writes disk 0 and an empty type.
void DlgMemoryDiskConfig::showInput()
{
    const MemoryDiskOption option = MemoryDiskOption::fromText(m_strConfig);
    m_nInputID = option.m_nInputID.value_or(0);
    if (option.m_strInputType == MemoryDiskOption::typeRGB())
        m_pcUi->edtName->setText(nameOfRGB(m_nInputID));
    else if (option.m_strInputType == MemoryDiskOption::typeGray8())
        m_pcUi->edtName->setText(nameOfGray8(m_nInputID));
    m_pcUi->edtType->setText(option.m_strInputType);
}

QString DlgMemoryDiskConfig::nameOfRGB(int id) const
{
    return m_pcStore ? nameOf(m_pcStore->findParamDIB(id)) : QString();
}

QString DlgMemoryDiskConfig::nameOfGray8(int id) const
{
    return m_pcStore ? nameOf(m_pcStore->findParamGray8(id)) : QString();
}

void DlgMemoryDiskConfig::on_tblRGB_cellDoubleClicked(int row, int /*column*/)
{
    const int id = m_cRGB.idOfRow(row, 0);
    chooseInput(id, nameOfRGB(id), MemoryDiskOption::typeRGB());
}

void DlgMemoryDiskConfig::on_tblGray8_cellDoubleClicked(int row, int /*column*/)
{
    const int id = m_cGray8.idOfRow(row, 0);
    chooseInput(id, nameOfGray8(id), MemoryDiskOption::typeGray8());
}

void DlgMemoryDiskConfig::chooseInput(int id, const QString& name, const QString& type)
{
    m_nInputID = id;
    m_strInputType = type;
    m_pcUi->edtName->setText(name);
    m_pcUi->edtType->setText(type);
}

void DlgMemoryDiskConfig::on_btnOK_clicked()
{
    if (m_nInputID < 1) {
        QMessageBox::information(this, MemoryDiskMessages::warningTitle(), MemoryDiskMessages::noInputChosen());
        return;
    }
    m_strConfig = MemoryDiskOption{m_pcUi->cmbMemDisk->currentIndex(), m_nInputID, m_strInputType}.toText();
    accept();
}

void DlgMemoryDiskConfig::on_btnCancel_clicked()
{
    reject();
}

void DlgMemoryDiskConfig::reject()
{
    m_strConfig.clear();
    QDialog::reject();
}
