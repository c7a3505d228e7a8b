#pragma once

#include <atomic>
#include <thread>
#include <vector>

/// Runs body(index) on count threads that all start at the same moment, and waits until all have ended.
template <typename Body>
void runAtOnce(int count, const Body& body)
{
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < count; ++index) {
        threads.emplace_back([&ready, &body, count, index] {
            ++ready;
            while (ready < count)
                std::this_thread::yield();
            body(index);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}
