#include "saving/leftovers.h"

#include "threadAnnotations.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <memory>

namespace {

constexpr std::time_t FinishedAfterSeconds = 3600;
constexpr int RememberedFolders = 4096;

/// The folders that were looked through; forgotten when they are many.
class Seen
{
public:
    /// False when the folder is among them already.
    bool add(const QString& folder)
    {
        const Guard guard(m_cMutex);
        if (m_setFolders.contains(folder))
            return false;
        if (m_setFolders.size() >= RememberedFolders)
            m_setFolders.clear();
        m_setFolders.insert(folder);
        return true;
    }

private:
    Mutex m_cMutex;  ///< Innermost.
    QSet<QString> m_setFolders GUARDED_BY(m_cMutex);
};

Seen& seen()
{
    static auto* const folders = new Seen;  // never destroyed: tasks may save until the process ends
    return *folders;
}

/// The process that made a file of this name; 0 when the name is another.
int processOf(const char* name)
{
    int process = 0;
    unsigned count = 0;
    if (std::sscanf(name, ".lumivant-%9d-%9u.part", &process, &count) != 2 || process < 1)
        return 0;
    return Leftovers::nameOf(process, count) == QLatin1String(name) ? process : 0;
}

/// Our own number may be that of an earlier program.
bool isGone(int process)
{
    return process == ::getpid() || (::kill(process, 0) != 0 && errno == ESRCH);
}

/// The time of the last write; -1 when it is no file of its own.
std::time_t writtenAt(const QByteArray& path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && S_ISREG(status.st_mode) ? status.st_mtime : -1;
}

struct DirectoryCloser
{
    void operator()(DIR* directory) const { ::closedir(directory); }
};

}  // namespace

QString Leftovers::nameOf(int process, unsigned count)
{
    return QStringLiteral(".lumivant-%1-%2.part").arg(process).arg(count);
}

void Leftovers::removeBeside(const QString& made)
{
    const QString folder = QFileInfo(made).absolutePath();
    if (!seen().add(folder))
        return;
    const QByteArray prefix = QFile::encodeName(folder) + '/';
    const std::time_t now = writtenAt(QFile::encodeName(made));
    const std::unique_ptr<DIR, DirectoryCloser> directory(::opendir(prefix.constData()));
    while (const dirent* entry = directory ? ::readdir(directory.get()) : nullptr) {
        const int process = processOf(entry->d_name);
        if (process == 0 || !isGone(process))
            continue;
        const QByteArray path = prefix + entry->d_name;
        const std::time_t written = writtenAt(path);
        if (written >= 0 && now - written > FinishedAfterSeconds)
            ::unlink(path.constData());
    }
}
