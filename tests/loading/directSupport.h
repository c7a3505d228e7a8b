#pragma once

#include "loading/directReader.h"
#include "loading/pictureConvert.h"
#include "loading/pictureReader.h"
#include "loading/sparePicture.h"
#include "pictureSupport.h"

#include <QtEndian>

#include <random>

/// What the tests of reading files directly share.
namespace DirectSupport {

/// A picture that compresses neither well nor badly.
inline QImage mixedPicture(QImage::Format format, int width, int height)
{
    QImage picture(width, height, format);
    if (format == QImage::Format_Indexed8) {
        for (int i = 0; i < 256; ++i)
            picture.setColor(i, qRgb(255 - i, (i * 7) & 255, (i * 13) & 255));
    }
    std::mt19937 random(static_cast<unsigned>(width + height));
    for (int y = 0; y < height; ++y) {
        for (int i = 0; i < picture.bytesPerLine(); ++i)
            picture.scanLine(y)[i] = static_cast<unsigned char>(i * 3 + y * 2 + static_cast<int>(random() % 9));
    }
    return picture;
}

/// The rows of the spare picture without their padding; empty when the file is not read directly.
inline QByteArray direct(const QString& path, bool grey, QSize size)
{
    SparePicture picture(grey);
    if (!DirectReader::read(path, picture))
        return {};
    QByteArray pixels;
    for (int y = 0; y < size.height(); ++y)
        pixels.append(reinterpret_cast<const char*>(picture.row(y)), size.width() * (grey ? 1 : 3));
    return pixels;
}

/// The same by Qt's decoders.
inline QByteArray byQt(const QString& path, bool grey)
{
    const QImage picture = PictureReader::read(path);
    const int rowBytes = picture.width() * (grey ? 1 : 3);
    const int stride = grey ? picture.width() : static_cast<int>(PictureLayout::colourStride(picture.width()));
    QByteArray all(stride * picture.height(), '\0');
    auto* target = reinterpret_cast<unsigned char*>(all.data());
    if (!(grey ? PictureConvert::copyAsGrey(picture, target) : PictureConvert::copyAsColour(picture, target)))
        return {};
    QByteArray pixels;
    for (int y = 0; y < picture.height(); ++y)
        pixels += all.mid(y * stride, rowBytes);
    return pixels;
}

inline void put32(QByteArray& bytes, int offset, quint32 number)
{
    qToLittleEndian(number, bytes.data() + offset);
}

}  // namespace DirectSupport
