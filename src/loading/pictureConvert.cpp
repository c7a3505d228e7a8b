#include "loading/pictureConvert.h"

#include "paramStore/pictureLayout.h"

#include <QImage>

#include <algorithm>
#include <cstring>

namespace {

std::size_t bytes(std::int64_t count)
{
    return static_cast<std::size_t>(count);
}

/// One index three times, for a row of indices.
void spreadIndices(const unsigned char* indices, unsigned char* target, int width)
{
    for (int x = 0; x < width; ++x, target += 3)
        std::memset(target, indices[x], 3);
}

/**
 * Shows a picture as red-green-blue rows, a band of rows at a time, so that what Qt converts is still in the cache when
 * it is read again.
 *
 * @param take called for each row from the top with (row's pixels, row number)
 * @return false when there was no memory
 */
template <typename Take>
bool forEachRgbRow(const QImage& picture, Take take)
{
    constexpr int BandPixels = 8 * 1024;  // too few for Qt to hand them to threads of its own
    const int bandRows = std::max(1, BandPixels / picture.width());
    for (int top = 0; top < picture.height(); top += bandRows) {
        const int rows = std::min(bandRows, picture.height() - top);
        QImage band(picture.constScanLine(top), picture.width(), rows, picture.bytesPerLine(), picture.format());
        if (picture.colorCount() > 0)
            band.setColorTable(picture.colorTable());
        const QImage rgb = band.convertToFormat(QImage::Format_RGB888);
        if (rgb.isNull())
            return false;
        for (int row = 0; row < rows; ++row)
            take(rgb.constScanLine(row), top + row);
    }
    return true;
}

}  // namespace

bool PictureConvert::copyAsColour(const QImage& picture, unsigned char* target)
{
    const int width = picture.width();
    const std::size_t stride = bytes(PictureLayout::colourStride(width));
    if (picture.format() == QImage::Format_Indexed8) {
        for (int y = 0; y < picture.height(); ++y)
            spreadIndices(picture.constScanLine(y), target + stride * bytes(y), width);
        return true;
    }
    if (picture.format() == QImage::Format_RGB888 && bytes(picture.bytesPerLine()) == stride) {
        std::memcpy(target, picture.constBits(), bytes(picture.sizeInBytes()));
        return true;
    }
    return forEachRgbRow(picture, [=](const unsigned char* row, int y) {
        std::memcpy(target + stride * bytes(y), row, bytes(width) * 3);
    });
}

bool PictureConvert::copyAsGrey(const QImage& picture, unsigned char* target)
{
    const std::size_t width = bytes(picture.width());
    if (picture.format() == QImage::Format_Indexed8) {
        for (int y = 0; y < picture.height(); ++y)
            std::memcpy(target + width * bytes(y), picture.constScanLine(y), width);
        return true;
    }
    return forEachRgbRow(picture,
                         [=](const unsigned char* row, int y) { greyOfRgb(row, target + width * bytes(y), width); });
}
