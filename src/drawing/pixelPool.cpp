#include "drawing/pixelPool.h"

#include "threadAnnotations.h"

#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace {

struct Buffer
{
    std::unique_ptr<unsigned char[]> m_puchData;
    std::size_t m_nCapacity = 0;  ///< Bytes.
};

class Pool
{
public:
    Pool() { m_vecFree.reserve(PooledPixels::MaxFreeBuffers + 1); }

    /// The smallest free buffer that fits and is not wastefully large; a new one when there is none.
    Buffer take(std::size_t byteNum)
    {
        if (Buffer found = takeFree(byteNum); found.m_puchData)
            return found;
        Buffer made{std::unique_ptr<unsigned char[]>(new (std::nothrow) unsigned char[byteNum]), byteNum};
        return made;
    }

    void giveBack(Buffer buffer)
    {
        std::vector<Buffer> surplus;  // freed after the lock
        const Guard guard(m_cMutex);
        m_nFreeBytes += buffer.m_nCapacity;
        m_vecFree.push_back(std::move(buffer));
        while (m_vecFree.size() > PooledPixels::MaxFreeBuffers || m_nFreeBytes > PooledPixels::MaxFreeBytes) {
            m_nFreeBytes -= m_vecFree.front().m_nCapacity;
            surplus.push_back(std::move(m_vecFree.front()));
            m_vecFree.erase(m_vecFree.begin());
        }
    }

    PooledPixels::PoolState state()
    {
        const Guard guard(m_cMutex);
        return {m_nAllocations, m_vecFree.size(), m_nFreeBytes};
    }

private:
    Buffer takeFree(std::size_t byteNum)
    {
        const Guard guard(m_cMutex);
        auto best = m_vecFree.end();
        for (auto it = m_vecFree.begin(); it != m_vecFree.end(); ++it) {
            const bool fits = it->m_nCapacity >= byteNum && it->m_nCapacity / 2 <= byteNum;
            if (fits && (best == m_vecFree.end() || it->m_nCapacity < best->m_nCapacity))
                best = it;
        }
        if (best == m_vecFree.end()) {
            ++m_nAllocations;
            return {};
        }
        Buffer found = std::move(*best);
        m_vecFree.erase(best);
        m_nFreeBytes -= found.m_nCapacity;
        return found;
    }

    Mutex m_cMutex;                                      ///< Innermost.
    std::vector<Buffer> m_vecFree GUARDED_BY(m_cMutex);  ///< In the order in which they came back.
    std::size_t m_nFreeBytes GUARDED_BY(m_cMutex) = 0;
    std::int64_t m_nAllocations GUARDED_BY(m_cMutex) = 0;
};

// Never destroyed: options that wait in a queue may outlive the program's statics.
Pool& pool()
{
    static Pool* const instance = new Pool;
    return *instance;
}

}  // namespace

PooledPixels::PooledPixels(std::int64_t byteNum)
{
    if (byteNum < 1)
        return;
    Buffer buffer = pool().take(static_cast<std::size_t>(byteNum));
    m_puchData = buffer.m_puchData.release();
    m_nCapacity = m_puchData ? buffer.m_nCapacity : 0;
}

PooledPixels::~PooledPixels()
{
    if (m_puchData)
        pool().giveBack({std::unique_ptr<unsigned char[]>(m_puchData), m_nCapacity});
}

PooledPixels::PooledPixels(PooledPixels&& other) noexcept
    : m_puchData(std::exchange(other.m_puchData, nullptr)), m_nCapacity(std::exchange(other.m_nCapacity, 0))
{
}

PooledPixels& PooledPixels::operator=(PooledPixels&& other) noexcept
{
    std::swap(m_puchData, other.m_puchData);
    std::swap(m_nCapacity, other.m_nCapacity);
    return *this;
}

PooledPixels::PoolState PooledPixels::poolState()
{
    return pool().state();
}
