#pragma once

#include "dataSource/dataSourceInstance.h"
#include "taskMgr/taskItem.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class ArithmParamMgr;
struct RunState;
struct TaskText;
class QAction;
class QComboBox;
class QMenu;
class QTableWidget;
class QTableWidgetItem;

/**
 * One task: a named, ordered list of steps with a picture source, a view and an optional processor binding, together
 * with the widgets of its tab.
 *
 * Ownership: owns its steps, its parameter store, its data source instance and, while it runs, its thread. The widgets
 * belong to the tab and may die first.
 *
 * Threads: made, changed and deleted on the window's thread. runOnce runs on the task's thread while the task runs, on
 * the window's thread otherwise. Deleting a running task is allowed and waits for the pass in progress.
 */
class TaskInfo : public QObject
{
    Q_OBJECT

public:
    using CallBack = void (*)(QString);

    // ---- The task and its widgets (taskInfo.cpp, taskInfoTab.cpp) ---------------------------------------------------

    /// messageCallBack may be null; it is called on the window's thread.
    TaskInfo(QString name, CallBack messageCallBack);
    ~TaskInfo() override;

    QString getName() const { return m_strName; }
    int getKernel() const { return m_nKernel; }
    int getView() const { return m_nView; }
    DataSource::DataSourceInstance* getDataSourceInstance() const { return m_pcDataSource; }  ///< Not handed over.
    QString getDataSourceConfig() const { return m_strDataSourceConfig; }
    ArithmParamMgr* getArithmParamMgr() const { return m_pcStore; }  ///< Not handed over.
    QList<TaskItem>& getTaskItem() { return m_lstItems; }
    bool IsRunning() const { return m_bRunning.load(); }

    void setMssageCallBack(CallBack callBack);
    void setPrintCallBack(CallBack callBack);  ///< Called on the task's thread.

    void addRunTaskButton(QObject* button);
    void addSelectDataSourceButton(QObject* button);
    void addTaskFlowListWidget(QObject* table);
    void addViewSelectCombo(QObject* combo);
    void addThreadSelectCombo(QObject* combo);
    void connectEvents();

    /// Appends the row of a step to a flow table: name, count, empty read-only time.
    static void appendRow(QTableWidget* table, const TaskItem& item);

    void prepareForRemoveArithm(TaskItem item);  ///< A hook that does nothing.

    // ---- Project text (taskInfoText.cpp) ----------------------------------------------------------------------------

    QString toString();             ///< The lines of this task, each ending in a line feed.
    void fromString(QString text);  ///< Fills a new task from the body of its element.
    void load(TaskText text);       ///< As fromString, from a text that is read already.

    /// Appends what toString gives; afterStep is called behind each step and may then take the text away.
    void appendTo(QString& text, const std::function<void()>& afterStep);

    // ---- Passes (taskInfoPass.cpp) ----------------------------------------------------------------------------------

    /**
     * One pass over the steps for one picture.
     *
     * @param message receives the reason when the pass returns false; may then be empty
     * @param resetAfter reset the execution counters afterwards and show the time of each step
     * @param lastStep index of the last step to run; below 0 for all
     * @param timeoutMs milliseconds after which no further step starts; below 0 for none
     * @return false when the task must end
     */
    bool runOnce(QString& message, bool resetAfter, int lastStep, int timeoutMs);

    void initTaskItemExeTimes();  ///< Resets the execution counters of all steps.
    void runTaskOnce();           ///< One pass and the end-of-task steps in the calling thread.

    /// Passes with a picture that ran to their end since the task was last started; any thread.
    long long getPassNum() const { return m_nPassNum.load(std::memory_order_relaxed); }

    // ---- Runs (taskInfoRun.cpp) -------------------------------------------------------------------------------------

    void startTask();
    void stopTask();     ///< Waits, without limit, for the pass in progress.
    void requestStop();  ///< Asks a running task to end after its pass; does not wait.

    /// Stops those of the tasks that run, together: all are asked before the first is waited for.
    static void stopTasks(const QList<TaskInfo*>& tasks);

    static void* threadTaskFunc(void* task);

Q_SIGNALS:
    void threadFinished(QString message, bool stopped);

public Q_SLOTS:
    void RunClicked();
    void threadFinishedArrived(QString message, bool stopped);
    void ViewSelected(int index);
    void ThreadSelected(int index);
    void DataSourceClicked();

    // ---- Editing the steps (taskInfoEdit.cpp) -----------------------------------------------------------------------
    void runHere();
    void showContextmenu(QPoint position);
    void addArithm(QAction* action);
    void modifyOption();
    void delArithm();
    void TaskFlowTblCellChanged(int row, int column);
    void TableItemClicked(QTableWidgetItem* item);
    void insertArithm(int row, QAction* action);

private:
    using ErrorWording = QString (*)(const QString& arithmName, const QString& text);

