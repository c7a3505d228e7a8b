#pragma once

#include <QString>

/// Every text that the choice of a source shows.
namespace DataSourceMessages {

inline QString warningTitle()
{
    return QStringLiteral("警告");
}

inline QString notCreated()
{
    return QStringLiteral("创建数据源实例失败.");
}

inline QString nameMissing()
{
    return QStringLiteral("数据名称不能为空");
}

inline QString noSource()
{
    return QStringLiteral("无数据源");
}

}  // namespace DataSourceMessages
