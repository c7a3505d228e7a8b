#include "loading/fileFormats.h"
#include "loading/inputFile.h"
#include "loading/sparePicture.h"
#include "pixels/pixels.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

namespace {

constexpr std::int64_t HeaderBytes = 54;
constexpr std::int64_t PaletteBytes = 1024;
constexpr std::size_t BandBytes = 256 * 1024;  // read at once: stays in the cache until it is converted

struct Bitmap
{
    std::int64_t m_nPixels = 0;  ///< Where they start in the file.
    int m_nBits = 0;             ///< A pixel: 8 or 24.
    int m_nWidth = 0;
    int m_nHeight = 0;
    bool m_bTopDown = false;

    std::size_t rowBytes() const
    {
        return (static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nBits) / 8 + 3) & ~std::size_t{3};
    }
    int place(int storedRow) const { return m_bTopDown ? storedRow : m_nHeight - 1 - storedRow; }
};

/// False for whatever is unusual.
bool parseHeader(const InputFile& file, Bitmap& bitmap)
{
    std::array<unsigned char, HeaderBytes> header;
    if (!file.read(0, header.data(), header.size()))
        return false;
    const auto number = [&header](std::size_t offset) { return qFromLittleEndian<quint32>(&header[offset]); };
    constexpr quint32 InfoHeaderBytes = 40;
    const bool isPlain = number(14) == InfoHeaderBytes && qFromLittleEndian<quint16>(&header[26]) == 1;
    const quint32 compression = number(30);
    const quint32 colours = number(46);
    bitmap.m_nPixels = number(10);
    bitmap.m_nBits = qFromLittleEndian<quint16>(&header[28]);
    const auto height = static_cast<qint32>(number(22));
    bitmap.m_nWidth = static_cast<qint32>(number(18));
    bitmap.m_bTopDown = height < 0;
    const auto rows = static_cast<std::size_t>(std::abs(std::int64_t{height}));
    // A width below 0 is a huge one here.
    if (!isPlain || compression != 0 || !FileFormats::isReasonable(static_cast<std::size_t>(bitmap.m_nWidth), rows))
        return false;
    bitmap.m_nHeight = static_cast<int>(rows);
    const bool is24 = bitmap.m_nBits == 24 && colours == 0 && bitmap.m_nPixels >= HeaderBytes;
    const bool is8 =
        bitmap.m_nBits == 8 && (colours == 0 || colours == 256) && bitmap.m_nPixels >= HeaderBytes + PaletteBytes;
    return is24 || is8;
}

void convertRow(const Bitmap& bitmap, unsigned char* stored, const SparePicture& picture, int y)
{
    const auto width = static_cast<std::size_t>(bitmap.m_nWidth);
    if (bitmap.m_nBits == 8) {
        picture.operation(QImage::Format_Indexed8)(stored, picture.row(y), width);
        return;
    }
    if (!picture.isGrey()) {
        Pixels::exchangeFirstAndThird(stored, picture.row(y), width);
        return;
    }
    Pixels::exchangeFirstAndThird(stored, stored, width);
    Pixels::greyOfRgb(stored, picture.row(y), width);
}

}  // namespace

bool FileFormats::readBmp(const InputFile& file, SparePicture& picture)
{
    Bitmap bitmap;
    if (!parseHeader(file, bitmap))
        return false;
    const std::size_t rowBytes = bitmap.rowBytes();
    const auto allBytes = static_cast<std::int64_t>(rowBytes) * bitmap.m_nHeight;
    if (file.size() < bitmap.m_nPixels + allBytes || !picture.resize(bitmap.m_nWidth, bitmap.m_nHeight))
        return false;
    const int bandRows = static_cast<int>(std::max<std::size_t>(1, BandBytes / rowBytes));
    const std::unique_ptr<unsigned char[]> band(
        new (std::nothrow) unsigned char[rowBytes * static_cast<std::size_t>(std::min(bandRows, bitmap.m_nHeight))]);
    if (!band)
        return false;
    for (int first = 0; first < bitmap.m_nHeight; first += bandRows) {
        const int rows = std::min(bandRows, bitmap.m_nHeight - first);
        const std::int64_t position = bitmap.m_nPixels + static_cast<std::int64_t>(rowBytes) * first;
        if (!file.read(position, band.get(), rowBytes * static_cast<std::size_t>(rows)))
            return false;
        for (int row = 0; row < rows; ++row)
            convertRow(bitmap, band.get() + rowBytes * static_cast<std::size_t>(row), picture,
                       bitmap.place(first + row));
    }
    return true;
}
