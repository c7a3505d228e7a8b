#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

/**
 * A disk of a few hundred kilobytes: a file system in memory, seen by this process alone.
 *
 * enterOwnView() comes first in main, before there is any thread. It works for root, and where users may have
 * namespaces of their own.
 */
class SmallDisk
{
public:
    /// Gives the process its own view of what is mounted; false where that is not allowed.
    static bool enterOwnView()
    {
        const uid_t user = ::getuid();
        s_bMayMount = ::unshare(CLONE_NEWNS) == 0 || enterAsRootOfItsOwn(user);
        s_bMayMount = s_bMayMount && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        return s_bMayMount;
    }
    static bool mayMount() { return s_bMayMount; }

    explicit SmallDisk(int kilobytes)
    {
        const QByteArray options = "size=" + QByteArray::number(kilobytes) + 'k';
        m_bMounted = ::mount("none", folder().constData(), "tmpfs", 0, options.constData()) == 0;
    }
    ~SmallDisk()
    {
        if (m_bMounted)
            ::umount2(folder().constData(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return m_bMounted; }
    QString path(const char* name = "") const { return m_cFolder.filePath(QString::fromUtf8(name)); }
    QStringList names() const
    {
        return QDir(m_cFolder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    /// Fills what is left with a file "ballast".
    void fill() const
    {
        QFile file(path("ballast"));
        file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        const QByteArray block(1024, 'b');
        while (file.write(block) == block.size()) {
        }
    }
    void makeRoom() const { QFile::remove(path("ballast")); }

private:
    static bool enterAsRootOfItsOwn(uid_t user)
    {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        QFile map(QStringLiteral("/proc/self/uid_map"));
        return map.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
               map.write("0 " + QByteArray::number(user) + " 1") > 0;
    }
    QByteArray folder() const { return QFile::encodeName(m_cFolder.path()); }

    static inline bool s_bMayMount = false;
    QTemporaryDir m_cFolder;
    bool m_bMounted = false;
};

#define SKIP_WHERE_NOTHING_CAN_BE_MOUNTED()                                                             \
    do {                                                                                                \
        if (!SmallDisk::mayMount())                                                                     \
            QSKIP("a small disk can be mounted neither as root nor in a name space of the user's own"); \
    } while (false)
