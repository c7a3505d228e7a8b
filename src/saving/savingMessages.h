#pragma once

#include <QString>

/// Every text that the saving dialogs show besides their forms.
namespace SavingMessages {

inline QString title()
{
    return QStringLiteral("警告");
}

inline QString noBasePath()
{
    return QStringLiteral("未选中基本路径.");
}

inline QString badPictureID()
{
    return QStringLiteral("错误的图像ID.");
}

/// Kept on purpose: without the closing period of the others.
inline QString noPictureSelected()
{
    return QStringLiteral("未选中图像");
}

inline QString folderCaption()
{
    return QStringLiteral("选取目录");
}

}  // namespace SavingMessages
