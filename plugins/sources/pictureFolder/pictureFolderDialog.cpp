#include "pictureFolderDialog.h"

#include "folderOption.h"
#include "ui_pictureFolderDialog.h"

#include <QApplication>
#include <QFileDialog>

PictureFolderDialog::PictureFolderDialog(const QString& config)
    : QDialog(QApplication::activeWindow()), m_pcUi(std::make_unique<Ui::PictureFolderDialog>())
{
    m_pcUi->setupUi(this);
    const FolderOption option = FolderOption::read(config);
    m_pcUi->edtFolder->setText(option.folder);
    m_pcUi->chkLoop->setChecked(option.loop);
    m_pcUi->spnRate->setValue(option.rate);
    connect(m_pcUi->btnBrowse, &QPushButton::clicked, this, &PictureFolderDialog::browse);
    connect(m_pcUi->btnOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_pcUi->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

PictureFolderDialog::~PictureFolderDialog() = default;

QString PictureFolderDialog::configText() const
{
    FolderOption option;
    option.folder = m_pcUi->edtFolder->text().trimmed();
    option.loop = m_pcUi->chkLoop->isChecked();
    option.rate = m_pcUi->spnRate->value();
    return option.write();
}

void PictureFolderDialog::browse()
{
    // Qt's own dialog: the same on a board without a desktop.
    const QString folder =
        QFileDialog::getExistingDirectory(this, QStringLiteral("选择图片文件夹"), m_pcUi->edtFolder->text(),
                                          QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
    if (folder.isEmpty())
        return;
    m_pcUi->edtFolder->setText(folder);
    m_pcUi->spnRate->setFocus(Qt::TabFocusReason);
}
