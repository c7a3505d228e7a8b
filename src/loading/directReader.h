#pragma once

#include <QString>

class SparePicture;

/**
 * Reads plain picture files without the detour over a QImage: uncompressed bitmaps of 8 and 24 bits, baseline JPEG and
 * 8-bit PNG that is not interlaced and has no transparent colours. Any thread.
 */
namespace DirectReader {

/**
 * Decodes a file into a picture, with the same pixels that PictureReader and PictureConvert give.
 *
 * @return false for a file that is unusual or damaged in any way, or has another suffix than its content: PictureReader
 *         has the last word on it. The picture then holds nothing of use.
 */
bool read(const QString& path, SparePicture& picture);

}  // namespace DirectReader
