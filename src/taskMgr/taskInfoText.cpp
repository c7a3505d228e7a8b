#include "globalFunction.h"
#include "paramStore/arithmParamMgr.h"
#include "taskMgr/projectText.h"
#include "taskMgr/taskInfo.h"

// The elements of a task in the project text. Names and numbers stand on the line of their markers, option texts and
// the text of the data source on lines of their own.

namespace {

QString openTag(const char* name)
{
    return QLatin1String("<-") + QLatin1String(name) + QLatin1String("->");
}

QString closeTag(const char* name)
{
    return QLatin1String("</-") + QLatin1String(name) + QLatin1String("->");
}

QString line(const char* name, const QString& body)
{
    return openTag(name) + body + closeTag(name) + QLatin1Char('\n');
}

QString block(const char* name, const QString& body)
{
    return openTag(name) + QLatin1Char('\n') + body + QLatin1Char('\n') + closeTag(name) + QLatin1Char('\n');
}

QString trimmed(QString text)
{
    GlobalFunction::trimString(text);
    return text;
}

QString stepText(const TaskItem& item)
{
    return openTag("TaskItem") + QLatin1Char('\n') +                    //
           line("MaxExeTimes", QString::number(item.m_nMaxExeTimes)) +  //
           line("ArithmID", item.m_strArithmID) +                       //
           block("OptionStr", trimmed(item.m_strOption)) +              //
           line("ClassName", item.m_strClassName) +                     //
           line("ArithmName", item.m_strArithmName) +                   //
           line("Describe", item.m_strDescribe) +                       //
           closeTag("TaskItem") + QLatin1Char('\n');
}

QString take(QString& text, const char* name)
{
    return GlobalFunction::getAndRemoveBody(text, openTag(name), closeTag(name));
}

}  // namespace

// May be called while the task runs: reads of the steps only what a run does not change.
QString TaskInfo::toString()
{
    QString text = line("TaskName", m_strName);
    text += line("Kernel", QString::number(m_nKernel.load()));
    text += line("View", QString::number(m_nView.load()));
    if (m_pcDataSource) {
        GlobalFunction::trimString(m_strDataSourceConfig);
        text += block("DataSource", m_strDataSourceConfig);
    }
    for (const TaskItem& item : qAsConst(m_lstItems))
        text += stepText(item);
    return text;
}

void TaskInfo::fromString(QString text)
{
    m_strName = take(text, "TaskName");
    m_nKernel.store(take(text, "Kernel").toInt(nullptr, 10));
    m_nView.store(take(text, "View").toInt(nullptr, 10));
    showSelections();
    loadDataSource(take(text, "DataSource"));
    ElementReader steps(text, openTag("TaskItem"), closeTag("TaskItem"));
    for (QString body = steps.next(); !body.isEmpty(); body = steps.next())
        loadStep(body);
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

void TaskInfo::loadStep(QString body)
{
    TaskItem item;
    item.m_nMaxExeTimes = take(body, "MaxExeTimes").toInt(nullptr, 10);  // a missing count is 0: never runs
    item.m_strArithmID = take(body, "ArithmID");
    item.m_strOption = take(body, "OptionStr");
    item.m_strClassName = take(body, "ClassName");
    item.m_strArithmName = take(body, "ArithmName");
    item.m_strDescribe = take(body, "Describe");
    reserveNamedIDs(item.m_strOption);
    m_lstItems.append(item);
    showAddedStep(m_lstItems.size() - 1);
}

void TaskInfo::reserveNamedIDs(const QString& text)
{
    ProjectText::forEachNamedID(text, [this](int id) {
        if (id > 0)
            m_pcStore->reserveID(id);
    });
}
