#include "loading/fileFormats.h"
#include "loading/sparePicture.h"

#include <csetjmp>
#include <cstdio>  // for jpeglib.h
#include <new>

#include <jpeglib.h>

namespace {

/**
 * What the decoder needs. Errors leave its functions by longjmp: the functions here that call setjmp have no objects
 * with destructors, and nothing of C++ lies between them and the decoder.
 */
struct Decoder
{
    jpeg_decompress_struct m_cInfo;
    jpeg_error_mgr m_cErrors;
    std::jmp_buf m_cExit;
    unsigned char* m_pcScratch = nullptr;  ///< A row as it is decoded; not owned.
};

void leave(j_common_ptr info)
{
    std::longjmp(static_cast<Decoder*>(info->client_data)->m_cExit, 1);
}

/// Nothing that warns is plain.
void countMessage(j_common_ptr info, int level)
{
    if (level < 0)
        leave(info);
}

bool readHeader(Decoder& decoder, const FileFormats::Content& content)
{
    jpeg_decompress_struct& info = decoder.m_cInfo;
    info.err = jpeg_std_error(&decoder.m_cErrors);
    decoder.m_cErrors.error_exit = leave;
    decoder.m_cErrors.emit_message = countMessage;
    info.client_data = &decoder;
    if (setjmp(decoder.m_cExit) != 0)
        return false;
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, content.m_pcBytes.get(), static_cast<unsigned long>(content.m_nSize));
    return jpeg_read_header(&info, TRUE) == JPEG_HEADER_OK;
}

bool isPlain(const jpeg_decompress_struct& info)
{
    const bool isColour = info.jpeg_color_space == JCS_YCbCr && info.num_components == 3;
    const bool isGrey = info.jpeg_color_space == JCS_GRAYSCALE && info.num_components == 1;
    return (isColour || isGrey) && info.progressive_mode == FALSE && info.arith_code == FALSE &&
           info.data_precision == 8 && FileFormats::isReasonable(info.image_width, info.image_height);
}

/// With the decoder's default transformations, as Qt does at its default quality.
bool readRows(Decoder& decoder, const SparePicture& picture, PictureConvert::RowOperation operation)
{
    jpeg_decompress_struct& info = decoder.m_cInfo;
    if (setjmp(decoder.m_cExit) != 0)
        return false;
    if (jpeg_start_decompress(&info) == FALSE)
        return false;
    while (info.output_scanline < info.output_height) {
        unsigned char* target = picture.row(static_cast<int>(info.output_scanline));
        unsigned char* row = operation ? decoder.m_pcScratch : target;
        if (jpeg_read_scanlines(&info, &row, 1) != 1)
            return false;
        if (operation)
            operation(row, target, info.output_width);
    }
    return jpeg_finish_decompress(&info) == TRUE;
}

/// As readJpeg; the caller destroys the decoder.
bool decode(Decoder& decoder, const FileFormats::Content& content, SparePicture& picture)
{
    if (!readHeader(decoder, content) || !isPlain(decoder.m_cInfo))
        return false;
    const bool isColour = decoder.m_cInfo.num_components == 3;
    const std::size_t rowBytes = std::size_t{decoder.m_cInfo.image_width} * (isColour ? 3 : 1);
    const std::unique_ptr<unsigned char[]> scratch(new (std::nothrow) unsigned char[rowBytes]);
    if (!scratch ||
        !picture.resize(static_cast<int>(decoder.m_cInfo.image_width), static_cast<int>(decoder.m_cInfo.image_height)))
        return false;
    decoder.m_pcScratch = scratch.get();
    const bool isDirect = isColour && !picture.isGrey();
    const QImage::Format format = isColour ? QImage::Format_RGB888 : QImage::Format_Grayscale8;
    return readRows(decoder, picture, isDirect ? nullptr : picture.operation(format));
}

}  // namespace

bool FileFormats::readJpeg(const Content& content, SparePicture& picture)
{
    // Qt refuses a file without its end, and looks for it further in front when something follows the picture.
    const unsigned char* end = content.m_pcBytes.get() + content.m_nSize;
    if (content.m_nSize < 4 || end[-2] != 0xFF || end[-1] != 0xD9)
        return false;
    Decoder decoder = {};
    const bool isWhole = decode(decoder, content, picture);
    jpeg_destroy_decompress(&decoder.m_cInfo);
    return isWhole;
}
