#include "arithm/arithmFactory.h"

#include "arithm/arithm.h"
#include "pluginLibrary.h"
#include "threadGuards.h"

#include <QVector>

std::atomic<ArithmFactory*> ArithmFactory::s_pcAF{nullptr};
QMutex ArithmFactory::s_cMtxForAF;
ArithmFactory::AtProcessEnd ArithmFactory::s_cAtProcessEnd;

ArithmFactory::AtProcessEnd::~AtProcessEnd()
{
    delete s_pcAF.exchange(nullptr);
}

ArithmFactory* ArithmFactory::getInstance()
{
    if (ArithmFactory* factory = s_pcAF.load(std::memory_order_acquire))
        return factory;
    const ThreadGuards::MutexGuard guard(s_cMtxForAF);
    if (!s_pcAF.load(std::memory_order_acquire))
        s_pcAF.store(new ArithmFactory, std::memory_order_release);
    return s_pcAF.load(std::memory_order_acquire);
}

ArithmFactory::ArithmFactory()
{
    registerBuiltins();
    const QString folder = PluginLibrary::applicationFolder();
    discover(folder + QStringLiteral("/baseArithm/"), false);
    discover(folder + QStringLiteral("/extArithm/"), true);
}

ArithmFactory::~ArithmFactory()
{
    for (QLibrary* library : qAsConst(m_lstLibraries))
        library->unload();
    qDeleteAll(m_lstLibraries);
}

void ArithmFactory::registerArithm(const QString& cls, const QString& name, Arithm* arithm)
{
    // Never deleted, because callers hold plain pointers: this list only keeps them reachable.
    static auto* const handles = new QVector<Arithm*>;
    handles->append(arithm);
    m_lstArithms.append({cls, name, arithm});
}

QList<ArithmFactory::ArithmInfo>* ArithmFactory::getArithms()
{
    return &m_lstArithms;
}

Arithm* ArithmFactory::getArithm(QString id)
{
    {
        const Guard guard(m_cMtxCache);
        if (Arithm* known = m_mapCache.value(id))
            return known;
    }
    Arithm* found = findArithm(id);
    if (found) {
        const Guard guard(m_cMtxCache);
        m_mapCache.insert(id, found);
    }
    return found;
}

Arithm* ArithmFactory::findArithm(const QString& id) const
{
    for (const ArithmInfo& info : m_lstArithms) {
        if (info.m_pcArithm->getID() == id)
            return info.m_pcArithm;
    }
    return nullptr;
}

QString ArithmFactory::getArithm(QString cls, QString name)
{
    for (const ArithmInfo& info : qAsConst(m_lstArithms)) {
        if (info.m_strClass == cls && info.m_strName == name)
            return info.m_pcArithm->getID();
    }
    return {};
}

QStringList ArithmFactory::getArithmNames(QString cls)
{
    QStringList names;
    for (const ArithmInfo& info : qAsConst(m_lstArithms)) {
        if (info.m_strClass == cls && !names.contains(info.m_strName))
            names.append(info.m_strName);
    }
    return names;
}

QStringList ArithmFactory::getArithmClassNames()
{
    QStringList classes;
    for (const ArithmInfo& info : qAsConst(m_lstArithms)) {
        if (!classes.contains(info.m_strClass))
            classes.append(info.m_strClass);
    }
    return classes;
}
