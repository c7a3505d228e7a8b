#include "findCornersDialog.h"

#include <QLineEdit>
#include <QSpinBox>

FindCornersDialog::FindCornersDialog(const QString& option, ArithmParamMgr& store)
    : StepDialog(QStringLiteral("查找角点"), store), m_cOption(FindCornersOption::read(option))
{
    listInputs({PictureKind::Gray}, m_cOption.input);
    m_pcMaxCount = addNumber("spnMaxCount", QStringLiteral("最多个数"), 1, 9999, m_cOption.maxCount);
    m_pcQuality = addNumber("spnQuality", QStringLiteral("最低质量(%)"), 1, 100, m_cOption.quality);
    m_pcMinDistance = addNumber("spnMinDistance", QStringLiteral("最小距离"), 0, 9999, m_cOption.minDistance);
    m_pcOutput = addOutput("edtOutput", QStringLiteral("角点"), m_cOption.output);
}

QString FindCornersDialog::acceptedOption()
{
    m_cOption.input = input();
    m_cOption.maxCount = m_pcMaxCount->value();
    m_cOption.quality = m_pcQuality->value();
    m_cOption.minDistance = m_pcMinDistance->value();
    m_cOption.output.rename(m_pcOutput->text());
    m_cOption.output.make(store(), &ArithmParamMgr::getParamPoints);
    return m_cOption.write();
}
