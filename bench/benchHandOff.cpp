// How many pictures a second go from one thread to another through a memory disk, beside the two bare copies through
// six buffers, and beside a pair of GStreamer's elements?
#include "memoryDisk/memoryDisk.h"
#include "paramStore/pictureLayout.h"
#include "twoThreads.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <vector>

namespace {

constexpr int Slots = 6;

std::size_t bytesOf(const benchmark::State& state)
{
    return static_cast<std::size_t>(
        PictureLayout::colourBytes(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))));
}

/// The limit: neither thread waits for the other, so what is copied out may be any mixture. They start half the slots
/// apart, so that they do not want the same lines of the cache.
void twoPlainCopies(benchmark::State& state)
{
    const std::vector<unsigned char> source(bytesOf(state), 7);
    std::vector<unsigned char> target(source.size());
    std::array<std::vector<unsigned char>, Slots> slots;
    slots.fill(source);
    const auto slotOf = [&slots](int turn) { return slots[static_cast<std::size_t>(turn % Slots)].data(); };
    TwoThreads::measure(
        state, [&](int turn) { std::memcpy(slotOf(turn), source.data(), source.size()); },
        [&](int turn) { std::memcpy(target.data(), slotOf(turn + Slots / 2), target.size()); });
}

void handOff(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    const int height = static_cast<int>(state.range(1));
    std::vector<unsigned char> source(bytesOf(state), 7);
    std::vector<unsigned char> target(source.size());
    MemoryDisk* disk = MemoryDisk::getInstance(0);
    for (int slot = 0; slot < disk->getDIBBuffNum(); ++slot) {  // the buffers of a running line have been used before
        disk->addDIB(source.data(), width, height);
        disk->releaseDIB(disk->requestDIB());
    }
    TwoThreads::measure(
        state,
        [&](int) {
            if (!disk->addDIB(source.data(), width, height))
                state.SkipWithError("the disk refused a picture");
        },
        [&](int) {
            MemoryDisk::DIB* slot = disk->requestDIB();
            if (!slot)
                return state.SkipWithError("the disk lost a picture");
            std::memcpy(target.data(), slot->getDIB(), target.size());
            disk->releaseDIB(slot);
        });
}

void bareHandOff(benchmark::State& state)
{
    unsigned char pixel[4] = {1, 2, 3, 0};
    MemoryDisk* disk = MemoryDisk::getInstance(1);
    for (auto _ : state) {
        if (!disk->addDIB(pixel, 1, 1))
            state.SkipWithError("the disk refused a picture");
        MemoryDisk::DIB* slot = disk->requestDIB();
        if (!slot) {
            state.SkipWithError("the disk lost a picture");
            break;
        }
        disk->releaseDIB(slot);
    }
}

BENCHMARK(twoPlainCopies)->Args({1920, 1080})->Args({4096, 3000})->UseManualTime();
BENCHMARK(handOff)->Args({1920, 1080})->Args({4096, 3000})->UseManualTime();
BENCHMARK(bareHandOff);

}  // namespace
