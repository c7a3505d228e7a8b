#pragma once

#include <cstddef>
#include <cstdint>

/**
 * Memory for one copy of a picture, borrowed from a pool of the whole program and given back at the end of its life, so
 * that a steady stream of equal pictures allocates nothing.
 *
 * Threads: each object belongs to one thread at a time; the pool behind them is used by all.
 */
class PooledPixels
{
public:
    PooledPixels() = default;                     ///< No memory.
    explicit PooledPixels(std::int64_t byteNum);  ///< No memory when byteNum is below 1 or there is none to be had.
    ~PooledPixels();
    PooledPixels(PooledPixels&& other) noexcept;
    PooledPixels& operator=(PooledPixels&& other) noexcept;
    PooledPixels(const PooledPixels&) = delete;
    PooledPixels& operator=(const PooledPixels&) = delete;

    unsigned char* data() const { return m_puchData; }  ///< Any content at first; null without memory.

    /// What the pool did and holds; for tests and measurements.
    struct PoolState
    {
        std::int64_t m_nAllocations;  ///< Since the start of the program.
        std::size_t m_nFreeBuffers;
        std::size_t m_nFreeBytes;
    };
    static PoolState poolState();

    /// The pool keeps no more than this; what was given back longest ago goes first.
    static constexpr std::size_t MaxFreeBuffers = 48;
    static constexpr std::size_t MaxFreeBytes = std::size_t{sizeof(void*) == 4 ? 48 : 128} << 20;  // a board has 512 MB

private:
    unsigned char* m_puchData = nullptr;  ///< Owned.
    std::size_t m_nCapacity = 0;          ///< Bytes.
};
