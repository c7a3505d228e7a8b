#include "loading/pictureReader.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

namespace {

/// Bottom-up and top-down pictures differ in the sign of their height.
bool isReasonable(QSize size)
{
    const qint64 width = std::abs(qint64{size.width()});
    const qint64 height = std::abs(qint64{size.height()});
    return width > 0 && height > 0 && width <= PictureReader::MaxPixels / height;
}

/// Whether an uncompressed bitmap has all of its rows: Qt leaves missing rows as they happen to lie in memory.
bool bitmapHasAllRows(QFile& file, QSize size)
{
    constexpr qint64 HeaderBytes = 34;
    const QByteArray header = file.read(HeaderBytes);
    if (header.size() < HeaderBytes)
        return false;
    const auto number = [&](int offset) { return qFromLittleEndian<quint32>(header.constData() + offset); };
    constexpr quint32 CoreHeaderBytes = 12;  // the oldest kind: never compressed, shorter fields
    const bool isCore = number(14) == CoreHeaderBytes;
    const quint32 compression = isCore ? 0 : number(30);
    constexpr quint32 BitFields = 3;
    if (compression != 0 && compression != BitFields)
        return true;
    const int bitsAPixel = qFromLittleEndian<quint16>(header.constData() + (isCore ? 24 : 28));
    const qint64 rowBytes = (std::abs(qint64{size.width()}) * bitsAPixel + 31) / 32 * 4;
    return file.size() >= number(10) + rowBytes * std::abs(qint64{size.height()});
}

/// Whether a JPEG stream has its end marker after its last start of a scan: Qt paints the missing rest grey.
bool jpegHasItsEnd(QFile& file)
{
    const QByteArray end = QByteArrayLiteral("\xFF\xD9");
    if (file.seek(file.size() - end.size()) && file.read(end.size()) == end)
        return true;
    file.seek(0);
    const QByteArray all = file.readAll();  // something follows the picture, or its end is missing
    return all.indexOf(end, std::max(0, all.lastIndexOf(QByteArrayLiteral("\xFF\xDA")))) >= 0;
}

/// Opens the file as Qt does: where there is none of that name, with each ending that Qt knows behind it.
bool openPicture(QFile& file)
{
    if (file.open(QIODevice::ReadOnly))
        return true;
    const QString name = file.fileName();
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    return std::any_of(formats.begin(), formats.end(), [&](const QByteArray& format) {
        file.setFileName(name + '.' + QLatin1String(format));
        return file.open(QIODevice::ReadOnly);
    });
}

/// Whether the canvas that a GIF is decoded onto is small enough: Qt makes it when it is asked for the size, and then
/// tells that of the first frame. It takes for a GIF what is called so when it knows the content for nothing else.
bool hasReasonableCanvas(QFile& file)
{
    const QByteArray header = file.peek(10);
    bool gif = header.startsWith("GIF");
    if (!gif && file.fileName().endsWith(QLatin1String(".gif"), Qt::CaseInsensitive)) {
        const QByteArray format = QImageReader::imageFormat(&file);
        gif = format.isEmpty() || format == "gif";
        file.seek(0);
    }
    const auto number = [&](int offset) { return qFromLittleEndian<quint16>(header.constData() + offset); };
    return !gif || header.size() < 10 || qint64{number(6)} * number(8) <= PictureReader::MaxPixels;
}

/// The size of the first picture in an icon file: Qt tells what the list at its start says, and decodes what follows.
QSize firstIcon(QFile& file)
{
    const QByteArray list = file.read(22);
    if (list.size() < 22 || !file.seek(qFromLittleEndian<quint32>(list.constData() + 18)))
        return {};
    const QByteArray header = file.read(24);
    if (header.size() < 24)
        return {};
    if (header.startsWith("\x89PNG"))
        return {qFromBigEndian<qint32>(header.constData() + 16), qFromBigEndian<qint32>(header.constData() + 20)};
    return {qFromLittleEndian<qint32>(header.constData() + 4), qFromLittleEndian<qint32>(header.constData() + 8)};
}

/// Whether nothing of the file is missing, for the formats of which Qt decodes torsos without a word, and it is as
/// small as Qt says, for that of which it tells another size than it decodes.
bool isAsItSays(const QImageReader& reader, const QString& path, QSize size)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray magic = file.peek(2);
    if (magic == "BM")
        return bitmapHasAllRows(file, size);
    if (magic == "\xFF\xD8")
        return jpegHasItsEnd(file);
    if (magic == QByteArray(2, '\0') && reader.format().isEmpty())  // the decoder of icons does not tell its name
        return isReasonable(firstIcon(file));
    return true;
}

}  // namespace

QImage PictureReader::read(const QString& path)
{
    // A pipe or a device could keep the reader for ever.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return {};
    QFile file(path);
    if (!openPicture(file) || !hasReasonableCanvas(file))
        return {};
    QImageReader reader(&file);
    const QSize size = reader.size();
    if (!isReasonable(size) || !isAsItSays(reader, file.fileName(), size))
        return {};
    return reader.read();
}
