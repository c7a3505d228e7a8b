#pragma once

#include "safeFile.h"
#include "taskMgr/taskInfo.h"
#include "threadAnnotations.h"

#include <QList>
#include <QMap>
#include <QMutex>
#include <QString>

#include <atomic>
#include <functional>

/**
 * The registry of all tasks of the open project; owns them.
 *
 * Task ids are the tab indices at the time a task was added and 0, 1, 2 … for a loaded project; they are never
 * renumbered. Threads: window's thread only, but getInstance.
 */
class TaskMgr
{
public:
    static TaskMgr* getInstance();  ///< Made on first use together with the algorithm registry.
    static void deleteThis();       ///< Stops and deletes every task, then the registry.

    void setMssageCallBack(TaskInfo::CallBack callBack);  ///< For tasks added later.
    void setPrintCallBack(TaskInfo::CallBack callBack);   ///< For tasks added later.

    /**
     * Stores a task under an id and owns it from then on. A task that was stored under the id before is not deleted: it
     * goes on, and is stopped and deleted with all others by clear() and at the end of the program.
     */
    void addTask(TaskInfo* task, int id);
    TaskInfo* getTask(int id) const;  ///< Null when there is none.
    void removeTask(int id);          ///< Stops and deletes the task.
    int getTaskNum() const;           ///< Number of ids, not one above the largest.
    void clear();

    QString toString() const;       ///< The project text.
    void fromString(QString text);  ///< Replaces all tasks with those of a project text.

    /// Gives the bytes of the project's file, toString without empty lines in UTF-8, to the sink piece by piece, until
    /// it says no; whether it took all.
    bool save(const SafeFile::Sink& sink) const;

    /// Once the libraries of the sources are loaded: deleteThis runs before they go, however the program ends.
    static void stopBeforeSourcesGo();

    static std::atomic<TaskMgr*> s_pcInstance;
    static QMutex s_cMtxForIns;  ///< Guards creation and destruction of the instance.

private:
    static TaskMgr* makeInstance() REQUIRES(s_cMtxForIns);
    static void deleteInstance() REQUIRES(s_cMtxForIns);
    void appendTo(QString& text, const std::function<void()>& afterStep) const;
    TaskMgr();
    ~TaskMgr();

    QMap<int, TaskInfo*> m_mapTasks;  ///< Owned.
    QList<TaskInfo*> m_lstReplaced;   ///< Owned; tasks whose id went to a later one.
    TaskInfo::CallBack m_pfnMessage = nullptr;
    TaskInfo::CallBack m_pfnPrint = nullptr;
};
