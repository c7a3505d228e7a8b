#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// Nanoseconds of so many calls, one after the other.
template <class Call>
double timeOf(int calls, const Call& call)
{
    const auto begun = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i)
        call();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begun).count();
}

/**
 * Measures what is to be compared in short turns, one after the other: what else the machine does meanwhile touches all
 * alike, and the medians of all turns leave out those in which somebody else had the processor.
 */
class InTurns
{
public:
    /// turn measures once and returns nanoseconds; what it refers to outlives this.
    void add(std::string name, std::function<double()> turn)
    {
        m_vecKinds.push_back({std::move(name), std::move(turn), {}});
    }

    /// Each iteration is a turn of each; the medians become counters of their names.
    void measure(benchmark::State& state)
    {
        std::mt19937 random(1);
        for (auto _ : state) {
            std::shuffle(m_vecKinds.begin(), m_vecKinds.end(), random);  // what comes before changes what lies near
            for (Kind& kind : m_vecKinds)
                kind.m_vecTimes.push_back(kind.m_fnTurn());
        }
        for (Kind& kind : m_vecKinds)
            state.counters[kind.m_strName] = medianOf(kind.m_vecTimes);
    }

private:
    struct Kind
    {
        std::string m_strName;
        std::function<double()> m_fnTurn;
        std::vector<double> m_vecTimes;
    };

    static double medianOf(std::vector<double>& times)
    {
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

    std::vector<Kind> m_vecKinds;
};
