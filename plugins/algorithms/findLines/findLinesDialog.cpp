#include "findLinesDialog.h"

#include <QLineEdit>
#include <QSpinBox>

FindLinesDialog::FindLinesDialog(const QString& option, ArithmParamMgr& store)
    : StepDialog(QStringLiteral("查找直线"), store), m_cOption(FindLinesOption::read(option))
{
    listInputs({PictureKind::Gray}, m_cOption.input);
    m_pcLowEdge = addNumber("spnLowEdge", QStringLiteral("边缘低阈值"), 0, 9999, m_cOption.lowEdge);
    m_pcHighEdge = addNumber("spnHighEdge", QStringLiteral("边缘高阈值"), 0, 9999, m_cOption.highEdge);
    m_pcVotes = addNumber("spnVotes", QStringLiteral("最少票数"), 1, 99999, m_cOption.votes);
    m_pcMinLength = addNumber("spnMinLength", QStringLiteral("最小长度"), 1, 99999, m_cOption.minLength);
    m_pcMaxGap = addNumber("spnMaxGap", QStringLiteral("最大间隔"), 0, 9999, m_cOption.maxGap);
    m_pcOutput = addOutput("edtOutput", QStringLiteral("直线"), m_cOption.output);
}

QString FindLinesDialog::acceptedOption()
{
    m_cOption.input = input();
    m_cOption.lowEdge = m_pcLowEdge->value();
    m_cOption.highEdge = m_pcHighEdge->value();
    m_cOption.votes = m_pcVotes->value();
    m_cOption.minLength = m_pcMinLength->value();
    m_cOption.maxGap = m_pcMaxGap->value();
    m_cOption.output.rename(m_pcOutput->text());
    m_cOption.output.make(store(), &ArithmParamMgr::getParamLines);
    return m_cOption.write();
}
