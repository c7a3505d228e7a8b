#include "drawing/dlgDrawingConfig.h"

#include "configDialog.h"
#include "drawing/drawing.h"
#include "drawing/drawingConfigText.h"
#include "drawing/drawingMessages.h"
#include "forms/readOnlyField.h"
#include "optionText.h"
#include "paramStore/arithmParamMgr.h"
#include "ui_dlgDrawingConfig.h"

#include <QMessageBox>

char* Drawing::showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    QString text = ConfigDialog::textOf<DlgDrawingConfig>(option, store);
    return transConfigStr(text);
}

DlgDrawingConfig::DlgDrawingConfig(QString option, ArithmParamMgr* store, QWidget* parent)
    : QDialog(parent), m_pcUi(std::make_unique<Ui::DlgDrawingConfig>()), m_pcStore(store)
{
    m_pcUi->setupUi(this);
    ReadOnlyField::show(m_pcUi->edtName);
    ReadOnlyField::show(m_pcUi->edtDescribe);
    paintColorButtons();
    fillTables();
    showOption(option);
}

DlgDrawingConfig::~DlgDrawingConfig() = default;

void DlgDrawingConfig::fillTables()
{
    for (QTableWidget* table : {m_pcUi->tblRGB, m_pcUi->tblGray8, m_pcUi->tblGray16, m_pcUi->tblPoints,
                                m_pcUi->tblLines, m_pcUi->tblPolys, m_pcUi->tblAreas, m_pcUi->tblStrings})
        m_vecTables.emplace_back(table);
    if (!m_pcStore)
        return;
    tableOf(DrawingConfigText::ColourImage).fill(m_pcStore->requestParamDIBMap());
    tableOf(DrawingConfigText::Gray8Image).fill(m_pcStore->requestParamGray8Map());
    tableOf(DrawingConfigText::Gray16Image).fill(m_pcStore->requestParamGray16Map());
    tableOf(DrawingConfigText::Points).fill(m_pcStore->requestParamPointsMap());
    tableOf(DrawingConfigText::Lines).fill(m_pcStore->requestParamLinesMap());
    tableOf(DrawingConfigText::Polys).fill(m_pcStore->requestParamPolysMap());
    tableOf(DrawingConfigText::Areas).fill(m_pcStore->requestParamAreasMap());
    tableOf(DrawingConfigText::Strings).fill(m_pcStore->requestParamStringsMap());
}

// The selection of the option counts for OK at once. A record that is not listed leaves its table without selection.
void DlgDrawingConfig::showOption(const QString& option)
{
    const OptionReader reader(option);
    const int kind = reader.number("DataType").value_or(NoKind);
    if (!isKind(kind))
        return;
    m_nKind = kind;
    m_pcUi->cbDataType->setCurrentIndex(kind);
    m_pcUi->tabDataType->setCurrentIndex(kind);
    m_strBody = reader.text("Config");
    parseConfigString();
    const std::optional<int> id = reader.number("DataID");
    const ArithmParam* record = id ? recordOf(kind, *id) : nullptr;
    if (!record)
        return;
    m_nRow = tableOf(kind).rowOfID(*id);
    tableOf(kind).selectRow(m_nRow);
    m_pcUi->edtName->setText(record->getName());
    m_pcUi->edtDescribe->setText(record->getDescribe());
}

const ArithmParam* DlgDrawingConfig::recordOf(int kind, int id) const
{
    if (!m_pcStore)
        return nullptr;
    switch (kind) {
    case DrawingConfigText::ColourImage:
        return m_pcStore->findParamDIB(id);
    case DrawingConfigText::Gray8Image:
        return m_pcStore->findParamGray8(id);
    case DrawingConfigText::Gray16Image:
        return m_pcStore->findParamGray16(id);
    case DrawingConfigText::Points:
        return m_pcStore->findParamPoints(id);
    case DrawingConfigText::Lines:
        return m_pcStore->findParamLines(id);
    case DrawingConfigText::Polys:
        return m_pcStore->findParamPolys(id);
    case DrawingConfigText::Areas:
        return m_pcStore->findParamAreas(id);
    case DrawingConfigText::Strings:
        return m_pcStore->findParamStrings(id);
    default:
        return nullptr;
    }
}

void DlgDrawingConfig::on_btnSelectElement_clicked()
{
    m_nKind = m_pcUi->tabDataType->currentIndex();
    m_strBody = bodyOfPage(m_nKind);
    m_nRow = tableOf(m_nKind).selectedRow();
    if (m_nRow != RecordTable::NoRow) {
        m_pcUi->edtName->setText(tableOf(m_nKind).text(m_nRow, 0));
        m_pcUi->edtDescribe->setText(tableOf(m_nKind).text(m_nRow, 1));
        m_pcUi->btnOK->setFocus();
    }
    m_pcUi->cbDataType->setCurrentIndex(m_nKind);
}

void DlgDrawingConfig::on_btnOK_clicked()
{
    if (m_pcUi->cbDataType->currentIndex() < 0 || m_pcUi->edtName->text().isEmpty()) {
        warn(DrawingMessages::nothingChosen());
        return;
    }
    const int id = chosenID();
    if (id == RecordTable::NoID) {
        // Kept on purpose: unlike the first warning this one ends the dialog, accepted and with an empty text.
        warn(DrawingMessages::chosenIsGone());
        accept();
        return;
    }
    OptionWriter writer;
    writer.number("DataType", m_nKind).number("DataID", id);
    m_strResult = writer.text("Config", m_strBody).result();
    accept();
}

int DlgDrawingConfig::chosenID()
{
    return isKind(m_nKind) ? tableOf(m_nKind).idOfRow(m_nRow) : RecordTable::NoID;
}

void DlgDrawingConfig::on_btnCancel_clicked()
{
    reject();
}

void DlgDrawingConfig::warn(const QString& text)
{
    QMessageBox::about(this, DrawingMessages::warningTitle(), text);
}
