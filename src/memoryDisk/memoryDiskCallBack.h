#pragma once

#include "memoryDisk/memoryDisk.h"
#include "threadAnnotations.h"

#include <QMap>

#include <cstring>
#include <type_traits>
#include <utility>

/**
 * The entry points of the data source that reads memory disk Disk, in the shapes of a data source library.
 *
 * Instances are told apart by their number; each holds at most one colour and one grey slot of the disk at a time.
 * Threads: entry points are called from the threads of all tasks that read the disk; the maps have a lock of their own,
 * which is never held while a picture is waited for.
 */
template <int Disk>
class MemoryDiskSource
{
public:
    static constexpr int s_nPos = Disk;  ///< The disk that is read.
    inline static QMap<int, MemoryDisk::DIB*> s_mapDIB
        GUARDED_BY(s_cMtxMaps);  ///< Instance to the slot that it holds, or null.
    inline static QMap<int, MemoryDisk::Gray8*> s_mapGray8 GUARDED_BY(s_cMtxMaps);  ///< The same for grey slots.
    inline static char s_achBlank[4] = {};                                          ///< The empty text.

    /**
     * Takes the next picture of the disk, waiting at most a second.
     *
     * @param type begins with "RGB" or "Gray8"; any other, and null, has no pictures
     * @param width, height left alone when there is no picture
     * @return the pixels, valid until MemoryDiskReleasePicture; null when there is no picture
     */
    static unsigned char* MemoryDiskRequestPicture(int instance, const char* type, int* width, int* height)
    {
        if (type && std::strncmp(type, "RGB", 3) == 0) {
            const MemoryDisk::DIB* slot = hold(instance, disk()->requestDIB(), width, height);
            return slot ? slot->getDIB() : nullptr;
        }
        if (type && std::strncmp(type, "Gray8", 5) == 0) {
            const MemoryDisk::Gray8* slot = hold(instance, disk()->requestGray8(), width, height);
            return slot ? slot->getGray8() : nullptr;
        }
        return nullptr;
    }

    /// Gives back what the instance holds, of both kinds.
    static void MemoryDiskReleasePicture(int instance)
    {
        if (MemoryDisk::DIB* slot = letGo<MemoryDisk::DIB>(instance))
            disk()->releaseDIB(slot);
        if (MemoryDisk::Gray8* slot = letGo<MemoryDisk::Gray8>(instance))
            disk()->releaseGray8(slot);
    }

    /// A memory disk has nothing to configure: shows nothing, returns the empty text.
    static char* MemoryDiskShowConfigDlg(char* /*config*/, bool /*reserved*/) { return s_achBlank; }
    static void MemoryDiskSetConfig(int /*instance*/, char* /*config*/) {}

    static void MemoryDiskStart(int /*instance*/) {}  ///< A memory disk is always ready.
    static void MemoryDiskStop(int /*instance*/) {}

    static void MemoryDiskRemoveInstance(int instance)
    {
        // Kept on purpose: slots that the instance still holds count as processing for the rest of the run.
        const Guard guard(s_cMtxMaps);
        s_mapDIB.remove(instance);
        s_mapGray8.remove(instance);
    }

    static char* MemoryDiskGetLastError(int /*instance*/) { return s_achBlank; }  ///< There are no errors to report.

private:
    inline static Mutex s_cMtxMaps;  ///< Taken alone, never held while a picture is waited for.

    static MemoryDisk* disk() { return MemoryDisk::getInstance(s_nPos); }

    template <typename Slot>
    static QMap<int, Slot*>& mapOf() REQUIRES(s_cMtxMaps)
    {
        if constexpr (std::is_same_v<Slot, MemoryDisk::DIB>)
            return s_mapDIB;
        else
            return s_mapGray8;
    }

    /// Notes that the instance holds the slot and reports its size; null stays without effect.
    template <typename Slot>
    static Slot* hold(int instance, Slot* slot, int* width, int* height)
    {
        if (!slot)
            return nullptr;
        {
            // Kept on purpose: a slot that the instance still held is not given back.
            const Guard guard(s_cMtxMaps);
            mapOf<Slot>()[instance] = slot;
        }
        *width = slot->getWidth();
        *height = slot->getHeight();
        return slot;
    }

    /// The slot that the instance held, which it now holds no more; null when it held none.
    template <typename Slot>
    static Slot* letGo(int instance)
    {
        const Guard guard(s_cMtxMaps);
        return std::exchange(mapOf<Slot>()[instance], nullptr);
    }
};

class MemoryDiskCallBack0 : public MemoryDiskSource<0>
{
};
class MemoryDiskCallBack1 : public MemoryDiskSource<1>
{
};
class MemoryDiskCallBack2 : public MemoryDiskSource<2>
{
};
class MemoryDiskCallBack3 : public MemoryDiskSource<3>
{
};
class MemoryDiskCallBack4 : public MemoryDiskSource<4>
{
};
class MemoryDiskCallBack5 : public MemoryDiskSource<5>
{
};
