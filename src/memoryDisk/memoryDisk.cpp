#include "memoryDisk/memoryDisk.h"

#include <algorithm>

std::array<MemoryDisk, MemoryDisk::DiskNum> MemoryDisk::s_acMemDisk;

MemoryDisk* MemoryDisk::getInstance(int index)
{
    return &s_acMemDisk[static_cast<std::size_t>(std::clamp(index, 0, DiskNum - 1))];
}
