#include "soakDisks.h"

#include "memoryDisk/memoryDisk.h"
#include "soakLibraries.h"

#include <QByteArray>

#include <pthread.h>

#include <array>
#include <chrono>
#include <functional>

namespace {

/// Takes what still waits in a pool; the problem with it, empty when there is none.
template <typename Slot>
QString drainPool(int disk, bool colour, int prepared, const std::function<Slot*()>& request,
                  const std::function<unsigned char*(Slot*)>& pixels, const std::function<void(Slot*)>& release)
{
    for (; prepared > 0; --prepared) {
        Slot* const slot = request();
        if (!slot)
            return QStringLiteral("memory disk %1 has less than it says").arg(disk);
        SoakLibraries::take(disk, colour, pixels(slot), slot->getWidth(), slot->getHeight());
        release(slot);
    }
    return {};
}

QString drainDisk(int number)
{
    MemoryDisk* const disk = MemoryDisk::getInstance(number);
    QString problem = drainPool<MemoryDisk::DIB>(
        number, true, disk->getDIBPreparedNum(), [disk] { return disk->requestDIB(); },
        [](MemoryDisk::DIB* slot) { return slot->getDIB(); },
        [disk](MemoryDisk::DIB* slot) { disk->releaseDIB(slot); });
    problem += drainPool<MemoryDisk::Gray8>(
        number, false, disk->getGray8PreparedNum(), [disk] { return disk->requestGray8(); },
        [](MemoryDisk::Gray8* slot) { return slot->getGray8(); },
        [disk](MemoryDisk::Gray8* slot) { disk->releaseGray8(slot); });
    if (disk->getDIBIdleNum() != disk->getDIBBuffNum() || disk->getGray8IdleNum() != disk->getGray8BuffNum())
        problem += QStringLiteral("memory disk %1 has lost slots").arg(number);
    return problem;
}

bool giveBack(MemoryDisk& disk, MemoryDisk::DIB* slot)
{
    if (slot)
        disk.releaseDIB(slot);
    return slot != nullptr;
}

bool giveBack(MemoryDisk& disk, MemoryDisk::Gray8* slot)
{
    if (slot)
        disk.releaseGray8(slot);
    return slot != nullptr;
}

/// Whether as many pictures find room in an empty disk as it has slots, and come out again.
bool everySlotTakesOne(MemoryDisk& disk)
{
    constexpr int Width = 400;
    constexpr int Height = 300;
    QByteArray picture(Width * 3 * Height, '\0');
    auto* const pixels = reinterpret_cast<unsigned char*>(picture.data());
    bool all = true;
    for (int i = 0; i < disk.getDIBBuffNum() && all; ++i)
        all = disk.addDIB(pixels, Width, Height) && disk.addGray8(pixels, Width, Height);
    while (all && disk.getDIBPreparedNum() > 0)
        all = giveBack(disk, disk.requestDIB());
    while (all && disk.getGray8PreparedNum() > 0)
        all = giveBack(disk, disk.requestGray8());
    return all;
}

std::array<bool, SoakLedger::PoolNum> poolsWithRoom()
{
    static_assert(SoakLedger::PoolNum == 2 * MemoryDisk::DiskNum);
    std::array<bool, SoakLedger::PoolNum> hasRoom{};
    for (std::size_t pool = 0; pool < hasRoom.size(); ++pool) {
        const MemoryDisk* const disk = MemoryDisk::getInstance(static_cast<int>(pool / 2));
        hasRoom[pool] = (pool % 2 == 0 ? disk->getDIBIdleNum() : disk->getGray8IdleNum()) > 0;
    }
    return hasRoom;
}

}  // namespace

QString SoakDisks::drain()
{
    QString problem;
    for (int number = 0; number < MemoryDisk::DiskNum && problem.isEmpty(); ++number)
        problem = drainDisk(number);
    return problem;
}

QString SoakDisks::fillAndEmpty()
{
    for (int number = 0; number < MemoryDisk::DiskNum; ++number) {
        if (!everySlotTakesOne(*MemoryDisk::getInstance(number)))
            return QStringLiteral("memory disk %1 has slots that no picture can get into or out of").arg(number);
    }
    return {};
}

SoakDiskWatch::SoakDiskWatch()
    : m_cThread([this, see = SoakLibraries::see()] {
          pthread_setname_np(pthread_self(), "disk watch");
          while (!m_bEnd) {
              const std::array<bool, SoakLedger::PoolNum> hasRoom = poolsWithRoom();
              see(&hasRoom);
              std::this_thread::sleep_for(std::chrono::milliseconds(2));
          }
      })
{
}

SoakDiskWatch::~SoakDiskWatch()
{
    m_bEnd = true;
    m_cThread.join();
}
