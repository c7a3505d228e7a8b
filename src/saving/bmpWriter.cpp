#include "saving/bmpWriter.h"

#include "pixels/pixels.h"

#include <QIODevice>
#include <QImage>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace {

constexpr int HeaderBytes = 54;
constexpr int PaletteColours = 256;
constexpr std::int64_t BandBytes = 256 * 1024;  // written at once: stays in the cache until the file takes it

bool is8Bits(const QImage& picture)
{
    return picture.format() == QImage::Format_Indexed8;
}

std::int64_t rowBytes(const QImage& picture)
{
    return (std::int64_t{picture.width()} * picture.depth() + 31) / 32 * 4;
}

QByteArray header(const QImage& picture)
{
    const int colours = is8Bits(picture) ? PaletteColours : 0;
    const std::int64_t pixelBytes = rowBytes(picture) * picture.height();
    const int pixelsAt = HeaderBytes + colours * 4;
    QByteArray bytes("BM", 2);
    bytes.reserve(pixelsAt);
    const auto put = [&bytes](std::int64_t number) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.append(static_cast<char>(number >> shift & 0xFF));
    };
    put(pixelsAt + pixelBytes);
    put(0);
    put(pixelsAt);
    put(40);  // bytes of what follows up to the palette
    put(picture.width());
    put(picture.height());  // the last row comes first
    put(1 | picture.depth() << 16);
    put(0);  // not compressed
    put(pixelBytes);
    put(picture.dotsPerMeterX());
    put(picture.dotsPerMeterY());
    put(colours);
    put(colours);
    for (int colour = 0; colour < colours; ++colour)
        put(picture.color(colour) & 0xFFFFFFU);
    return bytes;
}

void convertRow(const QImage& picture, int y, char* target)
{
    auto* row = reinterpret_cast<unsigned char*>(target);
    const auto width = static_cast<std::size_t>(picture.width());
    if (is8Bits(picture))
        std::memcpy(row, picture.constScanLine(y), width);
    else
        Pixels::exchangeFirstAndThird(picture.constScanLine(y), row, width);
}

}  // namespace

bool BmpWriter::canWrite(const QImage& picture)
{
    const bool isPlain =
        picture.format() == QImage::Format_RGB888 || (is8Bits(picture) && picture.colorCount() == PaletteColours);
    constexpr std::int64_t MostBytes = std::numeric_limits<qint32>::max() - HeaderBytes - PaletteColours * 4;
    return isPlain && rowBytes(picture) <= MostBytes / picture.height();  // what has a format has a row
}

bool BmpWriter::write(QIODevice& device, const QImage& picture)
{
    const QByteArray start = header(picture);
    if (device.write(start) != start.size())
        return false;
    const std::int64_t row = rowBytes(picture);
    const int bandRows = static_cast<int>(std::clamp<std::int64_t>(BandBytes / row, 1, picture.height()));
    // Zeroed once: the bytes between a row's last pixel and the next row stay so.
    const std::unique_ptr<char[]> band(new (std::nothrow) char[static_cast<std::size_t>(row * bandRows)]());
    if (!band)
        return false;
    for (int bottom = picture.height(); bottom > 0; bottom -= bandRows) {
        const int rows = std::min(bandRows, bottom);
        for (int i = 0; i < rows; ++i)
            convertRow(picture, bottom - 1 - i, band.get() + row * i);
        if (device.write(band.get(), row * rows) != row * rows)
            return false;
    }
    return true;
}
