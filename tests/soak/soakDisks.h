#pragma once

#include <QString>

#include <atomic>
#include <thread>

/// The memory disks between two rounds, while no task exists.
namespace SoakDisks {

/// Takes what still waits on all disks; the problem with it, empty when there is none.
QString drain();

/// Fills every slot with the largest picture and takes it out again; the problem, empty when every slot took one.
QString fillAndEmpty();

}  // namespace SoakDisks

/// Looks at the memory disks all the time, on a thread of its own, and tells the ledger which have room.
class SoakDiskWatch
{
public:
    SoakDiskWatch();
    ~SoakDiskWatch();
    SoakDiskWatch(const SoakDiskWatch&) = delete;
    SoakDiskWatch& operator=(const SoakDiskWatch&) = delete;

private:
    std::atomic<bool> m_bEnd{false};
    std::thread m_cThread;
};
