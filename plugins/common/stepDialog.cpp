#include "stepDialog.h"

#include "ui_stepDialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QSpinBox>

namespace {
constexpr int OutputNameWidth = 120;  ///< Pixels; a name of some seven Chinese characters.
}

StepDialog::StepDialog(const QString& title, ArithmParamMgr& store)
    : QDialog(QApplication::activeWindow()), m_cStore(store), m_pcUi(std::make_unique<Ui::StepDialog>())
{
    m_pcUi->setupUi(this);
    m_pcLastField = m_pcUi->tblInputs;
    setWindowTitle(title);
    m_pcUi->tblInputs->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_pcUi->tblInputs->horizontalHeader()->setStretchLastSection(true);
    m_pcUi->gbParameters->hide();  // until it has a row
    connect(m_pcUi->btnOK, &QPushButton::clicked, this, &StepDialog::accept);
    connect(m_pcUi->btnCancel, &QPushButton::clicked, this, &StepDialog::reject);
    connect(m_pcUi->tblInputs, &QTableWidget::itemDoubleClicked, this, [this] { accept(); });
}

StepDialog::~StepDialog() = default;

void StepDialog::accept()
{
    if (input().id < 1) {
        m_pcUi->lblHint->setText(QStringLiteral("请先选择输入图像."));
        return;
    }
    QDialog::accept();
}

void StepDialog::listInputs(const std::vector<PictureKind>& kinds, const PictureRef& chosen)
{
    for (const PictureKind kind : kinds) {
        if (kind == PictureKind::Colour) {
            for (const ParamDIB* record : qAsConst(*m_cStore.requestParamDIBMap()))
                addInputRow({kind, record->getID()}, *record, chosen);
        } else {
            for (const ParamGray8* record : qAsConst(*m_cStore.requestParamGray8Map()))
                addInputRow({kind, record->getID()}, *record, chosen);
        }
    }
    if (chosen.id < 1 && m_pcUi->tblInputs->rowCount() > 0)
        m_pcUi->tblInputs->selectRow(0);
}

void StepDialog::addInputRow(const PictureRef& picture, const ArithmParam& record, const PictureRef& chosen)
{
    QTableWidget* table = m_pcUi->tblInputs;
    const int row = table->rowCount();
    table->insertRow(row);
    const QStringList texts{QString::number(picture.id), pictureKindName(picture.kind), record.getName(),
                            record.getDescribe()};
    for (int column = 0; column < texts.size(); ++column)
        table->setItem(row, column, new QTableWidgetItem(texts.at(column)));
    m_vecInputs.push_back(picture);
    if (picture.kind == chosen.kind && picture.id == chosen.id)
        table->selectRow(row);
}

PictureRef StepDialog::input() const
{
    const QList<QTableWidgetSelectionRange> ranges = m_pcUi->tblInputs->selectedRanges();
    return ranges.isEmpty() ? PictureRef() : m_vecInputs.at(static_cast<std::size_t>(ranges.first().topRow()));
}

void StepDialog::placeField(QWidget* field)
{
    QWidget::setTabOrder(m_pcLastField, field);
    m_pcLastField = field;
}

QSpinBox* StepDialog::addNumber(const char* objectName, const QString& label, int lowest, int highest, int value)
{
    auto* box = new QSpinBox(this);
    box->setObjectName(QLatin1String(objectName));
    box->setRange(lowest, highest);
    box->setValue(value);
    m_pcUi->layParameters->addRow(label, box);
    m_pcUi->gbParameters->show();
    placeField(box);
    return box;
}

QComboBox* StepDialog::addChoice(const char* objectName, const QString& label, const QStringList& items, int index)
{
    auto* box = new QComboBox(this);
    box->setObjectName(QLatin1String(objectName));
    box->addItems(items);
    box->setCurrentIndex(index);
    m_pcUi->layParameters->addRow(label, box);
    m_pcUi->gbParameters->show();
    placeField(box);
    return box;
}

QCheckBox* StepDialog::addFlag(const char* objectName, const QString& label, bool value)
{
    auto* box = new QCheckBox(label, this);
    box->setObjectName(QLatin1String(objectName));
    box->setChecked(value);
    m_pcUi->layParameters->addRow(box);
    m_pcUi->gbParameters->show();
    placeField(box);
    return box;
}

QLineEdit* StepDialog::addOutput(const char* objectName, const QString& label, const OutputRef& output)
{
    auto* edit = new QLineEdit(output.name, this);
    edit->setObjectName(QLatin1String(objectName));
    edit->setMinimumWidth(OutputNameWidth);
    m_pcUi->layOutputs->addRow(label, edit);
    placeField(edit);
    return edit;
}
