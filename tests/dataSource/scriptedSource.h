#pragma once

#include "dataSource/dataSourceInfo.h"
#include "dataSource/dataSourceInstance.h"
#include "paramStore/arithmParamMgr.h"
#include "pluginFolders.h"

#include <memory>

using Instance = std::unique_ptr<DataSource::DataSourceInstance>;

/// One store and the scripted source of the suite, ready to make instances of.
class ScriptedSource
{
public:
    /// Fills the plug-in folder and makes the registry; once in a program.
    void install()
    {
        PluginFolders::clear();
        m_strPath = PluginFolders::addSource("sourceScripted");
        PluginFolders::addSource("sourceNull");
        DataSource::getInstance();
    }

    void newStore() { m_pcStore.reset(ArithmParamMgr::newInstance()); }
    ArithmParamMgr* store() const { return m_pcStore.get(); }
    const QString& path() const { return m_strPath; }

    Instance create(const QString& text) const
    {
        return Instance(DataSource::getInstance()->createDataSourceFromConfigString(store(), text));
    }

    /// A source whose output is record 3, named "img" and described "cam".
    Instance create(const QString& type, const QString& config) const { return create(text(type, "3", config)); }

    static QString text(const QString& type, const QString& id, const QString& config)
    {
        return QStringLiteral(
                   "<DSName>Test Scripted</DSName><OutputName>img</OutputName>"
                   "<OutputDescribe>cam</OutputDescribe><OutputType>%1</OutputType>"
                   "<OutputID>%2</OutputID><Config>%3</Config>")
            .arg(type, id, config);
    }

    /// Calls of an entry point for the instance that was configured last.
    int calls(const char* entry) const
    {
        return PluginFolders::sourceCalls(m_strPath, entry, PluginFolders::lastInstance(m_strPath));
    }

private:
    struct Deleter
    {
        void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
    };

    QString m_strPath;
    std::unique_ptr<ArithmParamMgr, Deleter> m_pcStore;
};
