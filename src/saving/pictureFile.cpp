#include "saving/pictureFile.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>

#include <atomic>
#include <cstdio>

#include <unistd.h>

namespace {

/// A hidden name that no other thread or program uses now; a picture folder's reader passes over it.
QString partName(const QString& folder)
{
    static std::atomic<unsigned> count{0};
    return QStringLiteral("%1/.lumivant-%2-%3.part").arg(folder).arg(::getpid()).arg(count.fetch_add(1));
}

/// Takes the unfinished file away unless it got its name.
class PartFile
{
public:
    explicit PartFile(const QString& folder) : m_cFile(partName(folder)) {}
    ~PartFile()
    {
        m_cFile.close();
        if (m_bMade && !m_bNamed)
            QFile::remove(m_cFile.fileName());  // its own remove() refuses after a failed write
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    bool make()
    {
        m_bMade = m_cFile.open(QIODevice::WriteOnly | QIODevice::NewOnly);
        return m_bMade;
    }

    QIODevice* device() { return &m_cFile; }

    /// Completes the file and gives it its name; false when the disk did not take all of it.
    bool rename(const QFileInfo& target)
    {
        const bool isComplete = m_cFile.flush() && m_cFile.error() == QFileDevice::NoError;
        if (target.exists())
            m_cFile.setPermissions(target.permissions());
        m_cFile.close();
        if (!isComplete || m_cFile.error() != QFileDevice::NoError)
            return false;
        const QByteArray from = QFile::encodeName(m_cFile.fileName());
        m_bNamed = std::rename(from.constData(), QFile::encodeName(target.filePath()).constData()) == 0;
        return m_bNamed;
    }

private:
    QFile m_cFile;
    bool m_bMade = false;
    bool m_bNamed = false;
};

/// The file itself where the path is a link to one.
QFileInfo behindLinks(const QString& path)
{
    const QFileInfo info(path);
    return info.isSymLink() && info.exists() ? QFileInfo(info.canonicalFilePath()) : info;
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
    QImageWriter writer(part.device(), format);
    return writer.write(picture) && part.rename(target);
}
