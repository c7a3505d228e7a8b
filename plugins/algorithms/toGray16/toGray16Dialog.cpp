#include "toGray16Dialog.h"

#include <QLineEdit>

ToGray16Dialog::ToGray16Dialog(const QString& option, ArithmParamMgr& store)
    : StepDialog(QStringLiteral("彩色转16位灰度"), store), m_cOption(ToGray16Option::read(option))
{
    listInputs({PictureKind::Colour}, m_cOption.input);
    m_pcOutput = addOutput("edtOutput", QStringLiteral("16位灰度图像"), m_cOption.output);
}

QString ToGray16Dialog::acceptedOption()
{
    m_cOption.input = input();
    m_cOption.output.rename(m_pcOutput->text());
    m_cOption.output.make(store(), &ArithmParamMgr::getParamGray16);
    return m_cOption.write();
}
