#pragma once

#include "globalFunction.h"
#include "pluginFolders.h"
#include "taskMgr/taskInfo.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStringList>
#include <QTableWidget>
#include <QTimer>

#include <chrono>
#include <memory>
#include <mutex>
#include <thread>

/// Real plug-ins beside the test program, and what they saw.
class Probes
{
public:
    /// Call before the first use of a registry.
    static void install()
    {
        PluginFolders::clear();
        s_strProbe = PluginFolders::addBase(QStringLiteral("algorithmProbe"));
        s_strExtProbe = PluginFolders::addExtension(QStringLiteral("algorithmExtProbe"));
        s_strSource = PluginFolders::addSource(QStringLiteral("sourceScripted"));
    }

    static void reset(const char* configResult = "")
    {
        for (const QString& path : {s_strProbe, s_strExtProbe})
            PluginFolders::function<void (*)(const char*)>(path, "testReset")(configResult);
    }

    static QString trace() { return text(s_strProbe, "testTrace"); }
    static int traceCount(const char* name)
    {
        return PluginFolders::function<int (*)(const char*)>(s_strProbe, "testTraceCount")(name);
    }
    static QString extTrace() { return text(s_strExtProbe, "testTrace"); }
    static QString traceAtConfig() { return text(s_strProbe, "testTraceAtConfig"); }
    static QString configOption() { return text(s_strProbe, "testConfigOption"); }
    static QString affinity() { return text(s_strProbe, "testAffinity"); }
    static int priorityAtStartOfSource() { return number(s_strSource, "testPriorityAtStart"); }
    static int priority() { return number(s_strProbe, "testPriority"); }
    static int atGate() { return number(s_strProbe, "testAtGate"); }
    static int configWindows() { return number(s_strProbe, "testConfigWindows"); }
    static int extConfigWindows() { return number(s_strExtProbe, "testConfigWindows"); }
    static void openGate() { PluginFolders::function<void (*)()>(s_strProbe, "testOpenGate")(); }

    static void needStatics() { PluginFolders::function<void (*)()>(s_strProbe, "testNeedStatics")(); }

    /// Calls of an entry point of the picture source for the instance configured last.
    static int sourceCalls(const char* entry)
    {
        return PluginFolders::sourceCalls(s_strSource, entry, PluginFolders::lastInstance(s_strSource));
    }

private:
    static QString text(const QString& path, const char* function)
    {
        return QString::fromUtf8(PluginFolders::function<const char* (*)()>(path, function)());
    }
    static int number(const QString& path, const char* function)
    {
        return PluginFolders::function<int (*)()>(path, function)();
    }

    static inline QString s_strProbe;
    static inline QString s_strExtProbe;
    static inline QString s_strSource;
};

/// A step that runs the probe: name goes into the trace, result is its result text.
inline TaskItem probeStep(const QString& name, const QString& result = {}, int maxExeTimes = -1)
{
    TaskItem item;
    item.m_nMaxExeTimes = maxExeTimes;
    item.m_strArithmID = QStringLiteral("Test.Probe");
    item.m_strArithmName = QStringLiteral("Probe");
    item.m_strClassName = QStringLiteral("Test");
    item.m_strOption = name + QLatin1Char('|') + result;
    return item;
}

inline TaskItem step(const char* name, const char* result = "", int maxExeTimes = -1)
{
    return probeStep(QString::fromUtf8(name), QString::fromUtf8(result), maxExeTimes);
}

/// One probing step for each letter.
inline QList<TaskItem> steps(const char* names)
{
    QList<TaskItem> list;
    for (const QChar name : QString::fromUtf8(names))
        list += probeStep(QString(name));
    return list;
}

/// A step whose algorithm nobody has.
inline TaskItem missingStep(int maxExeTimes = -1)
{
    TaskItem item = probeStep(QStringLiteral("missing"), QString(), maxExeTimes);
    item.m_strArithmID = QStringLiteral("Test.Missing");
    item.m_strArithmName = QStringLiteral("缺");
    return item;
}

/// What the source plays where a picture is to come every few milliseconds.
inline const QString Paced = QStringLiteral("wait=3");

inline QString sourceText(const QString& config, int id = 1)
{
    return QStringLiteral(
               "<DSName>Test Scripted</DSName><OutputName>img</OutputName><OutputDescribe></OutputDescribe>"
               "<OutputType>RGB</OutputType><OutputID>") +
           QString::number(id) + QStringLiteral("</OutputID><Config>") + config + QStringLiteral("</Config>");
}

/// What the tasks report, from any thread.
class Reports
{
public:
    static void message(QString text) { add(s_lstMessages, text); }
    static void print(QString text) { add(s_lstPrints, text); }
    static QStringList messages() { return copy(s_lstMessages); }
    static QStringList prints() { return copy(s_lstPrints); }
    static void clear()
    {
        const std::lock_guard<std::mutex> lock(s_cMutex);
        s_lstMessages.clear();
        s_lstPrints.clear();
    }

private:
    static void add(QStringList& list, const QString& text)
    {
        const std::lock_guard<std::mutex> lock(s_cMutex);
        list.append(QString(text.constData(), text.size()));  // a copy of its own: the other stays with its thread
    }
    static QStringList copy(const QStringList& list)
    {
        const std::lock_guard<std::mutex> lock(s_cMutex);
        QStringList result;
        for (const QString& text : list)
            result.append(QString(text.constData(), text.size()));
        return result;
    }

