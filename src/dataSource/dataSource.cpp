#include "dataSource/dataSource.h"

#include "dataSource/dataSourceInfo.h"
#include "pluginLibrary.h"
#include "threadGuards.h"

std::atomic<DataSource*> DataSource::s_pcThis{nullptr};
QMutex DataSource::s_cMutexForThis;
DataSource::AtProcessEnd DataSource::s_cAtProcessEnd;

namespace {

const QVector<const char*> EntryNames = {"getDataSourceName", "requestPicture", "releasePicture", "showConfigDlg",
                                         "setConfig",         "start",          "stop",           "removeInstance",
                                         "getLastError"};
enum EntryIndex
{
    GetDataSourceName,
    RequestPicture,
    ReleasePicture,
    ShowConfigDlg,
    SetConfig,
    Start,
    Stop,
    RemoveInstance,
    GetLastError,
};
using GetText = const char* (*)();

DataSource::DataSourceInfo* makeInfo(const PluginLibrary& library)
{
    using Info = DataSource::DataSourceInfo;
    return new Info(
        library.entry<Info::RequestPicture>(RequestPicture), library.entry<Info::ReleasePicture>(ReleasePicture),
        library.entry<Info::ShowConfigDlg>(ShowConfigDlg), library.entry<Info::SetConfig>(SetConfig),
        library.entry<Info::Start>(Start), library.entry<Info::Stop>(Stop),
        library.entry<Info::RemoveInstance>(RemoveInstance), library.entry<Info::GetLastError>(GetLastError));
}

}  // namespace

DataSource::AtProcessEnd::~AtProcessEnd()
{
    delete s_pcThis.exchange(nullptr);
}

void DataSource::makeInstance()
{
    const ThreadGuards::MutexGuard guard(s_cMutexForThis);
    if (!s_pcThis.load(std::memory_order_acquire))
        s_pcThis.store(new DataSource, std::memory_order_release);
}

DataSource::DataSource()
{
    initDataSources();
}

DataSource::~DataSource()
{
    qDeleteAll(m_mapKinds);
    for (QLibrary* library : qAsConst(m_lstLibraries))
        library->unload();
    qDeleteAll(m_lstLibraries);
}

void DataSource::initDataSources()
{
    const QStringList paths =
        PluginLibrary::filesIn(PluginLibrary::applicationFolder() + QStringLiteral("/DataSource/"));
    for (const QString& path : paths) {
        PluginLibrary library(path, EntryNames);
        if (library.state() != PluginLibrary::State::Complete)
            continue;
        addKind(QString::fromLocal8Bit(library.entry<GetText>(GetDataSourceName)()), makeInfo(library));
        m_lstLibraries.append(library.takeLibrary().release());
    }
    addMemoryDisks();
}

void DataSource::addKind(const QString& name, DataSourceInfo* info)
{
    DataSourceInfo*& entry = m_mapKinds[name];
    delete entry;
    entry = info;
}
