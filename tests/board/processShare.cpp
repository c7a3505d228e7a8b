#include "processShare.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <link.h>
#include <malloc.h>

namespace {

int keepFirst(dl_phdr_info* info, std::size_t, void* address)
{
    *static_cast<quint64*>(address) = info->dlpi_addr;
    return 1;  // the program itself comes first
}

/// Where the program believes to lie.
quint64 ownAddress()
{
    quint64 address = 0;
    dl_iterate_phdr(keepFirst, &address);
    return address;
}

QList<QByteArray> mappings()
{
    QFile file(QStringLiteral("/proc/self/smaps"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("/proc/self/smaps cannot be read");
    return file.readAll().split('\n');
}

quint64 startOf(const QByteArray& mapping)
{
    return mapping.left(mapping.indexOf('-')).toULongLong(nullptr, 16);
}

/// Where the system has put the program.
quint64 realAddress(const QList<QByteArray>& lines)
{
    const QByteArray path = QFile::encodeName(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath());
    for (const QByteArray& line : lines) {
        if (line.endsWith(' ' + path))
            return startOf(line);
    }
    qFatal("the program is not among its mappings");
}

}  // namespace

qint64 ProcessShare::heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks) + static_cast<qint64>(info.hblkhd);
}

qint64 ProcessShare::residentBytes()
{
    // An emulator keeps all that the program can address in one piece, which begins at its address 0.
    const QList<QByteArray> lines = mappings();
    const quint64 begin = realAddress(lines) - ownAddress();
    const quint64 end = sizeof(void*) == 4 ? begin + (quint64{1} << 32) : ~quint64{0};
    bool isOurs = false;
    qint64 kibs = 0;
    for (const QByteArray& line : lines) {
        if (line.startsWith("Rss:") && isOurs)
            kibs += line.simplified().split(' ').value(1).toLongLong();
        const int space = line.indexOf(' ');
        const int dash = line.indexOf('-');
        if (dash > 0 && dash < space)
            isOurs = startOf(line) >= begin && startOf(line) < end;
    }
    return kibs * 1024;
}
