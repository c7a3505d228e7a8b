#include "toGrayDialog.h"

#include <QLineEdit>

ToGrayDialog::ToGrayDialog(const QString& option, ArithmParamMgr& store)
    : StepDialog(QStringLiteral("彩色转灰度"), store), m_cOption(ToGrayOption::read(option))
{
    listInputs({PictureKind::Colour}, m_cOption.input);
    m_pcOutput = addOutput("edtOutput", QStringLiteral("灰度图像"), m_cOption.output);
}

QString ToGrayDialog::acceptedOption()
{
    m_cOption.input = input();
    m_cOption.output.rename(m_pcOutput->text());
    m_cOption.output.make(store(), &ArithmParamMgr::getParamGray8);
    return m_cOption.write();
}
