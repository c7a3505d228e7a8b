#pragma once

#include <QString>

/// Every text that the source reports as its last error.
namespace FolderMessages {

inline QString noFolder()
{
    return QStringLiteral("没有选择图片文件夹.");
}
inline QString folderMissing(const QString& folder)
{
    return QStringLiteral("文件夹不存在: %1").arg(folder);
}
inline QString folderEmpty(const QString& folder)
{
    return QStringLiteral("文件夹中没有图片: %1").arg(folder);
}
inline QString unreadable(const QString& name)
{
    return QStringLiteral("无法读取图片: %1").arg(name);
}
inline QString noThread()
{
    return QStringLiteral("无法启动读取图片的线程.");
}
inline QString noMemory()
{
    return QStringLiteral("内存不足.");
}
inline QString tooLarge(const QString& name)
{
    return QStringLiteral("图片太大: %1").arg(name);
}

}  // namespace FolderMessages
