#include "arithm/arithm.h"

Arithm::Arithm(bool extLib, GetID id, ShowConfigWindow configWindow, Execute run)
    : m_pfnGetID(id), m_pfnShowConfigWindow(configWindow), m_pfnExecute(run), m_bExtLib(extLib)
{
}

bool Arithm::IsExtLib() const
{
    return m_bExtLib;
}

QString Arithm::getID() const
{
    return m_pfnGetID ? QString::fromUtf8(m_pfnGetID()) : QString();
}

QString Arithm::showConfigWindow(QString option, ArithmParamMgr* store) const
{
    if (!m_pfnShowConfigWindow)
        return {};
    QByteArray utf8 = option.toUtf8();
    return QString::fromUtf8(m_pfnShowConfigWindow(utf8.data(), store, true));
}

QString Arithm::execute(QString& option, ArithmParamMgr* store) const
{
    QByteArray utf8 = option.toUtf8();
    return QString::fromUtf8(executeUtf8(utf8.data(), store));
}
