#pragma once

#include <cstddef>

class QImage;

/// From a decoded picture to the bytes of a record, in one pass over the pixels. Any thread.
namespace PictureConvert {

/**
 * Grey values of red-green-blue pixels: the integer part of 0.587 * s1 + 0.299 * s2 + 0.114 * s0 in double precision,
 * s0, s1, s2 being a pixel's bytes in their order, for every one of the 2^24 colours.
 *
 * Kept on purpose: the weights of red and blue are exchanged against the usual luma rule.
 */
void greyOfRgb(const unsigned char* rgb, unsigned char* grey, std::size_t count);

/**
 * Writes a picture as the bytes of a colour record: red, green, blue, rows padded to a multiple of 4 bytes.
 *
 * An 8-bit palette picture gives each index three times, whatever its palette.
 * @param target PictureLayout::colourBytes(width, height) bytes
 * @return false when there was no memory; target may then hold a part of the picture
 */
bool copyAsColour(const QImage& picture, unsigned char* target);

/**
 * Writes a picture as the bytes of a grey record: one byte a pixel, rows not padded.
 *
 * An 8-bit palette picture gives its indices, whatever its palette; any other gives greyOfRgb.
 * @param target width x height bytes
 * @return false when there was no memory; target may then hold a part of the picture
 */
bool copyAsGrey(const QImage& picture, unsigned char* target);

}  // namespace PictureConvert
