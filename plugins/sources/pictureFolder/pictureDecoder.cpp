#include "pictureDecoder.h"

#include "folderMessages.h"

#include <grayValue.h>
#include <paramStore/pictureLayout.h>

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

namespace {

/**
 * A file whose reading fails once the source is stopped, so that stopping never waits for a large picture.
 * Open it unbuffered: a buffer reads ahead of what is asked for.
 */
class StoppableFile : public QFile
{
public:
    StoppableFile(const QString& path, const std::atomic<bool>& stop) : QFile(path), m_bStop(stop) {}

    bool isReadPastItsEnd() const { return m_bPastEnd; }  ///< Whether more was asked for after the last byte.

protected:
    qint64 readData(char* data, qint64 length) override
    {
        const qint64 got = m_bStop ? -1 : QFile::readData(data, length);
        m_bPastEnd = m_bPastEnd || (length > 0 && got < 1);
        return got;
    }

private:
    const std::atomic<bool>& m_bStop;
    bool m_bPastEnd = false;
};

/// Whether a bitmap without compression is shorter than its header says: Qt gives the rows that are there.
bool isCutBitmap(QFile& file)
{
    constexpr int headerBytes = 34;  // of the file and, up to the compression, of the picture
    const QByteArray header = file.peek(headerBytes);
    if (header.size() < headerBytes || !header.startsWith("BM"))
        return false;
    const auto number = [&header](int place) { return qFromLittleEndian<qint32>(header.constData() + place); };
    const bool isPlain = number(14) >= 40 && (number(30) == 0 || number(30) == 3);
    const qint64 bits = qFromLittleEndian<quint16>(header.constData() + 28);
    const qint64 stride = (number(18) * bits + 31) / 32 * 4;
    const qint64 rows = std::abs(qint64{number(22)});
    // By division: what a damaged header says may be too large to multiply.
    return isPlain && rows > 0 && (file.size() - quint32(number(10))) / rows < stride;
}

/// Whether Qt decodes the file as one of the formats that are listed, whose size is what Qt tells before it decodes. Of
/// others that are only called so it is not: a small file could take all memory.
bool isListedFormat(const QByteArray& format)
{
    return format == "png" || format == "bmp" || format == "jpeg" || format == "tiff";
}

void copyGrayRow(const QImage& image, int y, unsigned char* target)
{
    const uchar* source = image.constScanLine(y);
    const int width = image.width();
    for (int x = 0; x < width; ++x, target += 3)
        target[0] = target[1] = target[2] = source[x];
}

void copyColourRow(const QImage& image, int y, unsigned char* target)
{
    const auto* source = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    const int width = image.width();
    for (int x = 0; x < width; ++x, target += 3) {
        target[0] = static_cast<unsigned char>(qBlue(source[x]));
        target[1] = static_cast<unsigned char>(qGreen(source[x]));
        target[2] = static_cast<unsigned char>(qRed(source[x]));
    }
}

bool hasColourRows(const QImage& image)
{
    return image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32;
}

bool copyPixels(const QImage& image, Frame& frame)
{
    frame.width = image.width();
    frame.height = image.height();
    frame.hasGray = false;
    if (!frame.colour.resize(PictureLayout::colourBytes(frame.width, frame.height)))
        return false;
    const auto stride = static_cast<std::size_t>(PictureLayout::colourStride(frame.width));
    const auto copyRow = image.format() == QImage::Format_Grayscale8 ? copyGrayRow : copyColourRow;
    for (int y = 0; y < frame.height; ++y) {
        unsigned char* row = frame.colour.data() + stride * static_cast<std::size_t>(y);
        copyRow(image, y, row);
        std::fill(row + 3 * static_cast<std::size_t>(frame.width), row + stride, static_cast<unsigned char>(0));
    }
    return true;
}

}  // namespace

bool Frame::makeGray()
{
    if (!gray.resize(PictureLayout::gray8Bytes(width, height)))
        return false;
    const auto stride = static_cast<std::size_t>(PictureLayout::colourStride(width));
    unsigned char* target = gray.data();
    for (int y = 0; y < height; ++y) {
        const unsigned char* source = colour.data() + stride * static_cast<std::size_t>(y);
        for (int x = 0; x < width; ++x, source += 3)
            *target++ = grayValue(source[0], source[1], source[2]);
    }
    hasGray = true;
    return true;
}

QString PictureDecoder::decode(const QString& path, Frame& frame, const std::atomic<bool>& stop)
{
    const QString name = QFileInfo(path).fileName();
    StoppableFile file(path, stop);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return FolderMessages::unreadable(name);
    if (file.peek(3) == "GIF")  // Qt makes its canvas, of any size, as soon as it is asked about it
        return FolderMessages::unreadable(name);
    const bool cut = isCutBitmap(file);
    QImageReader reader(&file);
    const QSize size = reader.size();
    if (size.width() < 1 || size.height() < 1 || !isListedFormat(reader.format()))
        return FolderMessages::unreadable(name);
    if (qint64(size.width()) * size.height() > MostPixels)
        return FolderMessages::tooLarge(name);
    const bool jpeg = reader.format() == "jpeg";
    if (cut || !reader.read(&m_cImage) || m_cImage.isNull())
        return FolderMessages::unreadable(name);
    // A JPEG may end before its picture does: the decoder fills what is missing with grey.
    if (jpeg && file.isReadPastItsEnd())
        return FolderMessages::unreadable(name);
    const bool direct = hasColourRows(m_cImage) || m_cImage.format() == QImage::Format_Grayscale8;
    const QImage image = direct ? m_cImage : m_cImage.convertToFormat(QImage::Format_RGB32);
    return !image.isNull() && copyPixels(image, frame) ? QString() : FolderMessages::tooLarge(name);
}
