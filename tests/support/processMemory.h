#pragma once

#include <QByteArray>
#include <QFile>

#include <unistd.h>

/// A number of /proc/self/statm, in bytes; an emulator's address space is larger than the numbers of its program.
inline qint64 memoryBytes(int column)
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("/proc/self/statm cannot be read");
    return file.readAll().split(' ').at(column).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// Memory that this process has in use.
inline qint64 residentBytes()
{
    return memoryBytes(1);
}

/// Address space that this process has taken, used or not: stacks of threads are seldom used wholly.
inline qint64 addressSpaceBytes()
{
    return memoryBytes(0);
}
