#pragma once

#include "taskMgr/taskTags.h"

#include <QString>

/// What stands between the texts of a step as the program writes it, joined: each text costs one piece more.
struct StepFrame
{
    const TaskTags& m_cTags = TaskTags::get();
    const QString m_strCount = m_cTags.m_cStep.m_strOpen + QLatin1Char('\n') + m_cTags.m_cCount.m_strOpen;
    const QString m_strID = between(m_cTags.m_cCount, m_cTags.m_cArithmID);
    const QString m_strOption = between(m_cTags.m_cArithmID, m_cTags.m_cOption);  ///< The text has lines of its own.
    const QString m_strClass = between(m_cTags.m_cOption, m_cTags.m_cClassName);
    const QString m_strName = between(m_cTags.m_cClassName, m_cTags.m_cArithmName);
    const QString m_strDescribe = between(m_cTags.m_cArithmName, m_cTags.m_cDescribe);
    const QString m_strEnd =
        m_cTags.m_cDescribe.m_strClose + QLatin1Char('\n') + m_cTags.m_cStep.m_strClose + QLatin1Char('\n');

    /// The one set; any thread.
    static const StepFrame& get()
    {
        static const StepFrame s_cFrame;
        return s_cFrame;
    }

private:
    static QString between(const TaskTags::Tag& before, const TaskTags::Tag& behind)
    {
        return before.m_strClose + QLatin1Char('\n') + behind.m_strOpen;
    }
};
