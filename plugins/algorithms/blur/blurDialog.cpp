#include "blurDialog.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>

BlurDialog::BlurDialog(const QString& option, ArithmParamMgr& store)
    : StepDialog(QStringLiteral("模糊"), store), m_cOption(BlurOption::read(option))
{
    listInputs({PictureKind::Colour, PictureKind::Gray}, m_cOption.input);
    m_pcMethod = addChoice("cmbMethod", QStringLiteral("方法"),
                           {QStringLiteral("均值"), QStringLiteral("高斯"), QStringLiteral("中值")}, m_cOption.method);
    m_pcSize = addNumber("spnSize", QStringLiteral("窗口大小"), 1, BlurOption::LargestSize, m_cOption.size);
    m_pcSize->setSingleStep(2);  // the window is odd
    m_pcOutput = addOutput("edtOutput", QStringLiteral("模糊图像"), m_cOption.output);
}

QString BlurDialog::acceptedOption()
{
    m_cOption.input = input();
    m_cOption.method = m_pcMethod->currentIndex();
    m_cOption.size = m_pcSize->value() | 1;
    m_cOption.output.rename(m_pcOutput->text());
    // The output keeps its identifier when the kind of the input changes; its old record must not stay beside it.
    if (m_cOption.input.kind == PictureKind::Colour) {
        store().removeParamGray8(m_cOption.output.id);
        m_cOption.output.make(store(), &ArithmParamMgr::getParamDIB);
    } else {
        store().removeParamDIB(m_cOption.output.id);
        m_cOption.output.make(store(), &ArithmParamMgr::getParamGray8);
    }
    return m_cOption.write();
}
