#pragma once

#include <QImage>

#include <cstddef>

/**
 * From a decoded picture to the bytes of a record, in one pass over the pixels. Any thread.
 *
 * Red, green and blue are what QImage::convertToFormat(QImage::Format_RGB888) makes of the picture.
 */
namespace PictureConvert {

/// What happens to a row of count pixels; source and target do not overlap.
using RowOperation = void (*)(const unsigned char* source, unsigned char* target, std::size_t count);

// From a picture's own row to a row of a colour or a grey record; null when Qt has to convert the picture first.
RowOperation colourOperation(QImage::Format format);
RowOperation greyOperation(QImage::Format format);

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
 * An 8-bit palette picture gives its indices, whatever its palette; any other gives Pixels::greyOfRgb of its red,
 * green, blue.
 * @param target width x height bytes
 * @return false when there was no memory; target may then hold a part of the picture
 */
bool copyAsGrey(const QImage& picture, unsigned char* target);

}  // namespace PictureConvert
