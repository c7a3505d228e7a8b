#include "loading/dlgLoadFile.h"

#include "forms/readOnlyField.h"
#include "loading/loadingMessages.h"
#include "loading/loadingOption.h"
#include "loading/pictureReader.h"
#include "paramStore/arithmParamMgr.h"
#include "ui_dlgLoadFile.h"

#include <QFileDialog>
#include <QImage>
#include <QMessageBox>

namespace {

constexpr int NoType = -1;  // neither colour nor grey: no record made yet

bool isUsable(QImage::Format format)
{
    return format == QImage::Format_RGB888 || format == QImage::Format_Indexed8;
}

}  // namespace

DlgLoadFile::DlgLoadFile(QString config, ArithmParamMgr* store, QWidget* parent)
    : QDialog(parent),
      m_pcUi(std::make_unique<Ui::DlgLoadFile>()),
      m_nType(NoType),
      m_strConfig(config),
      m_pcStore(store)
{
    m_pcUi->setupUi(this);
    ReadOnlyField::show(m_pcUi->edtFilePath);
    parseConfigString();
}

DlgLoadFile::~DlgLoadFile() = default;

void DlgLoadFile::parseConfigString()
{
    if (m_strConfig.isEmpty())
        return;
    const LoadingOption option = LoadingOption::parse(m_strConfig);
    setCurFile(option.m_strFilePath);
    m_pcUi->edtOutputName->setText(option.m_strOutputName);
    m_pcUi->edtPicDescribe->setText(option.m_strDescribe);
    m_pcUi->rbGray->setChecked(option.m_bGrey);  // the form begins with the other of the two
    m_nType = option.m_nPicType;
    m_nID = option.dialogID();
}

void DlgLoadFile::setCurFile(const QString& path)
{
    // Kept on purpose: a file that is refused clears the shown path only; OK still takes the last good file.
    m_pcUi->edtFilePath->clear();
    QImage picture = PictureReader::read(path);
    if (picture.isNull()) {
        warn(LoadingMessages::unsupportedFile());
        return;
    }
    if (!isUsable(picture.format()))
        picture = picture.convertToFormat(QImage::Format_RGB888);
    if (!isUsable(picture.format())) {
        warn(LoadingMessages::only8And24Bits());
        return;
    }
    m_pcUi->edtFilePath->setText(path);
    m_strPath = path;
}

bool DlgLoadFile::createConfigString()
{
    if (!m_pcStore)
        return false;
    if (m_strPath.isEmpty()) {
        warn(LoadingMessages::noPicture());
        return false;
    }
    LoadingOption option;
    option.m_strFilePath = m_strPath;
    option.m_strOutputName = m_pcUi->edtOutputName->text();
    option.m_strDescribe = m_pcUi->edtPicDescribe->text();
    option.m_bGrey = m_pcUi->rbGray->isChecked();
    if (option.m_strOutputName.isEmpty()) {
        warn(LoadingMessages::noOutputName());
        return false;
    }
    makeRecord(option);
    option.m_nPicType = m_nType;
    option.m_nPicID = m_nID;
    m_strConfig = option.text();
    return true;
}

void DlgLoadFile::makeRecord(const LoadingOption& option)
{
    const int wanted = option.m_bGrey ? LoadingOption::Grey : LoadingOption::Colour;
    const int other = option.m_bGrey ? LoadingOption::Colour : LoadingOption::Grey;
    const bool changesKind = m_nType == other;
    m_nType = wanted;
    // Kept on purpose: a record that stays keeps its old name and description until the next pass renames it.
    if (!changesKind && m_nID >= 0)
        return;
    if (changesKind && m_nID >= 0)
        removeRecord(other);
    ArithmParam* record = newRecord(wanted);
    record->setName(option.m_strOutputName);
    record->setDescribe(option.m_strDescribe);
    m_nID = record->getID();
}

void DlgLoadFile::removeRecord(int type)
{
    if (type == LoadingOption::Grey)
        m_pcStore->removeParamGray8(m_nID);
    else
        m_pcStore->removeParamDIB(m_nID);
}

ArithmParam* DlgLoadFile::newRecord(int type)
{
    if (type == LoadingOption::Grey)
        return m_pcStore->getParamGray8(-1);
    return m_pcStore->getParamDIB(-1);
}

void DlgLoadFile::warn(const QString& text)
{
    QMessageBox::about(this, LoadingMessages::title(), text);
}

void DlgLoadFile::reject()
{
    m_strConfig.clear();
    QDialog::reject();
}

void DlgLoadFile::on_btnBrowser_clicked()
{
    // Qt's own dialog is the same on a board without a desktop.
    const QString path =
        QFileDialog::getOpenFileName(this, LoadingMessages::openCaption(), QStringLiteral("."),
                                     LoadingMessages::openFilter(), nullptr, QFileDialog::DontUseNativeDialog);
    if (path.isEmpty())
        return;
    setCurFile(path);
    if (!m_pcUi->edtFilePath->text().isEmpty())
        m_pcUi->edtOutputName->setFocus(Qt::TabFocusReason);
}

void DlgLoadFile::on_btnOK_clicked()
{
    if (createConfigString())
        accept();
}

void DlgLoadFile::on_btnCancel_clicked()
{
    reject();
}
