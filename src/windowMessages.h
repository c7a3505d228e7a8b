#pragma once

#include <QString>

/// Every text that the main window's sources show; those of the forms stand in the .ui files.
namespace WindowMessages {

/// As much of a text as anyone reads: laying out what a faulty library may print would stop the window for minutes.
inline QString readable(const QString& text, int mostCharacters, int mostLines)
{
    int end = qMin(text.size(), mostCharacters);
    for (int at = 0, line = 0; at < end; ++at) {
        if (text.at(at) == QLatin1Char('\n') && ++line >= mostLines)
            end = at;
    }
    return end == text.size() ? text : text.left(end) + QChar(0x2026);
}

inline QString programName()
{
    return QStringLiteral("Lumivant");
}
inline QString titleOfProject(const QString& path)
{
    return QStringLiteral("Lumivant - ") + path;
}

// Boxes
inline QString warning()
{
    return QStringLiteral("警告");
}
inline QString askDelete()
{
    return QStringLiteral("是否确定要删除当前显示的任务.");
}
inline QString askNew()
{
    return QStringLiteral("当前所有任务将被清除, 是否确定?");
}
inline QString askOverwrite()
{
    return QStringLiteral("是否覆盖当前文件?");
}
inline QString askExit()
{
    return QStringLiteral("是否确认退出?");
}
inline QString fileFailed()
{
    return QStringLiteral("打开文件失败.");
}

// File dialogs
inline QString openCaption()
{
    return QStringLiteral("打开文件");
}
inline QString saveCaption()
{
    return QStringLiteral("保存文件");
}
inline QString projectFilter()
{
    return QStringLiteral("项目文件(*.lmv)");
}
inline QString projectSuffix()
{
    return QStringLiteral(".lmv");
}

// Task tab
inline QString runTask()
{
    return QStringLiteral("执行任务");
}
inline QString dataSource()
{
    return QStringLiteral("图片来源");
}
inline QString autoThread()
{
    return QStringLiteral("自动线程");
}
inline QString boundThread(int number)
{
    return QStringLiteral("绑定线程") + QString::number(number);
}
inline QString view(int number)
{
    return QStringLiteral("视窗") + QString::number(number);
}
inline QString columnName()
{
    return QStringLiteral("功能名称");
}
inline QString columnCount()
{
    return QStringLiteral("次数");
}
inline QString columnTime()
{
    return QStringLiteral("耗时");
}
inline QString tableTip()
{
    return QStringLiteral("次数999999999(9个9)表示任务结束时才执行的算法");
}

}  // namespace WindowMessages
