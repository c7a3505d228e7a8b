#include "loading/directReader.h"

#include "loading/fileFormats.h"
#include "loading/inputFile.h"
#include "loading/pictureReader.h"

#include <algorithm>
#include <array>
#include <new>

namespace {

constexpr std::int64_t MaxFileBytes = std::int64_t{256} * 1024 * 1024;  // of a compressed picture

using Magic = std::array<unsigned char, 8>;

bool startsWith(const Magic& magic, std::initializer_list<unsigned char> bytes)
{
    return std::equal(bytes.begin(), bytes.end(), magic.begin());
}

/// An empty content when there is no memory or the file is too large.
FileFormats::Content contentOf(const InputFile& file)
{
    FileFormats::Content content;
    if (file.size() > MaxFileBytes)
        return content;
    const auto size = static_cast<std::size_t>(file.size());
    content.m_pcBytes.reset(new (std::nothrow) unsigned char[size]);
    if (content.m_pcBytes && file.read(0, content.m_pcBytes.get(), size))
        content.m_nSize = size;
    return content;
}

}  // namespace

bool FileFormats::isReasonable(std::size_t width, std::size_t height)
{
    constexpr auto Most = static_cast<std::size_t>(PictureReader::MaxPixels);
    return width > 0 && height > 0 && width <= Most / height;
}

bool DirectReader::read(const QString& path, SparePicture& picture)
{
    // Qt asks the decoder of the suffix first: where the content is another, Qt chooses.
    const auto endsIn = [&path](const char* suffix) {
        return path.endsWith(QLatin1String(suffix), Qt::CaseInsensitive);
    };
    const bool isBmp = endsIn(".bmp");
    const bool isJpeg = endsIn(".jpg") || endsIn(".jpeg");
    if (!isBmp && !isJpeg && !endsIn(".png"))
        return false;
    const InputFile file(path);
    Magic magic;
    if (file.size() < static_cast<std::int64_t>(magic.size()) || !file.read(0, magic.data(), magic.size()))
        return false;
    if (isBmp)
        return startsWith(magic, {'B', 'M'}) && FileFormats::readBmp(file, picture);
    if (isJpeg)
        return startsWith(magic, {0xFF, 0xD8, 0xFF}) && FileFormats::readJpeg(contentOf(file), picture);
    return startsWith(magic, {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'}) &&
           FileFormats::readPng(contentOf(file), picture);
}
