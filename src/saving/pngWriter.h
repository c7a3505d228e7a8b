#pragma once

class QIODevice;
class QImage;

/**
 * Writes plain PNG pictures: the same pixels in the same kind of file as Qt, compressed faster. Any thread.
 *
 * A few strips of the picture are compressed in two ways first; they tell which way gives about the size that zlib's
 * slow default would give: runs alone for noisy pictures, short matches for smooth ones, longer ones for sparse ones.
 */
namespace PngWriter {

/// Whether a picture is plain: 24 bits red, green, blue, or 8 bits with the 256 greys as its colours.
bool canWrite(const QImage& picture);

/// False when there is no memory or the device does not take everything.
bool write(QIODevice& device, const QImage& picture);

}  // namespace PngWriter
