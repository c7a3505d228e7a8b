#include "loading/pictureConvert.h"

#include "paramStore/pictureLayout.h"
#include "pixels/pixels.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

namespace {

using Operation = PictureConvert::RowOperation;

std::size_t bytes(std::int64_t count)
{
    return static_cast<std::size_t>(count);
}

// ---- What happens to a row of count pixels --------------------------------------------------------------------------

void copyGrey(const unsigned char* grey, unsigned char* target, std::size_t count)
{
    std::memcpy(target, grey, count);
}

void copyRgb(const unsigned char* rgb, unsigned char* target, std::size_t count)
{
    std::memcpy(target, rgb, count * 3);
}

using GreyTable = std::array<unsigned char, 256>;

GreyTable makeGreyOfGrey()
{
    GreyTable values;
    std::iota(values.begin(), values.end(), static_cast<unsigned char>(0));
    std::array<unsigned char, 3 * values.size()> rgb;
    Pixels::rgbOfGrey(values.data(), rgb.data(), values.size());
    Pixels::greyOfRgb(rgb.data(), values.data(), values.size());
    return values;
}

/// The grey value of three equal bytes is one less for some.
void greyOfGrey(const unsigned char* grey, unsigned char* target, std::size_t count)
{
    static const GreyTable table = makeGreyOfGrey();
    for (std::size_t i = 0; i < count; ++i)
        target[i] = table[grey[i]];
}

// ---- Rows of a picture ---------------------------------------------------------------------------------------------

void forEachRow(const QImage& picture, Operation operation, unsigned char* target, std::size_t stride)
{
    for (int y = 0; y < picture.height(); ++y)
        operation(picture.constScanLine(y), target + stride * bytes(y), bytes(picture.width()));
}

/**
 * Takes each row after Qt's conversion to red, green, blue, a band of rows at a time, so that what Qt converts is still
 * in the cache when it is read again.
 *
 * @return false when there was no memory
 */
bool forEachConvertedRow(const QImage& picture, Operation operation, unsigned char* target, std::size_t stride)
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
        forEachRow(rgb, operation, target + stride * bytes(top), stride);
    }
    return true;
}

}  // namespace

PictureConvert::RowOperation PictureConvert::colourOperation(QImage::Format format)
{
    switch (format) {
    case QImage::Format_Indexed8:
    case QImage::Format_Grayscale8:
        return Pixels::rgbOfGrey;
    case QImage::Format_RGB888:
        return copyRgb;
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:  // the opacity is dropped
        return Pixels::rgbOfBgrx;
    default:
        return nullptr;
    }
}

PictureConvert::RowOperation PictureConvert::greyOperation(QImage::Format format)
{
    switch (format) {
    case QImage::Format_Indexed8:
        return copyGrey;
    case QImage::Format_Grayscale8:
        return greyOfGrey;
    case QImage::Format_RGB888:
        return Pixels::greyOfRgb;
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
        return Pixels::greyOfBgrx;
    default:
        return nullptr;
    }
}

bool PictureConvert::copyAsColour(const QImage& picture, unsigned char* target)
{
    const std::size_t stride = bytes(PictureLayout::colourStride(picture.width()));
    const Operation operation = colourOperation(picture.format());
    if (!operation)
        return forEachConvertedRow(picture, copyRgb, target, stride);
    forEachRow(picture, operation, target, stride);
    return true;
}

bool PictureConvert::copyAsGrey(const QImage& picture, unsigned char* target)
{
    const std::size_t stride = bytes(picture.width());
    const Operation operation = greyOperation(picture.format());
    if (!operation)
        return forEachConvertedRow(picture, Pixels::greyOfRgb, target, stride);
    forEachRow(picture, operation, target, stride);
    return true;
}
