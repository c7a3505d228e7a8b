#include "pixels/samplingKernels.h"

#include <cstring>

namespace {

void colour(const unsigned char* row, const ColumnMap& map, bool exchange, unsigned char* target)
{
    SamplingKernels::plainColourFrom(0, row, map, exchange, target);
}

void grey(const unsigned char* row, const ColumnMap& map, unsigned char* target)
{
    SamplingKernels::plainGreyFrom(0, row, map, target);
}

void overlay(const unsigned char* grey, const unsigned char* rgb, bool whereZero, unsigned char* target,
             std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        // A mask rather than a branch, which noise would make slow.
        const auto taken = static_cast<unsigned char>(-static_cast<int>((grey[i] == 0) == whereZero));
        for (std::size_t byte = 3 * i; byte < 3 * i + 3; ++byte)
            target[byte] = static_cast<unsigned char>((target[byte] & ~taken) | (rgb[byte] & taken));
    }
}

/// Two pixels with each store of eight bytes; the last two of them are overwritten by the pixels behind.
void lookUp(const unsigned char* grey, const ColourTable& table, unsigned char* target, std::size_t count)
{
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the lower pixel stands in front");
    const std::uint32_t* const colours = table.m_anPixels.data();
    std::size_t i = 0;
    for (; i + 3 <= count; i += 2) {
        const std::uint64_t two = colours[grey[i]] | std::uint64_t{colours[grey[i + 1]]} << 24;
        std::memcpy(target + 3 * i, &two, sizeof two);
    }
    for (; i < count; ++i)
        std::memcpy(target + 3 * i, &colours[grey[i]], 3);
}

constexpr SamplingKernels Plain{"plain", colour, grey, overlay, lookUp};

}  // namespace

void SamplingKernels::plainColourFrom(std::size_t first, const unsigned char* row, const ColumnMap& map, bool exchange,
                                      unsigned char* target)
{
    const std::size_t firstByte = exchange ? 2 : 0;
    const std::size_t thirdByte = 2 - firstByte;
    const std::int32_t* columns = map.columns();
    for (std::size_t i = first; i < map.count(); ++i) {
        const unsigned char* pixel = row + 3 * static_cast<std::size_t>(columns[i]);
        target[3 * i] = pixel[firstByte];
        target[3 * i + 1] = pixel[1];
        target[3 * i + 2] = pixel[thirdByte];
    }
}

void SamplingKernels::plainGreyFrom(std::size_t first, const unsigned char* row, const ColumnMap& map,
                                    unsigned char* target)
{
    const std::int32_t* columns = map.columns();
    for (std::size_t i = first; i < map.count(); ++i)
        target[i] = row[columns[i]];
}

const SamplingKernels& SamplingKernels::plain()
{
    return Plain;
}

std::vector<const SamplingKernels*> SamplingKernels::available()
{
    std::vector<const SamplingKernels*> all{&plain()};
    for (const SamplingKernels* kernels : {ssse3(), avx2(), avx512(), neon()}) {
        if (kernels)
            all.push_back(kernels);
    }
    return all;
}

const SamplingKernels& SamplingKernels::best()
{
    static const SamplingKernels& kernels = *available().back();
    return kernels;
}
