// How many pictures a second go from one thread to another through a memory disk, beside the two bare copies through
// six buffers, and beside a pair of GStreamer's elements?
#include "inTurns.h"
#include "memoryDisk/memoryDisk.h"
#include "paramStore/pictureLayout.h"
#include "pixels/pixels.h"

#ifdef LUMIVANT_BENCH_GSTREAMER
#include "gstreamerPair.h"
#endif

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Picture = std::vector<unsigned char>;

constexpr int Slots = 6;

/// Nanoseconds for each of so many pictures that one thread writes and another one reads.
template <class Write, class Read>
double timeOfPicture(int pictures, const Write& write, const Read& read)
{
    const auto allOf = [pictures](const auto& call) {
        for (int turn = 0; turn < pictures; ++turn)
            call(turn);
    };
    return timeOf(1,
                  [&] {
                      std::thread writer([&] { allOf(write); });
                      allOf(read);
                      writer.join();
                  }) /
           pictures;
}

using Copy = void (*)(const unsigned char* source, unsigned char* target, std::size_t bytes);

void copyByMemcpy(const unsigned char* source, unsigned char* target, std::size_t bytes)
{
    std::memcpy(target, source, bytes);
}

/// The limits: neither thread waits for the other, so what is copied out may be any mixture. They start half the slots
/// apart, so that they do not want the same lines of the cache.
class BareCopies
{
public:
    explicit BareCopies(const Picture& picture) { m_aSlots.fill(picture); }
    double measure(int pictures, const Picture& source, Picture& target, Copy in, Copy out)
    {
        return timeOfPicture(
            pictures, [&](int turn) { in(source.data(), slotOf(turn), source.size()); },
            [&](int turn) { out(slotOf(turn + Slots / 2), target.data(), target.size()); });
    }

private:
    unsigned char* slotOf(int turn) { return m_aSlots[static_cast<std::size_t>(turn % Slots)].data(); }

    std::array<Picture, Slots> m_aSlots;
};

class ThroughDisk
{
public:
    ThroughDisk(Picture& picture, int width, int height) : m_nWidth(width), m_nHeight(height)
    {
        for (int slot = 0; slot < m_pcDisk->getDIBBuffNum(); ++slot) {  // the buffers of a running line have been used
            m_pcDisk->addDIB(picture.data(), width, height);
            m_pcDisk->releaseDIB(m_pcDisk->requestDIB());
        }
    }
    double measure(int pictures, Picture& source, Picture& target, benchmark::State& state) const
    {
        return timeOfPicture(
            pictures,
            [&](int) {
                if (!m_pcDisk->addDIB(source.data(), m_nWidth, m_nHeight))
                    state.SkipWithError("the disk refused a picture");
            },
            [&](int) {
                MemoryDisk::DIB* slot = m_pcDisk->requestDIB();
                if (!slot)
                    return state.SkipWithError("the disk lost a picture");
                Pixels::copyPicture(slot->getDIB(), target.data(), target.size());  // as a task does
                m_pcDisk->releaseDIB(slot);
            });
    }

private:
    MemoryDisk* m_pcDisk = MemoryDisk::getInstance(0);
    int m_nWidth;
    int m_nHeight;
};

/// Pictures of a width and a height, so many in a turn.
void handOff(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    const int height = static_cast<int>(state.range(1));
    const int pictures = static_cast<int>(state.range(2));
    Picture source(static_cast<std::size_t>(PictureLayout::colourBytes(width, height)), 7);
    Picture target(source.size());
    BareCopies copies(source);
    const ThroughDisk disk(source, width, height);
    InTurns turns;
    turns.add("copies", [&] { return copies.measure(pictures, source, target, copyByMemcpy, copyByMemcpy); });
    turns.add("ownCopies",
              [&] { return copies.measure(pictures, source, target, Pixels::copyPictureAside, Pixels::copyPicture); });
    turns.add("disk", [&] { return disk.measure(pictures, source, target, state); });
#ifdef LUMIVANT_BENCH_GSTREAMER
    GStreamerPair pooled(source.size(), true);
    GStreamerPair fresh(source.size(), false);
    for (auto& [name, pair] : {std::pair<const char*, GStreamerPair&>{"pooledPair", pooled}, {"freshPair", fresh}}) {
        if (pair.isInstalled())
            turns.add(name, [&, &pair = pair] {
                return timeOfPicture(
                    pictures, [&](int) { pair.write(source); }, [&](int) { pair.read(target); });
            });
    }
#endif
    turns.measure(state);
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

// So many that waiting for the first one to be written and for the last one to be read is a small part of a turn.
BENCHMARK(handOff)->Args({1920, 1080, 96})->Iterations(9);
BENCHMARK(handOff)->Args({4096, 3000, 24})->Iterations(3);
BENCHMARK(bareHandOff);

}  // namespace
