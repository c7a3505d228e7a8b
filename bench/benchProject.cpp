// Does opening and writing a project grow linearly with its length?
#include "taskMgr/taskMgr.h"

#include <benchmark/benchmark.h>

namespace {

/// One task with steps of 500 characters each, whose option texts all differ, as a user's do.
QString projectOf(int steps)
{
    constexpr int OptionLength = 300;
    QString text =
        QStringLiteral("<=TaskInfo=>\n<-TaskName->t</-TaskName->\n<-Kernel->0</-Kernel->\n<-View->0</-View->\n");
    for (int i = 0; i < steps; ++i)
        text += QStringLiteral(
                    "<-TaskItem->\n<-MaxExeTimes->-1</-MaxExeTimes->\n<-ArithmID->BENCH_Noop%1</-ArithmID->\n"
                    "<-OptionStr->\n%2\n</-OptionStr->\n<-ClassName->bench</-ClassName->\n"
                    "<-ArithmName->noop %1</-ArithmName->\n<-Describe-></-Describe->\n</-TaskItem->\n")
                    .arg(i % 10)
                    .arg(i, OptionLength, 10, QLatin1Char('o'));
    return text + QStringLiteral("</=TaskInfo=>\n");
}

void openProject(benchmark::State& state)
{
    const QString text = projectOf(static_cast<int>(state.range(0)));
    for (auto _ : state)
        TaskMgr::getInstance()->fromString(text);
    if (TaskMgr::getInstance()->getTask(0)->getTaskItem().size() != state.range(0))
        state.SkipWithError("steps were lost");
    TaskMgr::getInstance()->clear();
}

void writeProject(benchmark::State& state)
{
    TaskMgr::getInstance()->fromString(projectOf(static_cast<int>(state.range(0))));
    for (auto _ : state)
        benchmark::DoNotOptimize(TaskMgr::getInstance()->toSavedText());
    TaskMgr::getInstance()->clear();
}

BENCHMARK(openProject)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(writeProject)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