    // ---- The tab's widgets (taskInfoTab.cpp) ------------------------------------------------------------------------
    void disconnectEvents();
    void showRunning();     ///< The run button offers to stop; what could change the task is disabled.
    void showIdle();        ///< The opposite.
    void showSelections();  ///< The combos follow kernel and view.
    void showAddedStep(int row);
    void showRemovedStep(int row);
    void showStepTime(qint64 row, qint64 ms);  ///< Nothing when there is no such row.
    QTableWidget* flowTable() const;           ///< Null when there is none.
    int selectedRow() const;                   ///< Row of the first selected cell; -1 when none is.

    // ---- Project text (taskInfoText.cpp) ----------------------------------------------------------------------------
    void loadDataSource(const QString& config);
    void reserveID(int id);  ///< So that the store never hands it out as fresh.

    // ---- Passes (taskInfoPass.cpp) ----------------------------------------------------------------------------------
    // Inline where passes are made; nobody else calls them.
    inline bool runStep(qint64& index, QString& message, bool showTime);
    inline bool prepareStep(TaskItem& item);               ///< False when the algorithm does not exist.
    inline const char* executeStep(const TaskItem& item);  ///< Of a prepared step; the algorithm's own text or null.
    const char* executeTimed(const TaskItem& item, qint64& ms);

    /// Reads the commands in the result text of a step; false when the pass is to end.
    bool obeyResult(const char* text, const TaskItem& item, qint64& index, QString& message);
    bool obeyCommands(QString& result, qint64& index);  ///< False when the task is to stop.
    void obeyPrints(QString& result);                   ///< All that an end-of-task step may command.
    void runTaskEndSteps(QString& message, ErrorWording wording);
    int clampedView();  ///< The view, within what exists; stored back.
    void print(const QString& text) const;
    void logPasses() const;

    // ---- Runs (taskInfoRun.cpp) -------------------------------------------------------------------------------------
    bool runUntilStopped(QString& message);  ///< The whole run; true when it ended on request.
    void markBegun();
    void markEnded();
    void waitUntilStopped();
    void waitUntilThreadIsGone();
    long long takeReportedRun();  ///< The run whose report has arrived.
    long long currentRun() const;

    // ---- Editing the steps (taskInfoEdit.cpp) -----------------------------------------------------------------------
    static constexpr int AfterLastStep = -1;
    void prepareStore(int position);
    bool configureNewStep(int position, QAction* action, TaskItem& item);
    void buildContextMenu(QTableWidget* table);

    QTableWidgetItem* m_pcSelectedItem = nullptr;  ///< The step cell pressed last; not owned; only ever compared.
    QString m_strName;
    QPointer<QObject> m_pcRunButton;  ///< The widgets are not owned and may die first.
    QPointer<QObject> m_pcViewCombo;
    QPointer<QObject> m_pcThreadCombo;
    QPointer<QObject> m_pcDataSourceButton;
    QPointer<QObject> m_pcFlowTable;
    QPointer<QObject> m_pcContextMenu;      ///< A child of the flow table; null until the first right-click.
    QMap<QAction*, TaskItem> m_mapActions;  ///< The step behind each algorithm entry of the context menu.
    QList<TaskItem> m_lstItems;
    ArithmParamMgr* m_pcStore;                                 ///< Owned.
    DataSource::DataSourceInstance* m_pcDataSource = nullptr;  ///< Owned; null when none is assigned.
    QString m_strDataSourceConfig;
    std::atomic<int> m_nKernel{-1};  ///< Below 1: no binding; else the number of the processor.
    std::atomic<int> m_nView{0};
    std::atomic<bool> m_bRunning{false};        ///< A task thread exists.
    std::atomic<bool> m_bStopRequested{false};  ///< Set by the window's thread, seen between passes.
    std::atomic<bool> m_bThreadFinished{true};  ///< Set by the task thread when its work is done.
    std::atomic<CallBack> m_pfnMessage{nullptr};
    std::atomic<CallBack> m_pfnPrint{nullptr};
    const std::shared_ptr<RunState> m_pcRunState;  ///< Shared with the thread.
    // Written in each pass: in lines of the processor's cache that no other task's thread wants.
    struct alignas(64) CacheLine
    {
        std::array<char, 64> m_achBytes;
    };
    std::vector<CacheLine> m_vecScratch;  ///< The option text that an algorithm gets and may scribble on.
    alignas(CacheLine) std::atomic<long long> m_nPassNum{0};
};

static_assert(alignof(TaskInfo) == 64, "what a task counts in each pass has a line of the cache to itself");
