#pragma once

#include <QString>

/// Every text that the task engine shows or reports; each stands here once.
namespace TaskMessages {

// ---- Passes
// -----------------------------------------------------------------------------------------------------------

inline QString noDataSource()
{
    return QStringLiteral("No datasource assigned.");
}

inline QString timeOut()
{
    return QStringLiteral(
        "Execute time out, there is a infinite loop or have a long waiting event, continue to wait?.");
}

// Kept on purpose: no blank between the closing quote and "is".
inline QString arithmNotExisted(const QString& arithmName)
{
    return QStringLiteral("Arithm\"") + arithmName + QStringLiteral("\"is not existed.");
}

inline QString stepError(const QString& arithmName, const QString& text)
{
    return QStringLiteral("算法\"") + arithmName + QStringLiteral("\"出错, 错误信息:") + text;
}

// Kept on purpose: an end-of-task step that fails in runTaskOnce is reported in other words than in a task's thread.
inline QString singleRunError(const QString& arithmName, const QString& text)
{
    return QStringLiteral("Arithm \"") + arithmName + QStringLiteral("\" error, message:") + text;
}

// ---- The run button
// ---------------------------------------------------------------------------------------------------

inline QString startTask()
{
    return QStringLiteral("执行任务");
}

inline QString stopTask()
{
    return QStringLiteral("停止任务");
}

// ---- The context menu of the flow table
// -------------------------------------------------------------------------------

inline QString menuAddArithm()
{
    return QStringLiteral("添加算法");
}

inline QString menuAddExtArithm()
{
    return QStringLiteral("添加扩展算法");
}

inline QString menuModify()
{
    return QStringLiteral("修改配置");
}

inline QString menuDelete()
{
    return QStringLiteral("删除");
}

inline QString menuRunHere()
{
    return QStringLiteral("执行到选中算法");
}

// ---- Boxes of the editing commands
// ------------------------------------------------------------------------------------

inline QString boxTitle()
{
    return QStringLiteral("Warning");
}

inline QString noArithmToRunTo()
{
    return QStringLiteral("No arithm is selected.");
}

inline QString noArithmSelected()
{
    return QStringLiteral("No arithm have been selected.");
}

inline QString arithmNotFound()
{
    return QStringLiteral("Arithm is not finded.");
}

inline QString arithmToModifyNotFound()
{
    return QStringLiteral("No arithm have been selected, please delete it.");
}

// Kept on purpose: the comma in the middle is a full-width one.
inline QString stepsOutOfStep()
{
    return QStringLiteral("Serious error, arithm num is not equal with arithm list，please reconfig this task.");
}

inline QString confirmDelete()
{
    return QStringLiteral("Would you like to delete the arithm? It can not be recover after delete.");
}

}  // namespace TaskMessages
