#include "safeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Makes the file's new name in its folder outlast a power cut.
void syncFolderOf(const QString& path)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int handle = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    // Not every file system can do it, and the new file is in its place already: no failure.
    static_cast<void>(::fsync(handle));
    ::close(handle);
}

}  // namespace

namespace SafeFile {

bool readUpToNul(const QString& path, QByteArray& bytes)
{
    // A pipe or a device could make the caller wait for ever.
    if (!QFileInfo(path).isFile())
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;

    constexpr qint64 ChunkSize = 64 * 1024;
    QByteArray result;
    for (;;) {
        const QByteArray chunk = file.read(ChunkSize);
        if (file.error() != QFileDevice::NoError)
            return false;
        const int nul = chunk.indexOf('\0');
        result.append(nul < 0 ? chunk : chunk.left(nul));
        if (chunk.isEmpty() || nul >= 0)
            break;
    }
    bytes = result;
    return true;
}

bool replaceFile(const QString& path, const QByteArray& bytes)
{
    return replaceFile(path, [&bytes](const Sink& sink) { return sink(bytes); });
}

bool replaceFile(const QString& path, const std::function<bool(const Sink& sink)>& write)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // An uncommitted QSaveFile takes its temporary away and leaves the old file alone.
    if (!write([&file](const QByteArray& bytes) { return file.write(bytes) == bytes.size(); }) || !file.flush())
        return false;
    // commit() does not tell when the disk refuses to keep the bytes.
    if (::fsync(file.handle()) != 0)
        return false;
    if (!file.commit())
        return false;
    syncFolderOf(path);
    return true;
}

}  // namespace SafeFile
