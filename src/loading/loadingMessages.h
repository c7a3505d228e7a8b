#pragma once

#include <QString>

/// Every text that the loading dialog shows besides its form.
namespace LoadingMessages {

inline QString title()
{
    return QStringLiteral("警告");
}

inline QString unsupportedFile()
{
    return QStringLiteral("不支持的文件格式.");
}

inline QString only8And24Bits()
{
    return QStringLiteral("仅支持8位和24位.");
}

inline QString noPicture()
{
    return QStringLiteral("未选中图片.");
}

inline QString noOutputName()
{
    return QStringLiteral("未定义输出名称.");
}

inline QString openCaption()
{
    return QStringLiteral("打开图像文件");
}

inline QString openFilter()
{
    return QStringLiteral("Images (*.png *.bmp *.jpg)");
}

}  // namespace LoadingMessages
