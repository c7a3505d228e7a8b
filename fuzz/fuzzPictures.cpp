// Damaged picture files through the loading step and through the folder source of the pack. Input: how to read it, then
// the file.
#include "fuzzInput.h"
#include "fuzzSupport.h"
#include "loading/loading.h"
#include "loading/pictureReader.h"
#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"
#include "pictureDecoder.h"

#include <QFile>
#include <QImageReader>
#include <QtEndian>

#include <array>
#include <cstdlib>

namespace {

const std::array<const char*, 8> Suffixes{"bmp", "png", "jpg", "jpeg", "tif", "gif", "ico", "dat"};
constexpr std::size_t ListedSuffixes = 5;  ///< The first ones are those of files that the folder source lists.

constexpr qint64 MostPixels = 1 << 18;  ///< Larger pictures only take time and memory here.
constexpr int Before = 9;               ///< Side of the picture that the records hold before.

quint32 checksum(const char* bytes, int count)
{
    quint32 value = 0xFFFFFFFF;
    for (int i = 0; i < count; ++i) {
        value ^= static_cast<unsigned char>(bytes[i]);
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320 : value >> 1;
    }
    return ~value;
}

/// Makes the checksums of a PNG file true, so that what was changed in it is looked at.
void mendChecksums(QByteArray& file)
{
    constexpr int SignatureBytes = 8;
    constexpr int FrameBytes = 12;  // length, type and checksum of a chunk
    if (!file.startsWith("\x89PNG"))
        return;
    for (int start = SignatureBytes; start + FrameBytes <= file.size();) {
        const qint64 length = qFromBigEndian<quint32>(file.constData() + start);
        if (start + FrameBytes + length > file.size())
            return;
        const int typeAndData = 4 + static_cast<int>(length);
        qToBigEndian(checksum(file.constData() + start + 4, typeAndData), file.data() + start + 4 + typeAndData);
        start += FrameBytes + static_cast<int>(length);
    }
}

QString written(const QByteArray& bytes, const char* suffix)
{
    const QString path = Fuzz::scratchFolder() + QStringLiteral("/picture.") + QLatin1String(suffix);
    QFile file(path);
    Fuzz::expect(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "the picture can be written");
    return path;
}

/// Whether decoding would take long. Of a GIF the canvas counts, which Qt makes when it is asked for the size; one that
/// must be refused is not large.
bool isLarge(const QByteArray& file, const QString& path)
{
    qint64 pixels = 0;
    if ((file.startsWith("GIF") || path.endsWith(QLatin1String(".gif"))) && file.size() >= 10) {
        pixels =
            qint64{qFromLittleEndian<quint16>(file.constData() + 6)} * qFromLittleEndian<quint16>(file.constData() + 8);
    } else {
        const QSize size = QImageReader(path).size();
        pixels = std::abs(qint64{size.width()}) * std::abs(qint64{size.height()});
    }
    return pixels > MostPixels && pixels <= PictureReader::MaxPixels;
}

/// Reads every byte, for the checks to see.
unsigned sumOf(const unsigned char* bytes, std::int64_t count)
{
    unsigned sum = 0;
    for (std::int64_t i = 0; i < count; ++i)
        sum += bytes[i];
    return sum;
}

void checkLoading(const QString& path, bool grey)
{
    ArithmParamMgr* const store = ArithmParamMgr::newInstance();
    ParamDIB* const colour = store->getParamDIB(1);
    ParamGray8* const gray8 = store->getParamGray8(1);
    colour->resize(Before, Before);
    gray8->resize(Before, Before);
    const QString option = QStringLiteral(
                               "<FilePath>%1</FilePath><OutputName>n</OutputName><BeGray>%2</BeGray>"
                               "<PicID>1</PicID>")
                               .arg(path)
                               .arg(grey ? 1 : 0);
    QByteArray utf8 = option.toUtf8();
    Fuzz::expect(*Loading::execute(utf8.data(), store) == '\0', "loading tells nothing");

    ArithmParam* const record = grey ? static_cast<ArithmParam*>(gray8) : colour;
    ArithmParam* const other = grey ? static_cast<ArithmParam*>(colour) : gray8;
    Fuzz::expect(other->getName().isEmpty(), "the record of the other kind is left alone");
    const int width = grey ? gray8->getWidth() : colour->getWidth();
    const int height = grey ? gray8->getHeight() : colour->getHeight();
    if (record->getName().isEmpty())
        Fuzz::expect(width == Before && height == Before, "a picture that is refused leaves the record alone");
    if (width > 0) {
        sumOf(colour->getDIB(), PictureLayout::colourBytes(colour->getWidth(), colour->getHeight()));
        sumOf(gray8->getGray8(), PictureLayout::gray8Bytes(gray8->getWidth(), gray8->getHeight()));
    }
    ArithmParamMgr::deleteInstance(store);
}

void checkFolderSource(const QString& path, bool grey)
{
    static PictureDecoder s_cDecoder;
    static Frame s_cFrame;
    const std::atomic<bool> stop{false};
    if (!s_cDecoder.decode(path, s_cFrame, stop).isEmpty())
        return;
    Fuzz::expect(s_cFrame.width > 0 && s_cFrame.height > 0, "a decoded picture has a size");
    sumOf(s_cFrame.colour.data(), PictureLayout::colourBytes(s_cFrame.width, s_cFrame.height));
    if (grey && s_cFrame.makeGray())
        sumOf(s_cFrame.gray.data(), PictureLayout::gray8Bytes(s_cFrame.width, s_cFrame.height));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    Fuzz::startProgram();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const int how = input.byte();
    QByteArray file = input.rest();
    if ((how & 1) != 0)
        mendChecksums(file);
    const bool grey = (how & 2) != 0;
    const auto suffix = static_cast<std::size_t>(how >> 2) % Suffixes.size();
    const QString path = written(file, Suffixes[suffix]);
    if (isLarge(file, path))
        return 0;
    checkLoading(path, grey);
    if (suffix < ListedSuffixes)
        checkFolderSource(path, grey);
    QFile::remove(path);
    return 0;
}
