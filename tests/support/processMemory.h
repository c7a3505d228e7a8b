#pragma once

#include <QByteArray>
#include <QFile>

#include <unistd.h>

/// A number of /proc/self/statm, in bytes.
inline long memoryBytes(int column)
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("/proc/self/statm cannot be read");
    return file.readAll().split(' ').at(column).toLong() * sysconf(_SC_PAGESIZE);
}

/// Memory that this process has in use.
inline long residentBytes()
{
    return memoryBytes(1);
}

/// Address space that this process has taken, used or not: stacks of threads are seldom used wholly.
inline long addressSpaceBytes()
{
    return memoryBytes(0);
}
