#pragma once

#include "pixels/kernels.h"

#include <QtTest>

#include <random>
#include <vector>

/// What the tests of the operations on pixels share.
namespace PixelSupport {

using Bytes = std::vector<unsigned char>;

/// One row for each form that this processor has.
inline void addForms()
{
    QTest::addColumn<int>("form");
    int index = 0;
    for (const PixelKernels* kernels : PixelKernels::available())
        QTest::newRow(kernels->m_pchName) << index++;
}

inline const PixelKernels& formOfRow()
{
    QFETCH(int, form);
    return *PixelKernels::available().at(static_cast<std::size_t>(form));
}

/// Bytes at random, a good part of them the smallest and the largest.
inline Bytes mixedBytes(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (unsigned char& byte : bytes) {
        const unsigned value = random();
        byte = value % 4 == 0 ? static_cast<unsigned char>(value & 0x100 ? 255 : 0)
                              : static_cast<unsigned char>(value >> 24);
    }
    return bytes;
}

/// The definition of a grey value, one colour at a time. For sources compiled without contraction of floating point.
inline unsigned char defined(int s0, int s1, int s2)
{
    const double grey = 0.587 * s1 + 0.299 * s2 + 0.114 * s0;
    return static_cast<unsigned char>(static_cast<int>(grey));
}

inline Bytes definedOf(const Bytes& rgb)
{
    Bytes grey(rgb.size() / 3);
    for (std::size_t i = 0; i < grey.size(); ++i)
        grey[i] = defined(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]);
    return grey;
}

/// The same colours as 32-bit pixels, with anything in the fourth byte.
inline Bytes bgrxOf(const Bytes& rgb)
{
    Bytes bgrx;
    bgrx.reserve(rgb.size() / 3 * 4);
    for (std::size_t i = 0; i < rgb.size(); i += 3)
        bgrx.insert(bgrx.end(), {rgb[i + 2], rgb[i + 1], rgb[i], static_cast<unsigned char>(i * 7)});
    return bgrx;
}

}  // namespace PixelSupport
