#include "testPatternDialog.h"

#include "testPatternOption.h"
#include "ui_testPatternDialog.h"

#include <QApplication>

TestPatternDialog::TestPatternDialog(const QString& config)
    : QDialog(QApplication::activeWindow()), m_pcUi(std::make_unique<Ui::TestPatternDialog>())
{
    m_pcUi->setupUi(this);
    const TestPatternOption option = TestPatternOption::read(config);
    m_pcUi->spnWidth->setValue(option.scene.width);
    m_pcUi->spnHeight->setValue(option.scene.height);
    m_pcUi->spnDiscs->setValue(option.scene.discs);
    m_pcUi->spnBars->setValue(option.scene.bars);
    m_pcUi->chkText->setChecked(option.scene.text);
    m_pcUi->spnRate->setValue(option.rate);
    connect(m_pcUi->btnOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_pcUi->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

TestPatternDialog::~TestPatternDialog() = default;

QString TestPatternDialog::configText() const
{
    TestPatternOption option;
    option.scene.width = m_pcUi->spnWidth->value();
    option.scene.height = m_pcUi->spnHeight->value();
    option.scene.discs = m_pcUi->spnDiscs->value();
    option.scene.bars = m_pcUi->spnBars->value();
    option.scene.text = m_pcUi->chkText->isChecked();
    option.rate = m_pcUi->spnRate->value();
    return option.write();
}
