#pragma once

#include <QString>

class QImage;

/// Reads picture files that anybody may have made. Any thread.
namespace PictureReader {

/// The largest picture that is decoded: 256 MiB as 32-bit pixels, so that a small hostile file cannot take all memory.
constexpr qint64 MaxPixels = qint64{64} * 1024 * 1024;

/**
 * Decodes a picture file, its format chosen by Qt from the file.
 *
 * @return a null picture when there is no such regular file, its format is foreign, it is damaged or cut short, or the
 *         picture has more than MaxPixels pixels
 */
QImage read(const QString& path);

}  // namespace PictureReader
