#include "thresholdDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>

ThresholdDialog::ThresholdDialog(const QString& option, ArithmParamMgr& store)
    : StepDialog(QStringLiteral("二值化"), store), m_cOption(ThresholdOption::read(option))
{
    listInputs({PictureKind::Gray}, m_cOption.input);
    m_pcMethod =
        addChoice("cmbMethod", QStringLiteral("方法"),
                  {QStringLiteral("固定阈值"), QStringLiteral("大津法"), QStringLiteral("自适应")}, m_cOption.method);
    m_pcValue = addNumber("spnValue", QStringLiteral("固定阈值"), 0, 255, m_cOption.value);
    m_pcBlockSize = addNumber("spnBlockSize", QStringLiteral("自适应窗口"), ThresholdOption::SmallestBlock,
                              ThresholdOption::LargestBlock, m_cOption.blockSize);
    m_pcBlockSize->setSingleStep(2);  // the window is odd
    m_pcOffset = addNumber("spnOffset", QStringLiteral("自适应偏移"), -255, 255, m_cOption.offset);
    m_pcInvert = addFlag("chkInvert", QStringLiteral("反相"), m_cOption.invert);
    m_pcOutput = addOutput("edtOutput", QStringLiteral("二值图像"), m_cOption.output);

    const auto showUsed = [this](int method) {
        m_pcValue->setEnabled(method == ThresholdOption::Fixed);
        m_pcBlockSize->setEnabled(method == ThresholdOption::Adaptive);
        m_pcOffset->setEnabled(method == ThresholdOption::Adaptive);
    };
    connect(m_pcMethod, QOverload<int>::of(&QComboBox::currentIndexChanged), this, showUsed);
    showUsed(m_cOption.method);
}

QString ThresholdDialog::acceptedOption()
{
    m_cOption.input = input();
    m_cOption.method = m_pcMethod->currentIndex();
    m_cOption.value = m_pcValue->value();
    m_cOption.blockSize = m_pcBlockSize->value() | 1;
    m_cOption.offset = m_pcOffset->value();
    m_cOption.invert = m_pcInvert->isChecked();
    m_cOption.output.rename(m_pcOutput->text());
    m_cOption.output.make(store(), &ArithmParamMgr::getParamGray8);
    return m_cOption.write();
}
