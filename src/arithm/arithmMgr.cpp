#include "arithm/arithmMgr.h"

#include "arithm/arithmFactory.h"
#include "threadGuards.h"

std::atomic<ArithmMgr*> ArithmMgr::s_pcInstance{nullptr};
QMutex ArithmMgr::s_cMtxForIns;

ArithmMgr* ArithmMgr::getInstance()
{
    if (ArithmMgr* manager = s_pcInstance.load(std::memory_order_acquire))
        return manager;
    const ThreadGuards::MutexGuard guard(s_cMtxForIns);
    if (!s_pcInstance.load(std::memory_order_acquire))
        s_pcInstance.store(new ArithmMgr, std::memory_order_release);
    return s_pcInstance.load(std::memory_order_acquire);
}

Arithm* ArithmMgr::getArithm(QString id)
{
    return ArithmFactory::getInstance()->getArithm(id);
}

QString ArithmMgr::getArithm(QString cls, QString name)
{
    return ArithmFactory::getInstance()->getArithm(cls, name);
}

QStringList ArithmMgr::getArithmNames(QString cls)
{
    return ArithmFactory::getInstance()->getArithmNames(cls);
}

QStringList ArithmMgr::getArithmClassNames()
{
    return ArithmFactory::getInstance()->getArithmClassNames();
}
