#include "saving/pictureFile.h"

#include "saving/bmpWriter.h"
#include "saving/leftovers.h"
#include "saving/pngWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>

#include <atomic>
#include <cstdio>

#include <unistd.h>

namespace {

/// A hidden name that no other thread or program uses now.
QString partName(const QString& folder)
{
    static std::atomic<unsigned> count{0};
    return folder + QLatin1Char('/') + Leftovers::nameOf(::getpid(), count.fetch_add(1));
}

/**
 * The file while it is being written; taken away unless it got its name.
 *
 * A write that fails is remembered and not told to Qt's encoders: they lose memory when they stop half way.
 */
class PartFile : public QFile
{
public:
    explicit PartFile(const QString& folder) : m_strFolder(folder) {}
    ~PartFile() override
    {
        if (!m_bNamed)
            QFile::remove(fileName());  // the member function refuses after a failed write
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    /// Passes over what an earlier program with the same process number left behind when it was killed.
    bool make()
    {
        do {
            setFileName(partName(m_strFolder));
        } while (!open(WriteOnly | NewOnly) && exists());
        if (isOpen())
            Leftovers::removeBeside(fileName());
        return isOpen();
    }

    /// Completes the file and gives it its name; false when the disk did not take all of it.
    bool nameAs(const QFileInfo& target)
    {
        if (target.exists())
            setPermissions(target.permissions());
        const bool isComplete = flush() && !m_bFailed;
        close();
        if (!isComplete || error() != NoError)
            return false;
        const QByteArray from = encodeName(fileName());
        m_bNamed = std::rename(from.constData(), encodeName(target.filePath()).constData()) == 0;
        return m_bNamed;
    }

protected:
    qint64 writeData(const char* data, qint64 length) override
    {
        m_bFailed = m_bFailed || QFile::writeData(data, length) != length;
        return length;
    }

private:
    QString m_strFolder;
    bool m_bFailed = false;
    bool m_bNamed = false;
};

/// The file itself where the path is a link to one.
QFileInfo behindLinks(const QString& path)
{
    const QFileInfo info(path);
    return info.isSymLink() && info.exists() ? QFileInfo(info.canonicalFilePath()) : info;
}

/// Plain pictures by writers of our own, which are faster; Qt has all the others.
bool encode(QIODevice& device, const QImage& picture, const QByteArray& format)
{
    if (format == "bmp" && BmpWriter::canWrite(picture))
        return BmpWriter::write(device, picture);
    if (format == "png" && PngWriter::canWrite(picture))
        return PngWriter::write(device, picture);
    return QImageWriter(&device, format).write(picture);
}

}  // namespace

bool PictureFile::write(const QImage& picture, const QString& path)
{
    const QByteArray format = QFileInfo(path).suffix().toLower().toLatin1();
    if (picture.isNull() || !QImageWriter::supportedImageFormats().contains(format))
        return false;
    const QFileInfo target = behindLinks(path);
    if (target.exists() && (!target.isFile() || !target.isWritable()))
        return false;
    PartFile part(target.path());
    if (!part.make())
        return false;
    return encode(part, picture, format) && part.nameAs(target);
}
