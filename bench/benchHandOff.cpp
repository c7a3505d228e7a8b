// What does a full HD picture through a memory disk cost, beside its two bare copies through six buffers?
#include "memoryDisk/memoryDisk.h"
#include "paramStore/pictureLayout.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <vector>

namespace {

constexpr int Width = 1920;
constexpr int Height = 1080;
constexpr auto Bytes = static_cast<std::size_t>(PictureLayout::colourBytes(Width, Height));

void twoPlainCopies(benchmark::State& state)
{
    std::vector<unsigned char> source(Bytes, 7);
    std::vector<unsigned char> target(Bytes);
    std::array<std::vector<unsigned char>, 6> slots;
    slots.fill(std::vector<unsigned char>(Bytes));
    std::size_t turn = 0;
    for (auto _ : state) {
        std::vector<unsigned char>& slot = slots[turn++ % slots.size()];
        std::memcpy(slot.data(), source.data(), Bytes);
        benchmark::ClobberMemory();
        std::memcpy(target.data(), slot.data(), Bytes);
        benchmark::ClobberMemory();
    }
}

void handOff(benchmark::State& state)
{
    std::vector<unsigned char> source(Bytes, 7);
    std::vector<unsigned char> target(Bytes);
    MemoryDisk* disk = MemoryDisk::getInstance(0);
    for (int slot = 0; slot < disk->getDIBBuffNum(); ++slot) {  // the buffers of a running line have been used before
        disk->addDIB(source.data(), Width, Height);
        disk->releaseDIB(disk->requestDIB());
    }
    for (auto _ : state) {
        if (!disk->addDIB(source.data(), Width, Height))
            state.SkipWithError("the disk refused a picture");
        MemoryDisk::DIB* slot = disk->requestDIB();
        if (!slot) {
            state.SkipWithError("the disk lost a picture");
            break;
        }
        std::memcpy(target.data(), slot->getDIB(), Bytes);
        benchmark::ClobberMemory();
        disk->releaseDIB(slot);
    }
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

BENCHMARK(twoPlainCopies);
BENCHMARK(handOff);
BENCHMARK(bareHandOff);

}  // namespace
