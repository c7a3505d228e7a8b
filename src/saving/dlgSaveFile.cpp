#include "saving/dlgSaveFile.h"

#include "forms/recordTable.h"
#include "paramStore/arithmParamMgr.h"
#include "saving/dlgSelectPic.h"
#include "saving/savingMessages.h"
#include "saving/savingOption.h"
#include "ui_dlgSaveFile.h"

#include <QFileDialog>
#include <QMessageBox>

namespace {

/// A record's name, identifier and first string; strings make up file names as UTF-8.
QStringList textsOf(const ParamStrings& record)
{
    const QVector<QByteArray> strings = record.getStrings();
    return {record.getName(), QString::number(record.getID()), QString::fromUtf8(strings.value(0))};
}

/// Leaves the box at its first item when a foreign text names an item that is not there.
void select(QComboBox* box, int index)
{
    box->setCurrentIndex(index >= 0 && index < box->count() ? index : 0);
}

}  // namespace

DlgSaveFile::DlgSaveFile(QString config, ArithmParamMgr* store, QWidget* parent)
    : QDialog(parent), m_pcUi(std::make_unique<Ui::DlgSaveFile>()), m_strConfig(config), m_pcStore(store)
{
    m_pcUi->setupUi(this);
    on_cmbWnd_currentIndexChanged(m_pcUi->cmbWnd->currentIndex());
    m_pcUi->edtStringID->setFocus();  // the table above it only helps to fill it in
    listStrings();
    parseConfigString();
}

DlgSaveFile::~DlgSaveFile() = default;

void DlgSaveFile::listStrings()
{
    RecordTable table(m_pcUi->tblStrings);
    if (m_pcStore)
        table.fill(m_pcStore->requestParamStringsMap(), textsOf);
}

void DlgSaveFile::parseConfigString()
{
    if (m_strConfig.isEmpty())
        return;
    const SavingOption option = SavingOption::parse(m_strConfig);
    m_pcUi->edtBasePath->setText(option.m_strBasePath);
    m_pcUi->edtStringID->setText(option.m_strStringID);
    m_pcUi->chkIsStringID->setChecked(option.m_bStringID);
    m_pcUi->edtSeparator->setText(option.m_strSeparator);
    select(m_pcUi->cmbIdentity, option.m_nIdentity);
    select(m_pcUi->cmbFormat, option.m_nFormat);
    m_pcUi->cbExchange->setChecked(option.m_bExchange);
    select(m_pcUi->cmbWnd, option.m_nWnd);
    m_pcUi->edtPicType->setText(option.m_strPicType);
    if (option.m_nPicID)
        m_pcUi->edtSelectedPicID->setText(QString::number(*option.m_nPicID));
}

bool DlgSaveFile::createConfigString()
{
    SavingOption option;
    option.m_strBasePath = m_pcUi->edtBasePath->text();
    option.m_strStringID = m_pcUi->edtStringID->text();
    option.m_bStringID = m_pcUi->chkIsStringID->isChecked();
    option.m_strSeparator = m_pcUi->edtSeparator->text();
    option.m_nIdentity = m_pcUi->cmbIdentity->currentIndex();
    option.m_nFormat = m_pcUi->cmbFormat->currentIndex();
    option.m_bExchange = m_pcUi->cbExchange->isChecked();
    option.m_nWnd = m_pcUi->cmbWnd->currentIndex();
    if (option.m_strBasePath.isEmpty()) {
        warn(SavingMessages::noBasePath());
        return false;
    }
    if (option.m_nWnd == SavingOption::RecordWnd && !readRecordInto(option))
        return false;
    m_strConfig = option.text();
    return true;
}

bool DlgSaveFile::readRecordInto(SavingOption& option)
{
    // Kept on purpose: the type is taken as it stands, whatever it is; a step of an unknown type saves nothing.
    option.m_strPicType = m_pcUi->edtPicType->text();
    bool isNumber = false;
    const int id = m_pcUi->edtSelectedPicID->text().toInt(&isNumber);
    if (!isNumber || id < 0) {
        warn(SavingMessages::badPictureID());
        return false;
    }
    option.m_nPicID = id;
    return true;
}

void DlgSaveFile::warn(const QString& text)
{
    QMessageBox::about(this, SavingMessages::title(), text);
}

void DlgSaveFile::reject()
{
    m_strConfig.clear();
    QDialog::reject();
}

void DlgSaveFile::on_btnBrowser_clicked()
{
    // Qt's own dialog is the same on a board without a desktop.
    const QString path = QFileDialog::getExistingDirectory(
        this, SavingMessages::folderCaption(), QString(), QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
    if (path.isEmpty())
        return;
    m_pcUi->edtBasePath->setText(path);
    m_pcUi->cmbWnd->setFocus();
}

void DlgSaveFile::on_btnSelectPic_clicked()
{
    DlgSelectPic dialog(m_pcStore, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_pcUi->edtPicType->setText(dialog.getSelectedTab() == DlgSelectPic::GreyTab ? QStringLiteral("Gray")
                                                                                 : QStringLiteral("RGB"));
    m_pcUi->edtSelectedPicID->setText(QString::number(dialog.getSelectedID()));
    m_pcUi->btnOK->setFocus();
}

void DlgSaveFile::on_cmbWnd_currentIndexChanged(int index)
{
    const bool isRecord = index == m_pcUi->cmbWnd->count() - 1;
    m_pcUi->btnSelectPic->setVisible(isRecord);
    m_pcUi->edtPicType->setVisible(isRecord);
    m_pcUi->edtSelectedPicID->setVisible(isRecord);
}

void DlgSaveFile::on_btnOK_clicked()
{
    if (createConfigString())
        accept();
}

void DlgSaveFile::on_btnCancel_clicked()
{
    reject();
}
