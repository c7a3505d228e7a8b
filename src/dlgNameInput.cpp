#include "dlgNameInput.h"

#include "ui_dlgNameInput.h"

dlgNameInput::dlgNameInput(QWidget* parent) : QDialog(parent), m_pcUi(std::make_unique<Ui::dlgNameInput>())
{
    m_pcUi->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

dlgNameInput::~dlgNameInput() = default;

void dlgNameInput::on_btnOK_clicked()
{
    m_strName = m_pcUi->leName->text();
    accept();
}

void dlgNameInput::on_btnCancel_clicked()
{
    reject();
}
