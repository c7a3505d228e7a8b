#include "taskMgr/taskText.h"

#include "globalFunction.h"
#include "taskMgr/laidOutText.h"
#include "taskMgr/projectText.h"
#include "taskMgr/taskTags.h"

#include <optional>

namespace {

const TaskTags& tags()
{
    return TaskTags::get();
}

QString take(QString& text, const TaskTags::Tag& tag)
{
    return GlobalFunction::getAndRemoveBody(text, tag.m_strOpen, tag.m_strClose);
}

TaskItem stepOf(QString body)
{
    TaskItem item;
    item.m_nMaxExeTimes = take(body, tags().m_cCount).toInt(nullptr, 10);  // a missing count is 0: never runs
    item.m_strArithmID = take(body, tags().m_cArithmID);
    item.m_strOption = take(body, tags().m_cOption);
    item.m_strClassName = take(body, tags().m_cClassName);
    item.m_strArithmName = take(body, tags().m_cArithmName);
    item.m_strDescribe = take(body, tags().m_cDescribe);
    return item;
}

}  // namespace

TaskText TaskText::read(QStringView body)
{
    if (std::optional<TaskText> task = LaidOutText(body).task())
        return *std::move(task);
    return readByElements(body.toString());
}

TaskText TaskText::readByElements(QString body)
{
    TaskText task;
    task.m_strName = take(body, tags().m_cName);
    task.m_nKernel = take(body, tags().m_cKernel).toInt(nullptr, 10);
    task.m_nView = take(body, tags().m_cView).toInt(nullptr, 10);
    task.m_strDataSource = take(body, tags().m_cDataSource);
    ElementReader steps(body, tags().m_cStep.m_strOpen, tags().m_cStep.m_strClose);
    for (QStringView step = steps.next(); !step.isEmpty(); step = steps.next()) {
        task.m_lstSteps.append(stepOf(step.toString()));
        task.noteNamedIDs(qAsConst(task.m_lstSteps).last());
    }
    return task;
}

void TaskText::noteNamedIDs(const TaskItem& step)
{
    ProjectText::forEachNamedID(step.m_strOption, [this](int id) { m_setNamedIDs.insert(id); });
}

namespace {

template <typename Read>
QList<TaskText> readTasks(const QString& text, Read readBody)
{
    QList<TaskText> tasks;
    const QString read = ProjectText::upToNul(text);
    ElementReader elements(read, tags().m_cTask.m_strOpen, tags().m_cTask.m_strClose);
    for (QStringView body = elements.next(); !body.isEmpty(); body = elements.next())
        tasks.append(readBody(body));
    return tasks;
}

}  // namespace

QList<TaskText> TaskText::readProject(const QString& text)
{
    if (std::optional<QList<TaskText>> tasks = LaidOutText(text).project())
        return *std::move(tasks);
    return readTasks(text, [](QStringView body) { return TaskText::read(body); });
}

QList<TaskText> TaskText::readProjectByElements(const QString& text)
{
    return readTasks(text, [](QStringView body) { return TaskText::readByElements(body.toString()); });
}
