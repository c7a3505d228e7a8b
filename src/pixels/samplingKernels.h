#pragma once

#include "pixels/columnMap.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A colour for each of the 256 grey values, in the two ways in which the forms look them up.
struct ColourTable
{
    static constexpr std::size_t Values = 256;

    void set(std::size_t value, const std::array<unsigned char, 3>& bytes)
    {
        m_anPixels[value] = bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16;
        for (std::size_t i = 0; i < bytes.size(); ++i)
            m_aaByteOf[i][value] = bytes[i];
    }

    std::array<std::uint32_t, Values> m_anPixels{};                 ///< The first byte lowest, nothing above the third.
    std::array<std::array<unsigned char, Values>, 3> m_aaByteOf{};  ///< All first bytes, all second, all third ones.
};

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

    /// Three bytes for each grey value: those of its colour.
    using LookUp = void (*)(const unsigned char* grey, const ColourTable& colours, unsigned char* target,
                            std::size_t count);

    /// What LookUp, or three times each value, and then Overlay would give, without the colours of a row in between.
    using OverlayColours = void (*)(const unsigned char* grey, const ColourTable& colours, bool whereZero,
                                    unsigned char* target, std::size_t count);
    using OverlayGreys = void (*)(const unsigned char* grey, bool whereZero, unsigned char* target, std::size_t count);

    const char* m_pchName;
    Colour m_pfnColour;
    Grey m_pfnGrey;
    Overlay m_pfnOverlay;
    LookUp m_pfnLookUp;
    OverlayColours m_pfnOverlayColours = nullptr;  ///< Null where the two steps are as fast; so is the next.
    OverlayGreys m_pfnOverlayGreys = nullptr;

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
