#pragma once

class QIODevice;
class QImage;

/// Writes plain bitmaps, byte for byte as Qt does and faster. Any thread.
namespace BmpWriter {

/// Whether a picture is plain: 24 bits red, green, blue, or 8 bits with 256 colours.
bool canWrite(const QImage& picture);

/// False when the device does not take everything.
bool write(QIODevice& device, const QImage& picture);

}  // namespace BmpWriter
