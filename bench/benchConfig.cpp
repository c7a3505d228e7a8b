// Does opening a configuration window cost the preparing run and the window, and nothing more?
#include "arithm/arithm.h"
#include "arithm/arithmMgr.h"
#include "dataSource/dataSourceInstance.h"
#include "paramStore/arithmParamMgr.h"
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMgr.h"

#include <QApplication>
#include <QDialog>
#include <QTableWidget>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int StepsBefore = 3;
constexpr int TimeoutMs = 10000;  // of the preparing run, as when a user edits

// The built-in algorithms, in their fixed order: the benchmarks' argument.
const char* const Algorithms[] = {"KW_MemoryDisk", "KW_Drawing", "KW_Saving", "KW_Loading"};

/// A task with its table, as the window's tab has it; the step to configure is the last one.
class EditedTask
{
public:
    explicit EditedTask(const char* algorithm)
    {
        TaskMgr::getInstance();  // makes the algorithm registry
        QString text = QStringLiteral(
            "<-DataSource->\n<DSName>Bench Still</DSName><OutputName>p</OutputName><OutputDescribe>"
            "</OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID><Config>640x480</Config>\n"
            "</-DataSource->\n");
        for (int i = 0; i < StepsBefore; ++i)
            text += step("BENCH_Noop");
        m_cTask.fromString(text + step(algorithm));
        for (const TaskItem& item : m_cTask.getTaskItem())
            TaskInfo::appendRow(&m_cTable, item);
        m_cTask.addTaskFlowListWidget(&m_cTable);
        m_cTable.selectRow(m_cTable.rowCount() - 1);
    }

    /// What happens before the window opens.
    bool prepare()
    {
        m_cTask.getArithmParamMgr()->clean();
        m_cTask.getDataSourceInstance()->start();
        QString message;
        const bool isDone = m_cTask.runOnce(message, true, StepsBefore - 1, TimeoutMs);
        m_cTask.getDataSourceInstance()->stop();
        return isDone;
    }

    /// The window alone, on what the last preparing run left. False when none came up.
    bool showAndClose()
    {
        const TaskItem& item = m_cTask.getTaskItem().last();
        const Arithm* arithm = ArithmMgr::getInstance()->getArithm(item.m_strArithmID);
        closeSoon();
        arithm->showConfigWindow(item.m_strOption, m_cTask.getArithmParamMgr());
        return m_bShown;
    }

    /// The user's whole command. False when no window came up.
    bool openAndClose()
    {
        closeSoon();
        m_cTask.modifyOption();
        return m_bShown;
    }

private:
    static QString step(const char* algorithm)
    {
        return QStringLiteral(
                   "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->%1</-ArithmID-><-OptionStr->"
                   "</-OptionStr-></-TaskItem->")
            .arg(QLatin1String(algorithm));
    }

    /// Closes the window as soon as it answers.
    void closeSoon()
    {
        m_bShown = false;
        QTimer::singleShot(0, &m_cTable, [this] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                m_bShown = true;
                dialog->reject();
            }
        });
    }

    bool m_bShown = false;
    QTableWidget m_cTable{0, 3};
    TaskInfo m_cTask{QStringLiteral("bench"), nullptr};
};

void prepareConfig(benchmark::State& state)
{
    EditedTask task(Algorithms[state.range(0)]);
    for (auto _ : state) {
        if (!task.prepare())
            state.SkipWithError("the preparing run failed");
    }
}

void showConfig(benchmark::State& state)
{
    EditedTask task(Algorithms[state.range(0)]);
    task.prepare();
    for (auto _ : state) {
        if (!task.showAndClose())
            state.SkipWithError("no window came up");
    }
}

void openConfig(benchmark::State& state)
{
    EditedTask task(Algorithms[state.range(0)]);
    for (auto _ : state) {
        if (!task.openAndClose())
            state.SkipWithError("no window came up");
    }
}

BENCHMARK(prepareConfig)->DenseRange(0, 3);
BENCHMARK(showConfig)->DenseRange(0, 3);
BENCHMARK(openConfig)->DenseRange(0, 3);

}  // namespace
