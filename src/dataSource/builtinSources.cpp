#include "dataSource/dataSourceInfo.h"
#include "memoryDisk/memoryDiskCallBack.h"

namespace {

template <typename Source>
DataSource::DataSourceInfo* makeInfo()
{
    return new DataSource::DataSourceInfo(&Source::MemoryDiskRequestPicture, &Source::MemoryDiskReleasePicture,
                                          &Source::MemoryDiskShowConfigDlg, &Source::MemoryDiskSetConfig,
                                          &Source::MemoryDiskStart, &Source::MemoryDiskStop,
                                          &Source::MemoryDiskRemoveInstance, &Source::MemoryDiskGetLastError);
}

}  // namespace

void DataSource::addMemoryDisks()
{
    addKind(QStringLiteral("Memory Disk 0"), makeInfo<MemoryDiskCallBack0>());
    addKind(QStringLiteral("Memory Disk 1"), makeInfo<MemoryDiskCallBack1>());
    addKind(QStringLiteral("Memory Disk 2"), makeInfo<MemoryDiskCallBack2>());
    addKind(QStringLiteral("Memory Disk 3"), makeInfo<MemoryDiskCallBack3>());
    addKind(QStringLiteral("Memory Disk 4"), makeInfo<MemoryDiskCallBack4>());
    addKind(QStringLiteral("Memory Disk 5"), makeInfo<MemoryDiskCallBack5>());
}
