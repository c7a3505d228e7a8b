// What does the grey value of a loaded pixel cost, beside the plain double expression that defines it?
#include "pixels/pixels.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

constexpr std::size_t Pixels = std::size_t{1920} * 1080;
using Bytes = std::vector<unsigned char>;

/// Argument 0: every colour alike; 1: pure greys only, the colours that need the second look.
Bytes pixels(std::int64_t kind)
{
    std::mt19937 random(1);
    Bytes rgb(3 * Pixels);
    for (std::size_t i = 0; i < rgb.size(); ++i)
        rgb[i] = kind == 1 && i % 3 != 0 ? rgb[i - 1] : static_cast<unsigned char>(random());
    return rgb;
}

void greyByDoubles(benchmark::State& state)
{
    const Bytes rgb = pixels(state.range(0));
    Bytes grey(Pixels);
    for (auto _ : state) {
        for (std::size_t i = 0; i < Pixels; ++i) {
            const unsigned char* s = &rgb[3 * i];
            grey[i] = static_cast<unsigned char>(static_cast<int>(0.587 * s[1] + 0.299 * s[2] + 0.114 * s[0]));
        }
        benchmark::ClobberMemory();
    }
}

void greyOfRgb(benchmark::State& state)
{
    const Bytes rgb = pixels(state.range(0));
    Bytes grey(Pixels);
    for (auto _ : state) {
        Pixels::greyOfRgb(rgb.data(), grey.data(), Pixels);
        benchmark::ClobberMemory();
    }
}

BENCHMARK(greyByDoubles)->Arg(0)->Arg(1);
BENCHMARK(greyOfRgb)->Arg(0)->Arg(1);

}  // namespace
