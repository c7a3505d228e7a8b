#pragma once

#include "threadAnnotations.h"

#include <QLibrary>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QString>
#include <QStringList>

#include <atomic>

class Arithm;

/**
 * The registry of every algorithm: the built-ins, then the libraries of "baseArithm", then those of "extArithm".
 *
 * Filled once, when it is made, and never changed afterwards; lookups may come from any thread.
 */
class ArithmFactory
{
public:
    struct ArithmInfo
    {
        QString m_strClass;  ///< Menu group.
        QString m_strName;   ///< Display name.
        Arithm* m_pcArithm;  ///< Lives until the program ends.
    };

    static ArithmFactory* getInstance();  ///< Made on first use, discovery included; any thread.

    QList<ArithmInfo>* getArithms();
    Arithm* getArithm(QString id);                 ///< The first registered under the identifier; null when none is.
    QString getArithm(QString cls, QString name);  ///< The identifier of the first of that class and name, or empty.
    QStringList getArithmNames(QString cls);       ///< In order of registration, each once.
    QStringList getArithmClassNames();             ///< In order of registration, each once.

    static std::atomic<ArithmFactory*> s_pcAF;
    static QMutex s_cMtxForAF;  ///< Guards creation, discovery included.

private:
    /**
     * Destroys the registry when the process ends: made before main, so it dies after all that is made later and may
     * still run algorithms.
     */
    struct AtProcessEnd
    {
        ~AtProcessEnd();
    };
    static AtProcessEnd s_cAtProcessEnd;

    ArithmFactory();
    ~ArithmFactory();  ///< Unloads the registered libraries.

    void registerBuiltins();                            // builtinArithms.cpp
    void discover(const QString& folder, bool extLib);  // arithmDiscovery.cpp
    void registerArithm(const QString& cls, const QString& name, Arithm* arithm);
    Arithm* findArithm(const QString& id) const;

    QList<QLibrary*> m_lstLibraries;  ///< Owned; registered libraries in order of registration.
    QList<ArithmInfo> m_lstArithms;
    Mutex m_cMtxCache;                                          ///< Innermost.
    QMap<QString, Arithm*> m_mapCache GUARDED_BY(m_cMtxCache);  ///< Identifiers already looked up.
};
