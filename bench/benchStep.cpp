// What does the engine's own part of a step cost, beside an empty indirect call?
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMgr.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

std::unique_ptr<TaskInfo> taskWithSteps(int steps, int optionLength)
{
    TaskMgr::getInstance();  // makes the algorithm registry
    auto task = std::make_unique<TaskInfo>(QStringLiteral("bench"), nullptr);
    QString text = QStringLiteral(
        "<-DataSource->\n<DSName>Bench Still</DSName><OutputName>p</OutputName><OutputDescribe></OutputDescribe>"
        "<OutputType>Gray8</OutputType><OutputID>1</OutputID><Config>8x8</Config>\n</-DataSource->\n");
    for (int i = 0; i < steps; ++i)
        text += QStringLiteral(
                    "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->BENCH_Noop</-ArithmID->"
                    "<-OptionStr->%1</-OptionStr-></-TaskItem->")
                    .arg(QString(optionLength, QLatin1Char('x')));
    task->fromString(text);
    return task;
}

void emptyIndirectCall(benchmark::State& state)
{
    char* (*volatile call)(char*, void*) = [](char*, void*) -> char* { return nullptr; };
    for (auto _ : state)
        benchmark::DoNotOptimize(call(nullptr, nullptr));
}

void pass(benchmark::State& state)
{
    const auto task = taskWithSteps(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    QString message;
    for (auto _ : state) {
        if (!task->runOnce(message, false, -1, -1))
            state.SkipWithError(qPrintable(message));
    }
}

BENCHMARK(emptyIndirectCall);
BENCHMARK(pass)->Args({1, 20})->Args({51, 20})->Args({51, 200})->Args({51, 2000});

}  // namespace
