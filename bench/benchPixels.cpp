// What do the operations on pixels cost, beside a plain copy, the plain form that defines them, and OpenCV's own?
#include "inTurns.h"
#include "pixels/pixels.h"

#include <benchmark/benchmark.h>

#ifdef LUMIVANT_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include <cstring>
#include <random>
#include <string>
#include <vector>

#if defined(__x86_64__)
#define WIDEST_REGISTERS __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define WIDEST_REGISTERS
#endif

namespace {

constexpr int Width = 1920;
constexpr int Height = 1080;
constexpr std::size_t PixelNum = std::size_t{Width} * Height;
constexpr std::size_t RowBytes = std::size_t{3} * Width;
constexpr std::size_t BandRows = (256 << 10) / RowBytes;  ///< What readers and writers of plain files hold at once.
using Bytes = std::vector<unsigned char>;

/// Argument 0: every colour alike; 1: pure greys only, the colours that need the second look.
Bytes pixels(std::int64_t kind)
{
    std::mt19937 random(1);
    Bytes rgb(3 * PixelNum);
    for (std::size_t i = 0; i < rgb.size(); ++i)
        rgb[i] = kind == 1 && i % 3 != 0 ? rgb[i - 1] : static_cast<unsigned char>(random());
    return rgb;
}

// ---- Exchange of first and third byte -------------------------------------------------------------------------------

/// A picture's rows, one after the other, from where they lie to where they go; a band has the first of them only.
struct Rows
{
    using Call = void (*)(const unsigned char* from, unsigned char* to);

    const unsigned char* m_pchFrom;
    unsigned char* m_pchTo;
    std::size_t m_nRowsFrom = Height;
    std::size_t m_nRowsTo = Height;

    void forEach(Call call) const
    {
        for (std::size_t y = 0; y < Height; ++y)
            call(m_pchFrom + y % m_nRowsFrom * RowBytes, m_pchTo + y % m_nRowsTo * RowBytes);
        benchmark::ClobberMemory();
    }
};

void copyRow(const unsigned char* from, unsigned char* to)
{
    std::memcpy(to, from, RowBytes);
}

/// What a loop that has its bytes in registers needs at least. memcpy has ways past them: the processor's own copy does
/// not read what it overwrites.
WIDEST_REGISTERS void copyRowByRegisters(const unsigned char* from, unsigned char* to)
{
    using Register [[gnu::vector_size(64), gnu::aligned(1), gnu::may_alias]] = unsigned char;
    static_assert(RowBytes % sizeof(Register) == 0, "a row is whole registers");
    for (std::size_t i = 0; i < RowBytes; i += sizeof(Register))
        *reinterpret_cast<Register*>(to + i) = *reinterpret_cast<const Register*>(from + i);
}

void exchangeRow(const unsigned char* from, unsigned char* to)
{
    Pixels::exchangeFirstAndThird(from, to, Width);
}

/// Whole pictures, all the same two, so that each finds in the cache what the others do. And row by row: a file that is
/// read or written in bands, and a picture that is drawn.
void exchange(benchmark::State& state)
{
    const Bytes rgb = pixels(0);
    Bytes target(rgb.size());
    Bytes band(BandRows * RowBytes);
    InTurns turns;
    const auto add = [&turns](const std::string& name, auto call) {
        constexpr int Calls = 8;
        turns.add(name, [call] { return timeOf(Calls, call) / Calls; });
    };
    add("copy", [&rgb, &target] {
        std::memcpy(target.data(), rgb.data(), rgb.size());
        benchmark::ClobberMemory();
    });
    add("inPlace", [&target] { Pixels::exchangeFirstAndThird(target.data(), target.data(), PixelNum); });
    add("copying", [&rgb, &target] { Pixels::exchangeFirstAndThird(rgb.data(), target.data(), PixelNum); });
    const auto addRows = [&add](const std::string& name, const Rows& rows) {
        add("copy" + name, [rows] { rows.forEach(copyRow); });
        add("loop" + name, [rows] { rows.forEach(copyRowByRegisters); });
        add("exchange" + name, [rows] { rows.forEach(exchangeRow); });
    };
    addRows("Read", {band.data(), target.data(), BandRows, Height});
    addRows("Written", {rgb.data(), band.data(), Height, BandRows});
    addRows("Drawn", {rgb.data(), target.data()});
#ifdef LUMIVANT_BENCH_OPENCV
    cv::setNumThreads(1);  // as ours
    const cv::Mat from(Height, Width, CV_8UC3, const_cast<unsigned char*>(rgb.data()));
    cv::Mat to(Height, Width, CV_8UC3, target.data());
    add("openCv", [&from, &to] { cv::cvtColor(from, to, cv::COLOR_BGR2RGB); });
#endif
    turns.measure(state);
}

// ---- Grey -----------------------------------------------------------------------------------------------------------

void greyByDoubles(benchmark::State& state)
{
    const Bytes rgb = pixels(state.range(0));
    Bytes grey(PixelNum);
    for (auto _ : state) {
        for (std::size_t i = 0; i < PixelNum; ++i) {
            const unsigned char* s = &rgb[3 * i];
            grey[i] = static_cast<unsigned char>(static_cast<int>(0.587 * s[1] + 0.299 * s[2] + 0.114 * s[0]));
        }
        benchmark::ClobberMemory();
    }
}

void greyOfRgb(benchmark::State& state)
{
    const Bytes rgb = pixels(state.range(0));
    Bytes grey(PixelNum);
    for (auto _ : state) {
        Pixels::greyOfRgb(rgb.data(), grey.data(), PixelNum);
        benchmark::ClobberMemory();
    }
}

void rgbOfGrey(benchmark::State& state)
{
    const Bytes grey(PixelNum, 77);
    Bytes rgb(3 * PixelNum);
    for (auto _ : state) {
        Pixels::rgbOfGrey(grey.data(), rgb.data(), PixelNum);
        benchmark::ClobberMemory();
    }
}

BENCHMARK(exchange)->Iterations(31);
BENCHMARK(greyByDoubles)->Arg(0)->Arg(1);
BENCHMARK(greyOfRgb)->Arg(0)->Arg(1);
BENCHMARK(rgbOfGrey);

// ---- OpenCV ---------------------------------------------------------------------------------------------------------

#ifdef LUMIVANT_BENCH_OPENCV

/// On one thread, as ours.
void convertByOpenCv(benchmark::State& state, int code, int sourceType, int targetType)
{
    cv::setNumThreads(1);
    Bytes bytes = pixels(state.range(0));
    const cv::Mat source(Height, Width, sourceType, bytes.data());
    cv::Mat target(Height, Width, targetType);
    for (auto _ : state) {
        cv::cvtColor(source, target, code);
        benchmark::ClobberMemory();
    }
}

void greyByOpenCv(benchmark::State& state)
{
    convertByOpenCv(state, cv::COLOR_BGR2GRAY, CV_8UC3, CV_8UC1);
}

void rgbOfGreyByOpenCv(benchmark::State& state)
{
    convertByOpenCv(state, cv::COLOR_GRAY2BGR, CV_8UC1, CV_8UC3);
}

BENCHMARK(greyByOpenCv)->Arg(0)->Arg(1);
BENCHMARK(rgbOfGreyByOpenCv)->Arg(0);

#endif

}  // namespace
