#pragma once

#include <QLibrary>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QString>

#include <atomic>

class ArithmParamMgr;

/**
 * The registry of data source kinds by display name: the libraries of "DataSource", then the six memory disks.
 *
 * Filled once, on first use, and never changed afterwards.
 */
class DataSource
{
public:
    class DataSourceInfo;      // dataSourceInfo.h
    class DataSourceInstance;  // dataSourceInstance.h

    static DataSource* getInstance()
    {
        if (!s_pcThis.load(std::memory_order_acquire))
            makeInstance();
        return s_pcThis.load(std::memory_order_acquire);
    }

    /**
     * Lets the user choose and configure a source.
     *
     * @param config the configuration text to start from; replaced when the user accepts, else left alone
     * @return the configured instance, owned by the caller; null when the user cancelled
     */
    DataSourceInstance* newDataSource(ArithmParamMgr* store, QString& config);

    /// Rebuilds an instance from saved text; owned by the caller; null when the kind is unknown.
    DataSourceInstance* createDataSourceFromConfigString(ArithmParamMgr* store, QString text);

    /// All kinds in code-unit order of their names; read only.
    const QMap<QString, DataSourceInfo*>* getKinds() const { return &m_mapKinds; }

    static std::atomic<DataSource*> s_pcThis;
    static QMutex s_cMutexForThis;  ///< Guards the creation of the instance.

private:
    /**
     * Destroys the registry when the process ends: made before main, so it dies after all that is made later and may
     * still use a source.
     */
    struct AtProcessEnd
    {
        ~AtProcessEnd();
    };
    static AtProcessEnd s_cAtProcessEnd;

    DataSource();
    ~DataSource();
    static void makeInstance();
    void initDataSources();
    void addMemoryDisks();                                    // builtinSources.cpp
    void addKind(const QString& name, DataSourceInfo* info);  ///< Replaces a kind of the same name.

    QMap<QString, DataSourceInfo*> m_mapKinds;  ///< Owned.
    QList<QLibrary*> m_lstLibraries;            ///< Owned; registered libraries.
};
