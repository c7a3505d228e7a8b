#pragma once

#include <QString>

/// Every text that the drawing dialog shows beyond those of its form.
namespace DrawingMessages {

inline QString warningTitle()
{
    return QStringLiteral("警告");
}

inline QString nothingChosen()
{
    return QStringLiteral("未选中绘制对象.");
}

inline QString chosenIsGone()
{
    return QStringLiteral("所选择的数据对象不存在!");
}

}  // namespace DrawingMessages
