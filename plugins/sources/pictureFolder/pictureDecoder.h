#pragma once

#include <pictureBuffer.h>

#include <QImage>
#include <QString>

#include <atomic>

/// One decoded picture.
struct Frame
{
    int width = 0;
    int height = 0;
    PictureBuffer colour;  ///< Blue, green, red; rows padded to a multiple of 4 bytes.
    PictureBuffer gray;    ///< One byte a pixel; meaningful when hasGray.
    bool hasGray = false;

    bool makeGray();  ///< Fills gray from colour; false when there is no memory.
};

/// Decodes picture files into frames; keeps its working picture, so that equal pictures allocate once.
class PictureDecoder
{
public:
    static constexpr int MostPixels = 64 * 1024 * 1024;  ///< Larger pictures are refused before they are decoded.

    /**
     * @param stop makes a decoding that is under way fail soon when it becomes true
     * @return an empty text, or why the file was not decoded
     */
    QString decode(const QString& path, Frame& frame, const std::atomic<bool>& stop);

private:
    QImage m_cImage;
};
