#pragma once

#include "threadGuards.h"

#include <QMutex>
#include <QSemaphore>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

/**
 * One picture buffer that circulates in a pool. Its owner is the pool; whoever took it from the pool may read it until
 * he gives it back.
 */
class PictureSlot
{
public:
    PictureSlot() = default;
    PictureSlot(const PictureSlot&) = delete;
    PictureSlot& operator=(const PictureSlot&) = delete;

    int getWidth() const { return m_nWidth; }    ///< Pixels.
    int getHeight() const { return m_nHeight; }  ///< Pixels.

    /**
     * Copies a picture in; the buffer grows when it is too small and never shrinks.
     *
     * @param bytes size of the picture, above 0
     * @return false when there is no memory; the slot is empty then
     */
    bool store(const unsigned char* data, std::int64_t bytes, int width, int height);

protected:
    unsigned char* pixels() const { return m_pchPixels.get(); }

private:
    std::unique_ptr<unsigned char[]> m_pchPixels;  ///< Null until first used.
    std::int64_t m_nCapacity = 0;                  ///< Bytes allocated.
    int m_nWidth = 0;
    int m_nHeight = 0;
};

/**
 * A fixed number of slots that circulate: idle, then prepared (holds a picture that nobody took yet), then processing
 * (a reader has it), then idle again. Pictures come out in the order in which they were put in.
 *
 * Slot is a PictureSlot with a static bytesOf(width, height): 0 for a size that no picture can have.
 * Threads: every operation may be called from any thread. No two locks are ever held at a time; every wait ends after
 * WaitMs. The counts are read without a lock and may be momentarily inconsistent with each other.
 */
template <typename Slot>
class PicturePool
{
public:
    static constexpr int SlotNum = 6;
    static constexpr int WaitMs = 1000;

    PicturePool()
    {
        for (Slot*& slot : m_apcSlots) {
            slot = new Slot;
            m_cIdle.putLast(slot);
        }
    }

    /// Frees the slots that came back; those that a reader still holds stay his until the process has ended.
    ~PicturePool()
    {
        for (Slot* slot : m_apcSlots) {
            if (m_cPrepared.contains(slot) || m_cIdle.contains(slot))
                delete slot;
            else
                keepForReader(slot);
        }
    }

    PicturePool(const PicturePool&) = delete;
    PicturePool& operator=(const PicturePool&) = delete;

    /// Copies a picture into an idle slot and queues it; false when the pool stays full or it is no picture.
    bool add(const unsigned char* data, int width, int height)
    {
        const std::int64_t bytes = Slot::bytesOf(width, height);
        if (!data || bytes == 0 || !m_cIdlePermits.tryAcquire(1, WaitMs))
            return false;
        Slot* slot = m_cIdle.takeFirst();
        if (!slot->store(data, bytes, width, height)) {
            putIdle(slot);
            return false;
        }
        m_cPrepared.putLast(slot);
        m_cPreparedPermits.release();
        return true;
    }

    /// Takes the oldest picture out; the caller gives it back with release. Null when none came in time.
    Slot* request()
    {
        if (!m_cPreparedPermits.tryAcquire(1, WaitMs))
            return nullptr;
        Slot* slot = m_cPrepared.takeFirst();
        countProcessing(+1);
        return slot;
    }

    /// Gives back a slot that request handed out.
    void release(Slot* slot)
    {
        countProcessing(-1);
        putIdle(slot);
    }

    int idleNum() const { return m_cIdle.size(); }
    int preparedNum() const { return m_cPrepared.size(); }
    int processingNum() const { return m_nProcessing.load(std::memory_order_relaxed); }

private:
    /**
     * A queue of slots with a lock of its own; its size can be read without the lock. It has room for all slots from
     * the start and asks for more only when somebody gives back what is not his to give.
     */
    class SlotList
    {
    public:
        SlotList() { m_vecSlots.reserve(SlotNum); }
        Slot* takeFirst()
        {
            const ThreadGuards::MutexGuard guard(m_cMutex);
            Slot* slot = m_vecSlots.front();
            m_vecSlots.erase(m_vecSlots.begin());  // the few behind it move up
            noteSize();
            return slot;
        }
        void putLast(Slot* slot)
        {
            const ThreadGuards::MutexGuard guard(m_cMutex);
            m_vecSlots.push_back(slot);
            noteSize();
        }
        bool contains(Slot* slot)
        {
            const ThreadGuards::MutexGuard guard(m_cMutex);
            return std::find(m_vecSlots.begin(), m_vecSlots.end(), slot) != m_vecSlots.end();
        }
        int size() const { return m_nSize.load(std::memory_order_relaxed); }

    private:
        void noteSize() REQUIRES(m_cMutex)
        {
            m_nSize.store(static_cast<int>(m_vecSlots.size()), std::memory_order_relaxed);
        }

        QMutex m_cMutex;  ///< Taken alone.
        std::vector<Slot*> m_vecSlots GUARDED_BY(m_cMutex);
        std::atomic<int> m_nSize{0};
    };

    void putIdle(Slot* slot)
    {
        m_cIdle.putLast(slot);
        m_cIdlePermits.release();
    }

    void countProcessing(int change)
    {
        const ThreadGuards::MutexGuard guard(m_cMtxProcessing);
        noteProcessing(change);
    }

    void noteProcessing(int change) REQUIRES(m_cMtxProcessing)
    {
        m_nProcessing.store(processingNum() + change, std::memory_order_relaxed);
    }

    static void keepForReader(Slot* slot)
    {
        static auto* const kept = new std::vector<Slot*>;
        kept->push_back(slot);
    }

    std::array<Slot*, SlotNum> m_apcSlots{};  ///< Owned; all slots, wherever they are.
    SlotList m_cIdle;
    SlotList m_cPrepared;
    QMutex m_cMtxProcessing;  ///< Guards changes of m_nProcessing.
    std::atomic<int> m_nProcessing{0};
    QSemaphore m_cIdlePermits{SlotNum};  ///< As many permits as m_cIdle has slots.
    QSemaphore m_cPreparedPermits{0};    ///< As many permits as m_cPrepared has slots.
};
