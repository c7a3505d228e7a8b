#include "globalFunction.h"
#include "paramStore/arithmParamMgr.h"
#include "taskMgr/projectText.h"
#include "taskMgr/stepFrame.h"
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskTags.h"
#include "taskMgr/taskText.h"

#include <algorithm>
#include <initializer_list>
#include <numeric>

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

/// Makes room once: a piece by itself costs as much as the look whether it fits.
void appendAll(QString& text, std::initializer_list<QStringView> pieces)
{
    const int before = text.size();
    const auto added = [](qsizetype length, QStringView piece) { return length + piece.size(); };
    text.resize(static_cast<int>(std::accumulate(pieces.begin(), pieces.end(), qsizetype{before}, added)));
    QChar* to = text.data() + before;
    for (const QStringView piece : pieces)
        to = std::copy(piece.begin(), piece.end(), to);
}

void appendStep(QString& text, const TaskItem& item)
{
    const StepFrame& frame = StepFrame::get();
    constexpr QStringView LineEnd(u"\n");
    constexpr QStringView Unlimited(u"-1");  // of nearly all steps, and made without memory of its own
    const bool isUnlimited = item.m_nMaxExeTimes == TaskItem::Unlimited;
    const QString limit = isUnlimited ? QString() : QString::number(item.m_nMaxExeTimes);
    appendAll(text,
              {frame.m_strCount, isUnlimited ? Unlimited : limit, frame.m_strID, item.m_strArithmID, frame.m_strOption,
               LineEnd, GlobalFunction::trimmed(item.m_strOption), LineEnd, frame.m_strClass, item.m_strClassName,
               frame.m_strName, item.m_strArithmName, frame.m_strDescribe, item.m_strDescribe, frame.m_strEnd});
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
    for (const int id : text.m_setNamedIDs)
        reserveID(id);
    if (!flowTable())
        return;
    for (int row = before; row < m_lstItems.size(); ++row)
        showAddedStep(row);
}

void TaskInfo::loadDataSource(const QString& config)
{
    m_strDataSourceConfig = config;
    if (config.isEmpty())
        return;
    ProjectText::forEachNamedID(config, [this](int id) { reserveID(id); });
    delete m_pcDataSource;
    m_pcDataSource = DataSource::getInstance()->createDataSourceFromConfigString(m_pcStore, config);
}

void TaskInfo::reserveID(int id)
{
    if (id > 0)
        m_pcStore->reserveID(id);
}
