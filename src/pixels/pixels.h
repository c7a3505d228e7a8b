#pragma once

#include <cstddef>

/**
 * What is done to whole rows of pixels, by the fastest code that the processor has.
 *
 * Counts are pixels; a pixel of rgb has 3 bytes, one of grey 1, one of bgrx 4: blue, green, red and one that is
 * ignored, as 32-bit pixels lie in memory. Buffers need no alignment and nothing outside of them is touched. They do
 * not overlap, except where they may be the same. Any thread.
 */
namespace Pixels {

/// Exchanges the first and third byte of each pixel; target may be source itself.
void exchangeFirstAndThird(const unsigned char* source, unsigned char* target, std::size_t count);

/**
 * Grey values: the integer part of 0.587 * s1 + 0.299 * s2 + 0.114 * s0 in double precision, evaluated in that order,
 * s0, s1, s2 being a pixel's bytes in their order, for every one of the 2^24 colours.
 *
 * Kept on purpose: the weights of red and blue are exchanged against the usual luma rule.
 */
void greyOfRgb(const unsigned char* rgb, unsigned char* grey, std::size_t count);

/// greyOfRgb of 32-bit pixels: s0 is the red byte.
void greyOfBgrx(const unsigned char* bgrx, unsigned char* grey, std::size_t count);

/// Red, green and blue of 32-bit pixels.
void rgbOfBgrx(const unsigned char* bgrx, unsigned char* rgb, std::size_t count);

/// Each grey value three times.
void rgbOfGrey(const unsigned char* grey, unsigned char* rgb, std::size_t count);

/// Copies all bytes of a picture that is worked on next: what memcpy does; a very large one does not go through the
/// cache, which does not hold it anyway.
void copyPicture(const unsigned char* source, unsigned char* target, std::size_t bytes);

/// copyPicture for one of several buffers in turn, which another thread reads later: what is overwritten is not read.
void copyPictureAside(const unsigned char* source, unsigned char* target, std::size_t bytes);

}  // namespace Pixels
