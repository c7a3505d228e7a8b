#pragma once

#include "pixels/columnMap.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/**
 * The forms of what shows a row of a picture: its pixels taken by a map of columns. One table for each kind of
 * processor. Buffers need no alignment, nothing outside of them is touched, and they do not overlap. Any thread.
 */
struct SamplingKernels
{
    /// Three bytes for each column, out of a row with three bytes a pixel, the first and third exchanged or not.
    using Colour = void (*)(const unsigned char* row, const ColumnMap& map, bool exchange, unsigned char* target);

    /// One byte for each column, out of a row with one byte a pixel.
    using Grey = void (*)(const unsigned char* row, const ColumnMap& map, unsigned char* target);

    /// Copies those pixels of rgb whose grey value is 0, or those whose value is not; leaves the others of target.
    using Overlay = void (*)(const unsigned char* grey, const unsigned char* rgb, bool whereZero, unsigned char* target,
                             std::size_t count);

    /// Three bytes for each grey value: those of its colour, of which there are 256, the first one lowest and zero
    /// above the third.
    using LookUp = void (*)(const unsigned char* grey, const std::uint32_t* colours, unsigned char* target,
                            std::size_t count);

    const char* m_pchName;
    Colour m_pfnColour;
    Grey m_pfnGrey;
    Overlay m_pfnOverlay;
    LookUp m_pfnLookUp;

    /// Plain C++: what the others have to equal, and what they leave the last pixels of a row to.
    static const SamplingKernels& plain();

    // Null where this build or this processor does not have them.
    static const SamplingKernels* ssse3();
    static const SamplingKernels* avx2();
    static const SamplingKernels* avx512();
    static const SamplingKernels* neon();

    /// All that this processor has, the plain one first and the fastest last.
    static std::vector<const SamplingKernels*> available();

    static const SamplingKernels& best();

    // The plain forms from some column on, to which the vector forms leave the rest of a row.
    static void plainColourFrom(std::size_t first, const unsigned char* row, const ColumnMap& map, bool exchange,
                                unsigned char* target);
    static void plainGreyFrom(std::size_t first, const unsigned char* row, const ColumnMap& map, unsigned char* target);
};
