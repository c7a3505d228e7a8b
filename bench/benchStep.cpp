// What does the engine's own part of a step cost, beside an empty indirect call?
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMgr.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

namespace {

std::unique_ptr<TaskInfo> taskWithSteps(int steps, int optionLength,
                                        const QString& arithm = QStringLiteral("BENCH_Noop"))
{
    TaskMgr::getInstance();  // makes the algorithm registry
    auto task = std::make_unique<TaskInfo>(QStringLiteral("bench"), nullptr);
    QString text = QStringLiteral(
        "<-DataSource->\n<DSName>Bench Still</DSName><OutputName>p</OutputName><OutputDescribe></OutputDescribe>"
        "<OutputType>Gray8</OutputType><OutputID>1</OutputID><Config>8x8</Config>\n</-DataSource->\n");
    for (int i = 0; i < steps; ++i)
        text += QStringLiteral(
                    "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->%1</-ArithmID->"
                    "<-OptionStr->%2</-OptionStr-></-TaskItem->")
                    .arg(arithm, QString(optionLength, QLatin1Char('x')));
    task->fromString(text);
    return task;
}

/// Nanoseconds of so many turns.
template <class Turn>
double timeOf(int turns, const Turn& turn)
{
    const auto begun = std::chrono::steady_clock::now();
    for (int i = 0; i < turns; ++i)
        turn();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begun).count();
}

double medianOf(std::vector<double>& values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// A step and an empty indirect call in turns of some tens of microseconds: what else the machine does then touches both alike,
/// and the medians of all turns leave out those in which somebody else had the processor. A step is what 50 more of
/// them add to a pass.
void step(benchmark::State& state)
{
    constexpr int Turns = 20;
    constexpr int Added = 50;
    const QString arithm = state.range(1) == 0 ? QStringLiteral("BENCH_Noop") : QStringLiteral("BENCH_Skip");
    const auto one = taskWithSteps(1, static_cast<int>(state.range(0)), arithm);
    const auto many = taskWithSteps(1 + Added, static_cast<int>(state.range(0)), arithm);
    char* (*volatile call)(char*, void*) = [](char*, void*) -> char* { return nullptr; };
    QString message;
    std::vector<double> steps;
    std::vector<double> calls;
    for (auto _ : state) {
        const auto pass = [&message](TaskInfo& task) { return [&] { task.runOnce(message, false, -1, -1); }; };
        steps.push_back((timeOf(Turns, pass(*many)) - timeOf(Turns, pass(*one))) / (Turns * Added));
        const auto emptyCall = [call] { benchmark::DoNotOptimize(call(nullptr, nullptr)); };
        calls.push_back(timeOf(Turns * Added, emptyCall) / (Turns * Added));
    }
    if (!message.isEmpty())
        state.SkipWithError(qPrintable(message));
    state.counters["step"] = medianOf(steps);
    state.counters["call"] = medianOf(calls);
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

BENCHMARK(step)->Args({20, 0})->Args({200, 0})->Args({2000, 0})->Args({20, 1});
BENCHMARK(pass)->Args({51, 20});

}  // namespace
