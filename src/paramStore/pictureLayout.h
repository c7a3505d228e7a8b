#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

/**
 * How pictures lie in memory: the one place for row strides and byte counts.
 *
 * Colour: 3 bytes a pixel, rows padded to a multiple of 4 bytes. Grey: one sample a pixel, rows not padded.
 * All counts are bytes; a size below 1 or one whose byte count does not fit counts as 0 bytes.
 */
namespace PictureLayout {

/// The largest picture that is handled, in bytes; keeps every byte count inside a signed 32-bit number.
constexpr std::int64_t MaxBytes = std::numeric_limits<std::int32_t>::max();

/// Bytes of one row of a colour picture: 3 x width rounded up to a multiple of 4; 0 for a width below 1.
constexpr std::int64_t colourStride(int width)
{
    return width < 1 ? 0 : ((std::int64_t{width} + 1) * 3) & ~std::int64_t{3};
}

namespace Detail {
constexpr std::int64_t bytesOf(std::int64_t rowBytes, int height)
{
    if (rowBytes < 1 || height < 1 || rowBytes > MaxBytes)
        return 0;
    // Both are below 2^31. A quotient would tell, too, but 32-bit processors call a function for it.
    const std::int64_t bytes = rowBytes * height;
    return bytes <= MaxBytes ? bytes : 0;
}
}  // namespace Detail

/// Bytes of a colour picture; 0 when it is empty or too large.
constexpr std::int64_t colourBytes(int width, int height)
{
    return Detail::bytesOf(colourStride(width), height);
}

/// Bytes of an 8-bit grey picture; 0 when it is empty or too large.
constexpr std::int64_t gray8Bytes(int width, int height)
{
    return Detail::bytesOf(width, height);
}

/// Bytes of a 16-bit grey picture; 0 when it is empty or too large.
constexpr std::int64_t gray16Bytes(int width, int height)
{
    return Detail::bytesOf(std::int64_t{width} * 2, height);
}

/**
 * Exchanges the first and third byte of every pixel of a colour picture in place (blue-green-red to red-green-blue and
 * back); padding bytes stay as they are.
 */
inline void exchangeFirstAndThird(unsigned char* pixels, int width, int height)
{
    if (!pixels)
        return;
    const auto stride = static_cast<std::size_t>(colourStride(width));
    for (int y = 0; y < height; ++y) {
        unsigned char* pixel = pixels + stride * static_cast<std::size_t>(y);
        for (int x = 0; x < width; ++x, pixel += 3) {
            const unsigned char first = pixel[0];
            pixel[0] = pixel[2];
            pixel[2] = first;
        }
    }
}

static_assert(colourStride(1) == 4 && colourStride(4) == 12 && colourStride(5) == 16 && colourStride(101) == 304);
static_assert(colourBytes(100, 50) == 15000 && colourBytes(101, 50) == 15200 && gray8Bytes(101, 50) == 5050);
static_assert(gray8Bytes(MaxBytes, 1) == MaxBytes && gray8Bytes(65536, 32767) == 65536 * 32767 &&
              gray8Bytes(65536, 32768) == 0 && gray8Bytes(MaxBytes, 2) == 0 && gray8Bytes(MaxBytes, MaxBytes) == 0);
static_assert(gray16Bytes(MaxBytes, 1) == 0 && colourBytes(MaxBytes, MaxBytes) == 0);
static_assert(colourBytes(0, 5) == 0 && colourBytes(-3, 5) == 0 && gray8Bytes(1 << 30, 1 << 30) == 0);

}  // namespace PictureLayout
