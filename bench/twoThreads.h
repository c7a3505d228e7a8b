#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <thread>

/// Measures what one thread hands to another.
namespace TwoThreads {

constexpr int PicturesInARound = 24;

/// Runs write and read that many times for each iteration, each on a thread of its own; the time is that of a picture.
template <class Write, class Read>
void measure(benchmark::State& state, const Write& write, const Read& read)
{
    for (auto _ : state) {
        const auto begun = std::chrono::steady_clock::now();
        std::thread writer([&write] {
            for (int turn = 0; turn < PicturesInARound; ++turn)
                write(turn);
        });
        for (int turn = 0; turn < PicturesInARound; ++turn)
            read(turn);
        writer.join();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
        state.SetIterationTime(took.count() / PicturesInARound);
    }
}

}  // namespace TwoThreads
