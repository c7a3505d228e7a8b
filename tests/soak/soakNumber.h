#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/**
 * The number in the pixels of every picture of the soak: who made it, who handed it on last, and as which.
 *
 * It stands in the first bytes of the first row; all bytes behind it, padding too, are one value that follows from it,
 * so that a picture mixed from two is seen.
 */
struct SoakNumber
{
    static constexpr std::uint32_t Magic = 0x50A70001U;

    std::uint32_t m_nMagic = Magic;
    std::uint32_t m_nSource = 0;    ///< The source instance that made it.
    std::uint64_t m_nSequence = 0;  ///< Its number there, counted from 1.
    std::uint32_t m_nWriter = 0;    ///< The run that put it onto a memory disk last; 0 for none.
    std::uint32_t m_nReserved = 0;
    std::uint64_t m_nWritten = 0;  ///< Its number there, counted from 1.

    unsigned char fill() const { return static_cast<unsigned char>(m_nSequence * 31 + m_nSource * 7); }

    /// False when the bytes hold no number.
    static bool read(const unsigned char* pixels, std::size_t bytes, SoakNumber& number)
    {
        if (!pixels || bytes < sizeof number)
            return false;
        std::memcpy(&number, pixels, sizeof number);
        return number.m_nMagic == Magic;
    }
    void write(unsigned char* pixels) const { std::memcpy(pixels, this, sizeof *this); }

    /// Whether all bytes behind the number are of the same picture.
    bool isWhole(const unsigned char* pixels, std::size_t bytes) const
    {
        const unsigned char value = fill();
        for (std::size_t i = sizeof *this; i < bytes; ++i) {
            if (pixels[i] != value)
                return false;
        }
        return true;
    }
};

static_assert(sizeof(SoakNumber) == 32, "no padding that differs");

/// Bytes of a picture as sources and disks lay it out.
inline std::size_t soakBytes(bool colour, int width, int height)
{
    const auto columns = static_cast<std::size_t>(width);
    return (colour ? (columns * 3 + 3) / 4 * 4 : columns) * static_cast<std::size_t>(height);
}
