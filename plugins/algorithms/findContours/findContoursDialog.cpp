#include "findContoursDialog.h"

#include <QLineEdit>
#include <QSpinBox>

FindContoursDialog::FindContoursDialog(const QString& option, ArithmParamMgr& store)
    : StepDialog(QStringLiteral("查找轮廓"), store), m_cOption(FindContoursOption::read(option))
{
    listInputs({PictureKind::Gray}, m_cOption.input);
    m_pcMinSize = addNumber("spnMinSize", QStringLiteral("最小面积"), 0, 1000000000, m_cOption.minSize);
    m_pcMinPoints = addNumber("spnMinPoints", QStringLiteral("最少顶点数"), 3, 9999, m_cOption.minPoints);
    m_pcTolerance = addNumber("spnTolerance", QStringLiteral("近似误差"), 0, 1000, m_cOption.tolerance);
    m_pcOutput = addOutput("edtOutput", QStringLiteral("多边形"), m_cOption.output);
}

QString FindContoursDialog::acceptedOption()
{
    m_cOption.input = input();
    m_cOption.minSize = m_pcMinSize->value();
    m_cOption.minPoints = m_pcMinPoints->value();
    m_cOption.tolerance = m_pcTolerance->value();
    m_cOption.output.rename(m_pcOutput->text());
    m_cOption.output.make(store(), &ArithmParamMgr::getParamPolys);
    return m_cOption.write();
}
