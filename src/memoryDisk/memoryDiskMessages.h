#pragma once

#include <QString>

/// Every text of the memory disks that is shown or returned.
namespace MemoryDiskMessages {

/// The code of the refused disk stands as one raw character, not as digits: only its low eight bits are kept.
inline QString noSuchDisk(int disk)
{
    return QStringLiteral("指定的内存盘:") + QChar(static_cast<ushort>(disk & 0xFF)) + QStringLiteral(" 不存在.");
}

inline QString noSuchInput()
{
    return QStringLiteral("指定的输入变量不存在.");
}

inline QString unsupportedType(const QString& type)
{
    return QStringLiteral("不支持的输入数据格式:") + type;
}

inline QString warningTitle()
{
    return QStringLiteral("警告");
}

inline QString noInputChosen()
{
    return QStringLiteral("未选择输入变量.");
}

}  // namespace MemoryDiskMessages
