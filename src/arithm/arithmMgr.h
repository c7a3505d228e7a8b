#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

#include <atomic>

class Arithm;

/// The task engine's door to the algorithm registry: forwards to ArithmFactory. Any thread.
class ArithmMgr
{
public:
    static ArithmMgr* getInstance();

    Arithm* getArithm(QString id);
    QString getArithm(QString cls, QString name);
    QStringList getArithmNames(QString cls);
    QStringList getArithmClassNames();

    static std::atomic<ArithmMgr*> s_pcInstance;
    static QMutex s_cMtxForIns;  ///< Guards the creation of the instance.

private:
    ArithmMgr() = default;
};
