#pragma once

#include <QString>

/// The elements of a project text.
struct TaskTags
{
    struct Tag
    {
        QString m_strOpen;
        QString m_strClose;
    };

    const Tag m_cTask{QStringLiteral("<=TaskInfo=>"), QStringLiteral("</=TaskInfo=>")};
    const Tag m_cName = dashed("TaskName");
    const Tag m_cKernel = dashed("Kernel");
    const Tag m_cView = dashed("View");
    const Tag m_cDataSource = dashed("DataSource");
    const Tag m_cStep = dashed("TaskItem");
    const Tag m_cCount = dashed("MaxExeTimes");
    const Tag m_cArithmID = dashed("ArithmID");
    const Tag m_cOption = dashed("OptionStr");
    const Tag m_cClassName = dashed("ClassName");
    const Tag m_cArithmName = dashed("ArithmName");
    const Tag m_cDescribe = dashed("Describe");

    /// The one set; any thread.
    static const TaskTags& get()
    {
        static const TaskTags s_cTags;
        return s_cTags;
    }

private:
    /// "<-Name->" and "</-Name->".
    static Tag dashed(const char* name)
    {
        return {QLatin1String("<-") + QLatin1String(name) + QLatin1String("->"),
                QLatin1String("</-") + QLatin1String(name) + QLatin1String("->")};
    }
};
