#include "loading/fileFormats.h"
#include "loading/sparePicture.h"

#include <cstring>
#include <new>

#include <png.h>

namespace {

/**
 * What the decoder needs. Errors leave its functions by longjmp: the functions here that call setjmp have no objects
 * with destructors, and nothing of C++ lies between them and the decoder.
 */
struct Decoder
{
    png_structp m_pcPng = nullptr;
    png_infop m_pcInfo = nullptr;
    const unsigned char* m_pcNext = nullptr;  ///< What of the file is still to be read.
    std::size_t m_nLeft = 0;
    unsigned char* m_pcScratch = nullptr;  ///< A row as it is decoded; not owned.
};

/// Nothing that warns is plain.
void leave(png_structp png, png_const_charp /*message*/)
{
    png_longjmp(png, 1);
}

void readBytes(png_structp png, png_bytep target, std::size_t count)
{
    auto* decoder = static_cast<Decoder*>(png_get_io_ptr(png));
    if (count > decoder->m_nLeft)
        png_longjmp(png, 1);
    std::memcpy(target, decoder->m_pcNext, count);
    decoder->m_pcNext += count;
    decoder->m_nLeft -= count;
}

bool readHeader(Decoder& decoder)
{
    decoder.m_pcPng = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, leave, leave);
    if (!decoder.m_pcPng)
        return false;
    if (setjmp(png_jmpbuf(decoder.m_pcPng)) != 0)
        return false;
    decoder.m_pcInfo = png_create_info_struct(decoder.m_pcPng);
    if (!decoder.m_pcInfo)
        return false;
    png_set_read_fn(decoder.m_pcPng, &decoder, readBytes);
    png_read_info(decoder.m_pcPng, decoder.m_pcInfo);
    return true;
}

/// The format in which Qt gives such a file, or the nearest; Format_Invalid for what is not plain.
QImage::Format plainFormat(const Decoder& decoder)
{
    const png_structp png = decoder.m_pcPng;
    const png_infop info = decoder.m_pcInfo;
    if (png_get_bit_depth(png, info) != 8 || png_get_interlace_type(png, info) != PNG_INTERLACE_NONE ||
        png_get_valid(png, info, PNG_INFO_tRNS) != 0)
        return QImage::Format_Invalid;
    if (!FileFormats::isReasonable(png_get_image_width(png, info), png_get_image_height(png, info)))
        return QImage::Format_Invalid;
    switch (png_get_color_type(png, info)) {
    case PNG_COLOR_TYPE_RGB:
    case PNG_COLOR_TYPE_RGB_ALPHA:  // the opacity is dropped
        return QImage::Format_RGB888;
    case PNG_COLOR_TYPE_GRAY:
        return QImage::Format_Grayscale8;
    case PNG_COLOR_TYPE_PALETTE:
        return QImage::Format_Indexed8;
    default:
        return QImage::Format_Invalid;
    }
}

bool readRows(Decoder& decoder, const SparePicture& picture, PictureConvert::RowOperation operation)
{
    const png_structp png = decoder.m_pcPng;
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_set_strip_alpha(png);
    const png_uint_32 width = png_get_image_width(png, decoder.m_pcInfo);
    const png_uint_32 height = png_get_image_height(png, decoder.m_pcInfo);
    for (png_uint_32 y = 0; y < height; ++y) {
        unsigned char* target = picture.row(static_cast<int>(y));
        png_read_row(png, operation ? decoder.m_pcScratch : target, nullptr);
        if (operation)
            operation(decoder.m_pcScratch, target, width);
    }
    png_read_end(png, nullptr);
    return true;
}

/// As readPng; the caller destroys the decoder.
bool decode(Decoder& decoder, SparePicture& picture)
{
    if (!readHeader(decoder))
        return false;
    const QImage::Format format = plainFormat(decoder);
    if (format == QImage::Format_Invalid)
        return false;
    const png_uint_32 width = png_get_image_width(decoder.m_pcPng, decoder.m_pcInfo);
    const std::unique_ptr<unsigned char[]> scratch(new (std::nothrow) unsigned char[std::size_t{width} * 4]);
    if (!scratch || !picture.resize(static_cast<int>(width),
                                    static_cast<int>(png_get_image_height(decoder.m_pcPng, decoder.m_pcInfo))))
        return false;
    decoder.m_pcScratch = scratch.get();
    const bool isDirect = format == QImage::Format_RGB888 && !picture.isGrey();
    return readRows(decoder, picture, isDirect ? nullptr : picture.operation(format));
}

}  // namespace

bool FileFormats::readPng(const Content& content, SparePicture& picture)
{
    Decoder decoder;
    decoder.m_pcNext = content.m_pcBytes.get();
    decoder.m_nLeft = content.m_nSize;
    const bool isWhole = decode(decoder, picture);
    png_destroy_read_struct(&decoder.m_pcPng, &decoder.m_pcInfo, nullptr);
    return isWhole;
}