    static inline std::mutex s_cMutex;
    static inline QStringList s_lstMessages;
    static inline QStringList s_lstPrints;
};

/// A task without a picture source.
inline std::unique_ptr<TaskInfo> makeSourcelessTask(const QList<TaskItem>& steps = {})
{
    // A pointer, no reference, which UndefinedBehaviorSanitizer calls misaligned: Thumb code lies at odd addresses.
    auto task = std::make_unique<TaskInfo>(QStringLiteral("task"), &Reports::message);
    task->setPrintCallBack(Reports::print);
    task->getTaskItem() = steps;
    return task;
}

/// A task with these steps and with a picture source that plays config.
inline std::unique_ptr<TaskInfo> makeTask(const QList<TaskItem>& steps, const QString& sourceConfig = QString())
{
    auto task = makeSourcelessTask();
    task->fromString(QStringLiteral("<-TaskName->task</-TaskName-><-DataSource->") + sourceText(sourceConfig) +
                     QStringLiteral("</-DataSource->"));
    task->getTaskItem() = steps;
    return task;
}

/// One pass over all steps, as a task's thread makes it.
inline bool pass(TaskInfo& task, QString& message)
{
    return task.runOnce(message, false, -1, -1);
}

inline bool pass(TaskInfo& task)
{
    QString message;
    return pass(task, message);
}

/// Waits for a condition without letting any signal arrive.
template <typename Condition>
bool waitWithoutEvents(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 30000)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

/// The widgets of a task's tab, wired to it. As in the window, cells of the table are selected one by one.
struct Tab
{
    explicit Tab(TaskInfo& task)
    {
        for (const char* view : {"视窗1", "视窗2", "视窗3", "视窗4"})
            m_cViews.addItem(QString::fromUtf8(view));
        for (const char* thread : {"自动线程", "绑定线程0", "绑定线程1"})
            m_cThreads.addItem(QString::fromUtf8(thread));
        m_pcTable = new QTableWidget(0, 3, &m_cPage);
        m_pcTable->resize(400, 300);
        for (const TaskItem& item : task.getTaskItem())
            TaskInfo::appendRow(m_pcTable, item);
        task.addRunTaskButton(&m_cRun);
        task.addSelectDataSourceButton(&m_cSource);
        task.addTaskFlowListWidget(m_pcTable);
        task.addThreadSelectCombo(&m_cThreads);
        task.addViewSelectCombo(&m_cViews);
        task.connectEvents();
    }

    bool allEnabled() const
    {
        return m_cSource.isEnabled() && m_cViews.isEnabled() && m_cThreads.isEnabled() && m_pcTable->isEnabled();
    }
    bool allDisabled() const
    {
        return !m_cSource.isEnabled() && !m_cViews.isEnabled() && !m_cThreads.isEnabled() && !m_pcTable->isEnabled();
    }
    QString cell(int row, int column) const { return m_pcTable->item(row, column)->text(); }

    QWidget m_cPage;
    QPushButton m_cRun{QStringLiteral("执行任务")};
    QPushButton m_cSource;
    QComboBox m_cViews;
    QComboBox m_cThreads;
    QTableWidget* m_pcTable;
};

inline QMenu* contextMenu(const Tab& tab)
{
    return tab.m_pcTable->findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
}

/// Opens the context menu as a right-click does, and closes it again.
inline QMenu* openedMenu(const Tab& tab)
{
    Q_EMIT tab.m_pcTable->customContextMenuRequested(QPoint(5, 5));
    QMenu* menu = contextMenu(tab);
    if (menu)
        menu->close();
    return menu;
}

inline QMenu* subMenu(const QMenu* menu, const QString& caption)
{
    for (QAction* action : menu->actions()) {
        if (action->text() == caption && action->menu())
            return action->menu();
    }
    return nullptr;
}

inline QAction* entry(const QMenu* menu, const QString& caption)
{
    for (QAction* action : menu->actions()) {
        if (action->text() == caption)
            return action;
    }
    return nullptr;
}

/// How many options wait to be drawn onto a view.
inline int queuedFor(int view)
{
    const ViewRecord record(view);
    return record ? record->m_nCount : -1;
}

inline void selectRow(const Tab& tab, int row)
{
    tab.m_pcTable->selectRow(row);
}

/// Answers every message box that opens while it lives with the same button, and keeps what the boxes said.
class BoxAnswer : public QObject
{
public:
    explicit BoxAnswer(QMessageBox::StandardButton button = QMessageBox::Ok) : m_eButton(button)
    {
        connect(&m_cTimer, &QTimer::timeout, this, &BoxAnswer::look);
        m_cTimer.start(5);
    }

    QStringList m_lstTitles;
    QStringList m_lstTexts;
    QList<QMessageBox::StandardButtons> m_lstButtons;
    QList<QMessageBox::StandardButton> m_lstDefaults;
    QList<QMessageBox::Icon> m_lstIcons;

private:
    void look()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible() || !box->button(m_eButton))
            return;
        m_lstTitles += box->windowTitle();
        m_lstTexts += box->text();
        m_lstButtons += box->standardButtons();
        m_lstDefaults += box->standardButton(box->defaultButton());
        m_lstIcons += box->icon();
        box->button(m_eButton)->click();
    }

    QMessageBox::StandardButton m_eButton;
    QTimer m_cTimer;
};
