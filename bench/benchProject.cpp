// Does opening and writing a project grow linearly with its length?
#include "taskMgr/taskMgr.h"

#include <benchmark/benchmark.h>

namespace {

/// An option as a drawing step has it, with two of a hundred identifiers; 300 characters, another one for each number.
QString optionOf(int number)
{
    constexpr int Length = 300;
    const QString option =
        QStringLiteral(
            "<DataType>1</DataType><DataID>%1</DataID><Config><Scale>3</Scale><Align>5</Align><DrawMode><Lapped>1"
            "</Lapped><Mask>1,2</Mask><Val>2</Val></DrawMode><Color>255,0,0</Color><MaskID>%2</MaskID></Config>")
            .arg(number % 100 + 1)
            .arg(number % 99 + 2);
    return option + QStringLiteral("<Text>%1</Text>").arg(number, Length - 13 - option.size(), 10, QLatin1Char('o'));
}

/// One task with steps of 500 characters each, whose option texts all differ, as a user's do.
QString projectOf(int steps)
{
    QString text =
        QStringLiteral("<=TaskInfo=>\n<-TaskName->t</-TaskName->\n<-Kernel->0</-Kernel->\n<-View->0</-View->\n");
    for (int i = 0; i < steps; ++i)
        text += QStringLiteral(
                    "<-TaskItem->\n<-MaxExeTimes->-1</-MaxExeTimes->\n<-ArithmID->BENCH_Noop%1</-ArithmID->\n"
                    "<-OptionStr->\n%2\n</-OptionStr->\n<-ClassName->bench</-ClassName->\n"
                    "<-ArithmName->noop %1</-ArithmName->\n<-Describe-></-Describe->\n</-TaskItem->\n")
                    .arg(i % 10)
                    .arg(optionOf(i + 1));
    return text + QStringLiteral("</=TaskInfo=>\n");
}

/// The project that was open before has been closed.
void openProject(benchmark::State& state)
{
    TaskMgr* const tasks = TaskMgr::getInstance();
    const QString text = projectOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        tasks->fromString(text);
        state.PauseTiming();
        if (tasks->getTask(0)->getTaskItem().size() != state.range(0))
            state.SkipWithError("steps were lost");
        tasks->clear();
        state.ResumeTiming();
    }
}

void closeProject(benchmark::State& state)
{
    TaskMgr* const tasks = TaskMgr::getInstance();
    const QString text = projectOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        tasks->fromString(text);
        state.ResumeTiming();
        tasks->clear();
    }
}

/// All but the disk.
void writeProject(benchmark::State& state)
{
    TaskMgr* const tasks = TaskMgr::getInstance();
    tasks->fromString(projectOf(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        int bytes = 0;
        tasks->save([&bytes](const QByteArray& piece) {
            bytes += piece.size();
            return true;
        });
        if (bytes < 400 * state.range(0))
            state.SkipWithError("steps were lost");
    }
    tasks->clear();
}

BENCHMARK(openProject)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(closeProject)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(writeProject)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
