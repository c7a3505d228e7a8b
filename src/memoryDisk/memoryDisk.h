#pragma once

#include "memoryDisk/picturePool.h"
#include "paramStore/pictureLayout.h"

#include <QString>

#include <array>
#include <memory>

class ArithmParamMgr;

/**
 * One of six in-memory disks through which a task hands pictures to another: a pool of colour pictures and a pool of
 * grey ones.
 *
 * Pictures come out in the order in which they went in, each once. A full disk refuses a picture after one second, an
 * empty one answers null after one second. The disks live from program start to exit.
 * Threads: every operation may be called from any thread.
 */
class MemoryDisk
{
public:
    /// A colour picture: 3 bytes a pixel, rows padded to a multiple of 4 bytes.
    class DIB : public PictureSlot
    {
    public:
        unsigned char* getDIB() const { return pixels(); }
        static std::int64_t bytesOf(int width, int height) { return PictureLayout::colourBytes(width, height); }
    };

    /// An 8-bit grey picture: one byte a pixel, rows not padded.
    class Gray8 : public PictureSlot
    {
    public:
        unsigned char* getGray8() const { return pixels(); }
        static std::int64_t bytesOf(int width, int height) { return PictureLayout::gray8Bytes(width, height); }
    };

    static MemoryDisk* getInstance(int index);  ///< The disk; an index out of range gives the nearest.

    /// @name Copies a picture in; false when the disk stays full for a second or the size is no picture's.
    /// @{
    bool addDIB(unsigned char* data, int width, int height) { return m_cDIBPool.add(data, width, height); }
    bool addGray8(unsigned char* data, int width, int height) { return m_cGray8Pool.add(data, width, height); }
    /// @}

    /// @name Takes the oldest picture; the caller gives it back to the same disk. Null when none came within a second.
    /// @{
    DIB* requestDIB() { return m_cDIBPool.request(); }
    Gray8* requestGray8() { return m_cGray8Pool.request(); }
    /// @}

    void releaseDIB(DIB* slot) { m_cDIBPool.release(slot); }
    void releaseGray8(Gray8* slot) { m_cGray8Pool.release(slot); }

    /// @name Slots in all, free, holding a picture that nobody took yet, in the hands of readers.
    /// @{
    int getDIBBuffNum() const { return PicturePool<DIB>::SlotNum; }
    int getDIBIdleNum() const { return m_cDIBPool.idleNum(); }
    int getDIBPreparedNum() const { return m_cDIBPool.preparedNum(); }
    int getDIBProcessingNum() const { return m_cDIBPool.processingNum(); }
    int getGray8BuffNum() const { return PicturePool<Gray8>::SlotNum; }
    int getGray8IdleNum() const { return m_cGray8Pool.idleNum(); }
    int getGray8PreparedNum() const { return m_cGray8Pool.preparedNum(); }
    int getGray8ProcessingNum() const { return m_cGray8Pool.processingNum(); }
    /// @}

    static constexpr int DiskNum = 6;
    static std::array<MemoryDisk, DiskNum> s_acMemDisk;

    // ---- The built-in algorithm "写内存盘" (memoryDiskWriter.cpp)
    // ---------------------------------------------------- Copies one picture record into a disk; execute runs on task
    // threads, showConfigWindow on the window's thread.

    static QString getName();
    static QString getClass();
    static const char* getID();
    static char* execute(char* option, ArithmParamMgr* store);                 ///< The error text; empty on success.
    static char* showConfigWindow(char* option, ArithmParamMgr* store, bool);  // dlgMemoryDiskConfig.cpp
    static char* transConfigStr(QString& text);                                ///< See putResultText.

    static const char* s_ID;
    static thread_local std::unique_ptr<char[]> s_pchConfigStr;
    static thread_local int s_nBuffLen;

private:
    PicturePool<DIB> m_cDIBPool;
    PicturePool<Gray8> m_cGray8Pool;
};
