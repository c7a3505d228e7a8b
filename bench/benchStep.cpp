// What does the engine's own part of a step cost, beside an empty indirect call?
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMgr.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
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
    void measure(QString& message)
    {
        const auto pass = [&message](TaskInfo& task) { return [&] { task.runOnce(message, false, -1, -1); }; };
        m_vecTimes.push_back((timeOf(Turns, pass(*m_pcMany)) - timeOf(Turns, pass(*m_pcOne))) / (Turns * Added));
    }
    double median() { return medianOf(m_vecTimes); }

private:
    std::unique_ptr<TaskInfo> m_pcOne;
    std::unique_ptr<TaskInfo> m_pcMany;
    std::vector<double> m_vecTimes;
};

/// Steps with options of several lengths, one whose result is a command, and an empty indirect call, in turns of some
/// tens of microseconds: what else the machine does then touches all alike, and the medians of all turns leave out
/// those in which somebody else had the processor.
void step(benchmark::State& state)
{
    const QString noop = QStringLiteral("BENCH_Noop");
    std::array<AddedSteps, 4> kinds{AddedSteps(20, noop), AddedSteps(200, noop), AddedSteps(2000, noop),
                                    AddedSteps(20, QStringLiteral("BENCH_Skip"))};
    const char* const names[] = {"step20", "step200", "step2000", "command"};
    char* (*volatile call)(char*, void*) = [](char*, void*) -> char* { return nullptr; };
    const auto emptyCall = [call] { benchmark::DoNotOptimize(call(nullptr, nullptr)); };
    std::vector<double> calls;
    QString message;
    for (auto _ : state) {
        for (AddedSteps& steps : kinds)
            steps.measure(message);
        calls.push_back(timeOf(Turns * Added, emptyCall) / (Turns * Added));
    }
    if (!message.isEmpty())
        state.SkipWithError(qPrintable(message));
    for (std::size_t i = 0; i < kinds.size(); ++i)
        state.counters[names[i]] = kinds[i].median();
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

BENCHMARK(step);
BENCHMARK(pass)->Args({51, 20});

}  // namespace
