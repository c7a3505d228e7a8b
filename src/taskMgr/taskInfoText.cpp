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

QString trimmed(QString text)
{
    GlobalFunction::trimString(text);
    return text;
}

void appendStep(QString& text, const TaskItem& item)
{
    const TaskTags& tags = TaskTags::get();
    text += tags.m_cStep.m_strOpen;
    text += QLatin1Char('\n');
    appendLine(text, tags.m_cCount, QString::number(item.m_nMaxExeTimes));
    appendLine(text, tags.m_cArithmID, item.m_strArithmID);
    appendBlock(text, tags.m_cOption, trimmed(item.m_strOption));
    appendLine(text, tags.m_cClassName, item.m_strClassName);
    appendLine(text, tags.m_cArithmName, item.m_strArithmName);
    appendLine(text, tags.m_cDescribe, item.m_strDescribe);
    text += tags.m_cStep.m_strClose;
    text += QLatin1Char('\n');
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
    for (const TaskItem& item : qAsConst(m_lstItems)) {
        appendStep(text, item);
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
