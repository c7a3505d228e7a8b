#include "taskMgr/runState.h"
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMessages.h"
#include "taskMgr/taskMgr.h"
#include "threadGuards.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

// One run, seen from the task's flags:
//
//   state                    running  stop requested  thread finished
//   idle                     no       no              yes
//   running                  yes      no              no               startTask
//   stopping                 yes      yes             no               stopTask, until the thread sees it
//   ended, not yet reported  no       no or yes       yes              markEnded, on the task's thread
//
// A report arrives with the window's next turn, perhaps after the next run has begun: the numbers in RunState tell.

namespace {

constexpr int CpuNum = 1024;  ///< What a set of processors holds.
static_assert(sizeof(cpu_set_t) * 8 == CpuNum);

/**
 * Binds the calling thread to a processor; a number below 1 binds nothing, one of a processor that does not exist fails
 * without a word.
 */
void bindToProcessor(int kernel)
{
    if (kernel <= 0)
        return;
    cpu_set_t set;
    CPU_ZERO(&set);
    // Kept on purpose: entry k of the combo is labelled k - 1 and binds to processor k.
    if (kernel < CpuNum)
        CPU_SET(static_cast<std::size_t>(kernel), &set);
    pthread_setaffinity_np(pthread_self(), sizeof(set), &set);
}

/**
 * Lets the calling thread stand back where processors are scarce, so that a window whose user acts does not wait in
 * line behind tasks that never sleep. It runs on whenever a processor is free.
 */
void giveWayToTheWindow()
{
    constexpr int Steps = 10;  // the window's thread gets about nine times the share of one such thread
    const int own = getpriority(PRIO_PROCESS, 0);
    setpriority(PRIO_PROCESS, 0, own + Steps);  // on Linux of the thread alone; the system ends it at its own limit
}

/// The last touch of a run: from here on the task may be deleted.
void markGone(RunState& state)
{
    const Guard lock(state.m_cMutex);
    state.m_bGone = true;
    state.m_cChanged.notify_all();
}

}  // namespace

void TaskInfo::startTask()
{
    if (m_bRunning.load())
        return;
    waitUntilThreadIsGone();  // that of the run before has nothing left to do but to say so
    if (m_pcDataSource)
        TaskMgr::stopBeforeSourcesGo();
    markBegun();
    showRunning();  // before there is a thread: an open editor in the flow table commits into the steps here
    pthread_t thread{};
    if (pthread_create(&thread, nullptr, &TaskInfo::threadTaskFunc, this) == 0)
        return;  // it detaches itself
    markEnded();
    markGone(*m_pcRunState);
    showIdle();
}

void TaskInfo::markBegun()
{
    const Guard lock(m_pcRunState->m_cMutex);
    ++m_pcRunState->m_nRun;
    m_pcRunState->m_bGone = false;
    m_nPassNum.store(0);
    m_bStopRequested.store(false);
    m_bThreadFinished.store(false);
    m_bRunning.store(true);
}

void TaskInfo::markEnded()
{
    const Guard lock(m_pcRunState->m_cMutex);
    m_bRunning.store(false);
    m_bThreadFinished.store(true);
    m_pcRunState->m_cChanged.notify_all();
}

void* TaskInfo::threadTaskFunc(void* argument)
{
    pthread_detach(pthread_self());
    auto* task = static_cast<TaskInfo*>(argument);
    const std::shared_ptr<RunState> state = task->m_pcRunState;
    bindToProcessor(task->m_nKernel.load());
    {
        QString message;
        const bool stopped = task->runUntilStopped(message);
        task->markEnded();
        {
            const Guard lock(state->m_cMutex);
            state->m_lstReported.push_back(state->m_nRun);
        }
        const ThreadGuards::PostingScope posting;
        Q_EMIT task->threadFinished(message, stopped);
        message.clear();  // the window may already have taken its copy
    }
    markGone(*state);
    return nullptr;
}

bool TaskInfo::runUntilStopped(QString& message)
{
    initTaskItemExeTimes();
    if (m_pcDataSource)
        m_pcDataSource->start();
    giveWayToTheWindow();  // not before: a thread that the source starts here is as it was, so that it loses no picture
    bool stopped = m_bStopRequested.load();
    while (!stopped && runOnce(message, false, -1, -1))
        stopped = m_bStopRequested.load();
    QString endMessage;
    runTaskEndSteps(endMessage, TaskMessages::stepError);
    if (!endMessage.isEmpty())
        message = endMessage;
    if (m_pcDataSource)
        m_pcDataSource->stop();
    logPasses();
    return stopped;
}

void TaskInfo::requestStop()
{
    if (m_bRunning.load())
        m_bStopRequested.store(true);
}

void TaskInfo::stopTask()
{
    if (m_bRunning.load())
        waitUntilStopped();
}

void TaskInfo::stopTasks(const QList<TaskInfo*>& tasks)
{
    QList<TaskInfo*> running;
    for (TaskInfo* task : tasks) {
        if (task->IsRunning())
            running.append(task);
    }
    for (TaskInfo* task : qAsConst(running))
        task->requestStop();
    // A thread may have ended by now; as it was asked to, only this here returns its tab to idle.
    for (TaskInfo* task : qAsConst(running))
        task->waitUntilStopped();
}

/// For a task that ran a moment ago.
void TaskInfo::waitUntilStopped()
{
    m_bStopRequested.store(true);
    {
        Guard lock(m_pcRunState->m_cMutex);
        while (!m_bThreadFinished.load())
            lock.wait(m_pcRunState->m_cChanged);
    }
    m_bStopRequested.store(false);
    m_bRunning.store(false);
    showIdle();
}

void TaskInfo::waitUntilThreadIsGone()
{
    Guard lock(m_pcRunState->m_cMutex);
    while (!m_pcRunState->m_bGone)
        lock.wait(m_pcRunState->m_cChanged);
}

void TaskInfo::RunClicked()
{
    if (m_bRunning.load())
        stopTask();
    else
        startTask();
}

void TaskInfo::threadFinishedArrived(QString message, bool stopped)
{
    const long long run = takeReportedRun();
    if (stopped)
        return;
    // The callback shows a box with an event loop of its own: the task may be deleted or started again meanwhile.
    const QPointer<TaskInfo> self(this);
    const CallBack callBack = m_pfnMessage.load();
    if (callBack && !message.isEmpty())
        callBack(message);
    if (!self || run != currentRun())
        return;
    m_bRunning.store(false);
    showIdle();
}

long long TaskInfo::takeReportedRun()
{
    const Guard lock(m_pcRunState->m_cMutex);
    if (m_pcRunState->m_lstReported.empty())
        return m_pcRunState->m_nRun;
    const long long run = m_pcRunState->m_lstReported.front();
    m_pcRunState->m_lstReported.pop_front();
    return run;
}

long long TaskInfo::currentRun() const
{
    const Guard lock(m_pcRunState->m_cMutex);
    return m_pcRunState->m_nRun;
}
