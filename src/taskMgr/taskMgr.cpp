#include "taskMgr.h"

#include "arithm/arithmFactory.h"
#include "taskMgr/projectText.h"
#include "taskMgr/taskTags.h"
#include "taskMgr/taskText.h"
#include "threadGuards.h"

#include <QCoreApplication>

#include <cstdlib>
#include <memory>

std::atomic<TaskMgr*> TaskMgr::s_pcInstance{nullptr};
QMutex TaskMgr::s_cMtxForIns;

// No task thread may run on while the statics of the program and of its plug-ins die. In a usual program the
// application object ends before them; where none ends, the functions registered with the C library come first that
// were registered last: one once the algorithms are loaded, one once a task with a picture source starts.
TaskMgr::TaskMgr()
{
    ArithmFactory::getInstance();
    static const int s_nRegistered = std::atexit(TaskMgr::deleteThis);
    Q_UNUSED(s_nRegistered)
    if (QCoreApplication::instance())
        qAddPostRoutine(TaskMgr::deleteThis);
}

TaskMgr::~TaskMgr()
{
    qRemovePostRoutine(TaskMgr::deleteThis);
    clear();
}

void TaskMgr::stopBeforeSourcesGo()
{
    static const int s_nRegistered = std::atexit(TaskMgr::deleteThis);
    Q_UNUSED(s_nRegistered)
}

TaskMgr* TaskMgr::getInstance()
{
    TaskMgr* instance = s_pcInstance.load(std::memory_order_acquire);
    if (instance)
        return instance;
    const ThreadGuards::MutexGuard guard(s_cMtxForIns);
    return makeInstance();
}

TaskMgr* TaskMgr::makeInstance()
{
    if (!s_pcInstance.load(std::memory_order_relaxed))
        s_pcInstance.store(new TaskMgr, std::memory_order_release);
    return s_pcInstance.load(std::memory_order_relaxed);
}

void TaskMgr::deleteThis()
{
    const ThreadGuards::MutexGuard guard(s_cMtxForIns);
    deleteInstance();
}

void TaskMgr::deleteInstance()
{
    delete s_pcInstance.load();
    s_pcInstance.store(nullptr);
}

void TaskMgr::setMssageCallBack(TaskInfo::CallBack callBack)
{
    m_pfnMessage = callBack;
}

void TaskMgr::setPrintCallBack(TaskInfo::CallBack callBack)
{
    m_pfnPrint = callBack;
}

void TaskMgr::addTask(TaskInfo* task, int id)
{
    if (!task)
        return;
    task->setPrintCallBack(m_pfnPrint);
    task->setMssageCallBack(m_pfnMessage);
    // Kept on purpose: a task that loses its id is not deleted; it is kept aside until all tasks go.
    TaskInfo* replaced = m_mapTasks.value(id);
    if (replaced && replaced != task)
        m_lstReplaced.append(replaced);
    m_lstReplaced.removeAll(task);
    m_mapTasks.insert(id, task);
}

TaskInfo* TaskMgr::getTask(int id) const
{
    return m_mapTasks.value(id);
}

void TaskMgr::removeTask(int id)
{
    delete m_mapTasks.take(id);
}

int TaskMgr::getTaskNum() const
{
    return m_mapTasks.size();
}

void TaskMgr::clear()
{
    const QList<TaskInfo*> tasks = m_mapTasks.values() + m_lstReplaced;
    m_mapTasks.clear();
    m_lstReplaced.clear();
    // All are asked before the first is waited for: together they take one pass, not the sum of all.
    for (TaskInfo* task : tasks)
        task->requestStop();
    qDeleteAll(tasks);
}

QString TaskMgr::toString() const
{
    QString text;
    appendTo(text, [] {});
    return text;
}

bool TaskMgr::save(const SafeFile::Sink& sink) const
{
    ProjectText::Saved saved(sink);
    appendTo(saved.text(), [&saved] { saved.keepShort(); });
    return saved.finish();
}

void TaskMgr::appendTo(QString& text, const std::function<void()>& afterStep) const
{
    const TaskTags::Tag& tag = TaskTags::get().m_cTask;
    for (TaskInfo* task : m_mapTasks) {
        text += tag.m_strOpen;
        text += QLatin1Char('\n');
        task->appendTo(text, afterStep);
        text += QLatin1Char('\n');
        text += tag.m_strClose;
        text += QLatin1Char('\n');
    }
}

void TaskMgr::fromString(QString text)
{
    clear();
    int id = 0;
    for (TaskText& read : TaskText::readProject(text)) {
        auto task = std::make_unique<TaskInfo>(QString(), m_pfnMessage);
        task->load(std::move(read));
        addTask(task.release(), id++);
    }
}
