#include "saving/bmpWriter.h"

#include "pixels/pixels.h"

#include <QIODevice>
#include <QImage>
#include <QtEndian>

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
    QByteArray bytes(pixelsAt, '\0');
    char* data = bytes.data();
    const auto put = [data](int offset, std::int64_t number) {
        qToLittleEndian(static_cast<quint32>(number), data + offset);
    };
    data[0] = 'B';
    data[1] = 'M';
    put(2, pixelsAt + pixelBytes);
    put(10, pixelsAt);
    put(14, 40);  // bytes of what follows up to the palette
    put(18, picture.width());
    put(22, picture.height());  // the last row comes first
    put(26, 1 | picture.depth() << 16);
    put(34, pixelBytes);
    put(38, picture.dotsPerMeterX());
    put(42, picture.dotsPerMeterY());
    put(46, colours);
    put(50, colours);
    for (int colour = 0; colour < colours; ++colour)
        put(HeaderBytes + 4 * colour, picture.color(colour) & 0xFFFFFFU);
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
    return isPlain && picture.height() > 0 && rowBytes(picture) <= MostBytes / picture.height();
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
