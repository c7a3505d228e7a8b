// What does the engine's own part of a step cost, beside an empty indirect call?
#include "inTurns.h"
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMgr.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <utility>

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

constexpr int Turns = 20;
constexpr int Added = 50;

/// Passes over one step and over 50 more of the same: what these add is 50 steps.
class AddedSteps
{
public:
    AddedSteps(int optionLength, const QString& arithm)
        : m_pcOne(taskWithSteps(1, optionLength, arithm)), m_pcMany(taskWithSteps(1 + Added, optionLength, arithm))
    {
    }
    /// Nanoseconds of one of those steps.
    double measure(QString& message) const
    {
        const auto pass = [&message](TaskInfo& task) { return [&] { task.runOnce(message, false, -1, -1); }; };
        return (timeOf(Turns, pass(*m_pcMany)) - timeOf(Turns, pass(*m_pcOne))) / (Turns * Added);
    }

private:
    std::unique_ptr<TaskInfo> m_pcOne;
    std::unique_ptr<TaskInfo> m_pcMany;
};

/// Steps with options of several lengths, one whose result is a command, and an empty indirect call, in turns of some
/// tens of microseconds.
void step(benchmark::State& state)
{
    const QString noop = QStringLiteral("BENCH_Noop");
    const std::array<std::pair<const char*, AddedSteps>, 4> kinds{
        {{"step20", AddedSteps(20, noop)},
         {"step200", AddedSteps(200, noop)},
         {"step2000", AddedSteps(2000, noop)},
         {"command", AddedSteps(20, QStringLiteral("BENCH_Skip"))}}};
    char* (*volatile call)(char*, void*) = [](char*, void*) -> char* { return nullptr; };
    QString message;
    InTurns turns;
    for (const auto& kind : kinds)
        turns.add(kind.first, [&steps = kind.second, &message] { return steps.measure(message); });
    turns.add("call", [call] {
        const auto emptyCall = [call] { benchmark::DoNotOptimize(call(nullptr, nullptr)); };
        return timeOf(Turns * Added, emptyCall) / (Turns * Added);
    });
    turns.measure(state);
    if (!message.isEmpty())
        state.SkipWithError(qPrintable(message));
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

BENCHMARK(step);
BENCHMARK(pass)->Args({51, 20});

}  // namespace
