#include "globalFunction.h"
#include "paramStore/arithmParamMgr.h"
#include "taskMgr/projectText.h"
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskTags.h"
#include "taskMgr/taskText.h"

// The elements of a task in the project text. Names and numbers stand on the line of their markers, option texts and
// the text of the data source on lines of their own.

namespace {

void appendLine(QString& text, const TaskTags::Tag& tag, const QString& body)
{
    text += tag.m_strOpen;
    text += body;
    text += tag.m_strClose;
    text += QLatin1Char('\n');
}

void appendBlock(QString& text, const TaskTags::Tag& tag, const QString& body)
{
    text += tag.m_strOpen;
    text += QLatin1Char('\n');
    text += body;
    text += QLatin1Char('\n');
    text += tag.m_strClose;
    text += QLatin1Char('\n');
}

/// What stands around the texts of a step, joined so that each text costs one piece more.
struct StepFrame
{
    const TaskTags& m_cTags = TaskTags::get();
    const QString m_strCount = m_cTags.m_cStep.m_strOpen + QLatin1Char('\n') + m_cTags.m_cCount.m_strOpen;
    const QString m_strID = between(m_cTags.m_cCount, m_cTags.m_cArithmID);
    const QString m_strOption = between(m_cTags.m_cArithmID, m_cTags.m_cOption) + QLatin1Char('\n');
    const QString m_strClass = QLatin1Char('\n') + between(m_cTags.m_cOption, m_cTags.m_cClassName);
    const QString m_strName = between(m_cTags.m_cClassName, m_cTags.m_cArithmName);
    const QString m_strDescribe = between(m_cTags.m_cArithmName, m_cTags.m_cDescribe);
    const QString m_strEnd =
        m_cTags.m_cDescribe.m_strClose + QLatin1Char('\n') + m_cTags.m_cStep.m_strClose + QLatin1Char('\n');

    static QString between(const TaskTags::Tag& before, const TaskTags::Tag& behind)
    {
        return before.m_strClose + QLatin1Char('\n') + behind.m_strOpen;
    }
};

void appendTrimmed(QString& text, const QString& body)
{
    const QStringView left = GlobalFunction::trimmed(body);
    text.append(left.data(), static_cast<int>(left.size()));
}

void appendStep(QString& text, const TaskItem& item)
{
    static const StepFrame s_cFrame;
    text += s_cFrame.m_strCount;
    text += QString::number(item.m_nMaxExeTimes);
    text += s_cFrame.m_strID;
    text += item.m_strArithmID;
    text += s_cFrame.m_strOption;
    appendTrimmed(text, item.m_strOption);
    text += s_cFrame.m_strClass;
    text += item.m_strClassName;
    text += s_cFrame.m_strName;
    text += item.m_strArithmName;
    text += s_cFrame.m_strDescribe;
    text += item.m_strDescribe;
    text += s_cFrame.m_strEnd;
}

/**
 * Asks for the memory of steps behind a row before it is needed. They lie scattered: in a long project waiting for the
 * memory takes longer than the work.
 */
void bringNear(const QList<TaskItem>& items, int row)
{
    constexpr int ItemAhead = 8;  // the step itself, which says where its text lies
    constexpr int TextAhead = 4;
    constexpr int Line = 64;  // bytes that are fetched at once
    constexpr int Lines = 12;
    const auto fetch = [](const void* from, int lines) {
        for (int i = 0; i < lines; ++i)
            __builtin_prefetch(static_cast<const char*>(from) + i * Line);
    };
    if (row + ItemAhead < items.size())
        fetch(&items.at(row + ItemAhead), 2);
    if (row + TextAhead < items.size())
        fetch(items.at(row + TextAhead).m_strOption.constData(), Lines);
}

}  // namespace

QString TaskInfo::toString()
{
    QString text;
    appendTo(text, [] {});
    return text;
}

// May be called while the task runs: reads of the steps only what a run does not change.
void TaskInfo::appendTo(QString& text, const std::function<void()>& afterStep)
{
    const TaskTags& tags = TaskTags::get();
    appendLine(text, tags.m_cName, m_strName);
    appendLine(text, tags.m_cKernel, QString::number(m_nKernel.load()));
    appendLine(text, tags.m_cView, QString::number(m_nView.load()));
    if (m_pcDataSource) {
        GlobalFunction::trimString(m_strDataSourceConfig);
        appendBlock(text, tags.m_cDataSource, m_strDataSourceConfig);
    }
    const QList<TaskItem>& items = m_lstItems;
    for (int row = 0; row < items.size(); ++row) {
        bringNear(items, row);
        appendStep(text, items.at(row));
        afterStep();
    }
}

void TaskInfo::fromString(QString text)
{
    load(TaskText::read(text));
}

void TaskInfo::load(TaskText text)
{
    m_strName = text.m_strName;
    m_nKernel.store(text.m_nKernel);
    m_nView.store(text.m_nView);
    showSelections();
    loadDataSource(text.m_strDataSource);
    const int before = m_lstItems.size();
    if (before == 0)
        m_lstItems.swap(text.m_lstSteps);
    else
        m_lstItems += text.m_lstSteps;
    for (int row = before; row < m_lstItems.size(); ++row) {
        bringNear(m_lstItems, row);
        reserveNamedIDs(qAsConst(m_lstItems).at(row).m_strOption);
        showAddedStep(row);
    }
}

void TaskInfo::loadDataSource(const QString& config)
{
    m_strDataSourceConfig = config;
    if (config.isEmpty())
        return;
    reserveNamedIDs(config);
    delete m_pcDataSource;
    m_pcDataSource = DataSource::getInstance()->createDataSourceFromConfigString(m_pcStore, config);
}

void TaskInfo::reserveNamedIDs(const QString& text)
{
    ProjectText::forEachNamedID(text, [this](int id) {
        if (id > 0)
            m_pcStore->reserveID(id);
    });
}
