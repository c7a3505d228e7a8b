#include "saving/dlgSelectPic.h"

#include "paramStore/arithmParamMgr.h"
#include "saving/savingMessages.h"
#include "ui_dlgSelectPic.h"

#include <QMessageBox>

namespace {

/// The form's widgets exist before the tables that fill them.
std::unique_ptr<Ui::DlgSelectPic> makeForm(QDialog* dialog)
{
    auto form = std::make_unique<Ui::DlgSelectPic>();
    form->setupUi(dialog);
    return form;
}

}  // namespace

DlgSelectPic::DlgSelectPic(ArithmParamMgr* store, QWidget* parent)
    : QDialog(parent), m_pcUi(makeForm(this)), m_pcStore(store), m_cColour(m_pcUi->tblRGB), m_cGrey(m_pcUi->tblGray)
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (!m_pcStore)
        return;
    m_cColour.fill(m_pcStore->requestParamDIBMap());
    m_cGrey.fill(m_pcStore->requestParamGray8Map());
}

DlgSelectPic::~DlgSelectPic() = default;

void DlgSelectPic::on_btnOK_clicked()
{
    if (!m_pcStore)
        return;
    m_nSelectedTab = m_pcUi->tabPic->currentIndex();
    const RecordTable& table = m_nSelectedTab == GreyTab ? m_cGrey : m_cColour;
    const int row = table.selectedRow();
    if (row == RecordTable::NoRow)
        return;
    m_nSelectedID = table.idOfRow(row);
    if (m_nSelectedID >= 0)
        accept();
    else
        QMessageBox::about(this, SavingMessages::title(), SavingMessages::noPictureSelected());
}

void DlgSelectPic::on_btnCancel_clicked()
{
    reject();
}
