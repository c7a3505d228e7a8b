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

}  // namespace PixelSupport
