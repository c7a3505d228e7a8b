#include "saving/pngWriter.h"

#include <QIODevice>
#include <QImage>

#include <algorithm>
#include <vector>

#include <png.h>
#include <zlib.h>

namespace {

/// How a picture is compressed.
struct Manner
{
    int m_nLevel;
    int m_nStrategy;
    int m_nFilter;
};

constexpr Manner Noisy{1, Z_RLE, PNG_FILTER_SUB};
constexpr Manner Smooth{3, Z_FILTERED, PNG_FILTER_SUB};
// Rows are taken as they are where that is shorter: on black even the name of a filter would be the only byte above 0.
constexpr Manner Sparse{4, Z_DEFAULT_STRATEGY, PNG_FILTER_NONE | PNG_FILTER_UP};

using Bytes = std::vector<unsigned char>;

/// A few strips of rows, each pixel as its difference from the one before.
Bytes sampleOf(const QImage& picture)
{
    constexpr int Strips = 4;
    constexpr int StripRows = 6;
    const int pixelBytes = picture.depth() / 8;
    const int rowBytes = picture.width() * pixelBytes;
    Bytes sample;
    for (int strip = 0; strip < Strips; ++strip) {
        const int first = (picture.height() - StripRows) * (2 * strip + 1) / (2 * Strips);
        for (int y = std::max(first, 0); y < std::min(first + StripRows, picture.height()); ++y) {
            const unsigned char* row = picture.constScanLine(y);
            sample.insert(sample.end(), row, row + std::min(pixelBytes, rowBytes));
            for (int i = pixelBytes; i < rowBytes; ++i)
                sample.push_back(static_cast<unsigned char>(row[i] - row[i - pixelBytes]));
        }
    }
    return sample;
}

/// 0 when there is no memory.
std::size_t compressedBytes(const Bytes& sample, const Manner& manner)
{
    z_stream stream = {};
    constexpr int WindowBits = 15;
    constexpr int MemoryLevel = 8;
    if (deflateInit2(&stream, manner.m_nLevel, Z_DEFLATED, WindowBits, MemoryLevel, manner.m_nStrategy) != Z_OK)
        return 0;
    Bytes result(deflateBound(&stream, static_cast<uLong>(sample.size())));
    stream.next_in = const_cast<Bytef*>(sample.data());  // an old interface; it only reads
    stream.avail_in = static_cast<uInt>(sample.size());
    stream.next_out = result.data();
    stream.avail_out = static_cast<uInt>(result.size());
    deflate(&stream, Z_FINISH);
    deflateEnd(&stream);
    return stream.total_out;
}

Manner mannerFor(const QImage& picture)
{
    constexpr std::size_t SparseFactor = 48;
    const Bytes sample = sampleOf(picture);
    const std::size_t smooth = compressedBytes(sample, Smooth);
    if (smooth * SparseFactor < sample.size())
        return Sparse;
    return compressedBytes(sample, Noisy) * 10 <= smooth * 11 ? Noisy : Smooth;
}

/**
 * What the encoder needs. Errors leave its functions by longjmp: encode has no objects with destructors, and nothing of
 * C++ with any lies between it and the encoder.
 */
struct Encoder
{
    png_structp m_pcPng = nullptr;
    png_infop m_pcInfo = nullptr;
    QIODevice* m_pcDevice = nullptr;  ///< Not owned.
    const QImage* m_pcPicture = nullptr;
};

void leave(png_structp png, png_const_charp /*message*/)
{
    png_longjmp(png, 1);
}

void beSilent(png_structp /*png*/, png_const_charp /*message*/) {}

void writeBytes(png_structp png, png_bytep bytes, std::size_t count)
{
    const auto length = static_cast<qint64>(count);
    if (static_cast<QIODevice*>(png_get_io_ptr(png))->write(reinterpret_cast<const char*>(bytes), length) != length)
        png_longjmp(png, 1);
}

void flush(png_structp /*png*/) {}

void describe(const Encoder& encoder, const Manner& manner)
{
    const QImage& picture = *encoder.m_pcPicture;
    png_set_compression_level(encoder.m_pcPng, manner.m_nLevel);
    png_set_compression_strategy(encoder.m_pcPng, manner.m_nStrategy);
    png_set_filter(encoder.m_pcPng, PNG_FILTER_TYPE_BASE, manner.m_nFilter);
    constexpr std::size_t ChunkBytes = 64 * 1024;
    png_set_compression_buffer_size(encoder.m_pcPng, ChunkBytes);
    const int type = picture.format() == QImage::Format_RGB888 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY;
    png_set_IHDR(encoder.m_pcPng, encoder.m_pcInfo, static_cast<png_uint_32>(picture.width()),
                 static_cast<png_uint_32>(picture.height()), 8, type, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(encoder.m_pcPng, encoder.m_pcInfo, static_cast<png_uint_32>(picture.dotsPerMeterX()),
                 static_cast<png_uint_32>(picture.dotsPerMeterY()), PNG_RESOLUTION_METER);
}

/// The caller destroys the encoder.
bool encode(Encoder& encoder, const Manner& manner)
{
    encoder.m_pcPng = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, leave, beSilent);
    if (!encoder.m_pcPng)
        return false;
    if (setjmp(png_jmpbuf(encoder.m_pcPng)) != 0)
        return false;
    encoder.m_pcInfo = png_create_info_struct(encoder.m_pcPng);
    if (!encoder.m_pcInfo)
        return false;
    png_set_write_fn(encoder.m_pcPng, encoder.m_pcDevice, writeBytes, flush);
    describe(encoder, manner);
    png_write_info(encoder.m_pcPng, encoder.m_pcInfo);
    for (int y = 0; y < encoder.m_pcPicture->height(); ++y)
        png_write_row(encoder.m_pcPng, encoder.m_pcPicture->constScanLine(y));
    png_write_end(encoder.m_pcPng, encoder.m_pcInfo);
    return true;
}

bool hasGreyRamp(const QImage& picture)
{
    const QVector<QRgb> colours = picture.colorTable();
    for (int value = 0; value < colours.size(); ++value) {
        if (colours.at(value) != qRgb(value, value, value))
            return false;
    }
    return colours.size() == 256;
}

}  // namespace

bool PngWriter::canWrite(const QImage& picture)
{
    return picture.format() == QImage::Format_RGB888 ||
           (picture.format() == QImage::Format_Indexed8 && hasGreyRamp(picture));
}

bool PngWriter::write(QIODevice& device, const QImage& picture)
{
    Encoder encoder;
    encoder.m_pcDevice = &device;
    encoder.m_pcPicture = &picture;
    const bool isWritten = encode(encoder, mannerFor(picture));
    png_destroy_write_struct(&encoder.m_pcPng, &encoder.m_pcInfo);
    return isWritten;
}
