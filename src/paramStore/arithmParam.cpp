#include "arithmParam.h"

#include "paramData.h"

ArithmParam::ArithmParam(Private* data) : m_pcData(data) {}

ArithmParam::~ArithmParam()
{
    delete m_pcData;
}

int ArithmParam::getID() const
{
    return m_pcData->m_nID;
}

QString ArithmParam::getName() const
{
    const Guard lock(m_pcData->m_cMutex);
    return m_pcData->m_strName;
}

void ArithmParam::setName(const QString& name)
{
    QString text = name;  // Becomes the old text, which dies after the lock is released.
    const Guard lock(m_pcData->m_cMutex);
    m_pcData->m_strName.swap(text);
}

QString ArithmParam::getDescribe() const
{
    const Guard lock(m_pcData->m_cMutex);
    return m_pcData->m_strDescribe;
}

void ArithmParam::setDescribe(const QString& describe)
{
    QString text = describe;  // Becomes the old text, which dies after the lock is released.
    const Guard lock(m_pcData->m_cMutex);
    m_pcData->m_strDescribe.swap(text);
}
