#pragma once

class QImage;

/**
 * From a decoded picture to the bytes of a record, in one pass over the pixels. Any thread.
 *
 * Red, green and blue are what QImage::convertToFormat(QImage::Format_RGB888) makes of the picture.
 */
namespace PictureConvert {

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
