#pragma once

#include <cstddef>
#include <memory>

class InputFile;
class SparePicture;

/// The decoders behind DirectReader: each reads a whole file of its format, or returns false.
namespace FileFormats {

/// The bytes of a file.
struct Content
{
    std::unique_ptr<unsigned char[]> m_pcBytes;
    std::size_t m_nSize = 0;
};

bool readBmp(const InputFile& file, SparePicture& picture);
bool readJpeg(const Content& content, SparePicture& picture);
bool readPng(const Content& content, SparePicture& picture);

/// Whether a picture of this size is decoded at all.
bool isReasonable(std::size_t width, std::size_t height);

}  // namespace FileFormats
