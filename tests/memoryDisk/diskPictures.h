#pragma once

#include "memoryDisk/memoryDisk.h"

#include <QByteArray>
#include <QElapsedTimer>

#include <algorithm>

/// The two kinds of pool behind the same names, so that one test body covers both.
struct ColourKind
{
    using Slot = MemoryDisk::DIB;
    static bool add(MemoryDisk* disk, QByteArray pixels, int width, int height)
    {
        return add(disk, reinterpret_cast<unsigned char*>(pixels.data()), width, height);
    }
    static bool add(MemoryDisk* disk, unsigned char* pixels, int width, int height)
    {
        return disk->addDIB(pixels, width, height);
    }
    static Slot* request(MemoryDisk* disk) { return disk->requestDIB(); }
    static void release(MemoryDisk* disk, Slot* slot) { disk->releaseDIB(slot); }
    static const unsigned char* pixels(const Slot* slot) { return slot->getDIB(); }
    static int idle(MemoryDisk* disk) { return disk->getDIBIdleNum(); }
    static int prepared(MemoryDisk* disk) { return disk->getDIBPreparedNum(); }
    static int processing(MemoryDisk* disk) { return disk->getDIBProcessingNum(); }
};

struct GreyKind
{
    using Slot = MemoryDisk::Gray8;
    static bool add(MemoryDisk* disk, QByteArray pixels, int width, int height)
    {
        return add(disk, reinterpret_cast<unsigned char*>(pixels.data()), width, height);
    }
    static bool add(MemoryDisk* disk, unsigned char* pixels, int width, int height)
    {
        return disk->addGray8(pixels, width, height);
    }
    static Slot* request(MemoryDisk* disk) { return disk->requestGray8(); }
    static void release(MemoryDisk* disk, Slot* slot) { disk->releaseGray8(slot); }
    static const unsigned char* pixels(const Slot* slot) { return slot->getGray8(); }
    static int idle(MemoryDisk* disk) { return disk->getGray8IdleNum(); }
    static int prepared(MemoryDisk* disk) { return disk->getGray8PreparedNum(); }
    static int processing(MemoryDisk* disk) { return disk->getGray8ProcessingNum(); }
};

/// Bytes that differ from their neighbours and begin with number.
inline QByteArray numberedBytes(int size, int number)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(number + i * 13);
    return bytes;
}

/// Takes out every picture that waits in the disk, so that the next test finds it empty.
template <typename Kind>
void drain(MemoryDisk* disk)
{
    while (Kind::prepared(disk) > 0)
        Kind::release(disk, Kind::request(disk));
}
