#pragma once

#include <malloc.h>
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace MemoryArenas {

/**
 * Says how malloc keeps memory, where the C library has such settings. For the start of a program.
 *
 * All threads share two arenas. Each keeps holes that the others cannot use: with the usual number, eight for each
 * processor, a program whose tasks start and stop for weeks needs ever more memory for the same pictures.
 *
 * Buffers of a picture's size come from the arenas, which keep up to 64 MiB of freed memory each. Otherwise every step
 * that needs one gets pages from the system, clears them by touching them, and gives them back. On 32 bits the C
 * library does not allow it; there large buffers remain the system's.
 */
inline void setUp()
{
#if defined(M_ARENA_MAX)
    mallopt(M_ARENA_MAX, 2);
#endif
#if defined(M_MMAP_THRESHOLD) && defined(M_TRIM_THRESHOLD)
    if (mallopt(M_MMAP_THRESHOLD, 32 << 20))
        mallopt(M_TRIM_THRESHOLD, 64 << 20);
#endif
}

/**
 * Asks for large pages, where the system has them, for memory that was just reserved and will be written from end to
 * end: the system then clears 2 MiB at a time instead of stopping the writer at each 4 KiB.
 */
inline void preferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes)
{
#if defined(MADV_HUGEPAGE)
    constexpr std::uintptr_t Page = 2 << 20;
    const auto begin = (reinterpret_cast<std::uintptr_t>(memory) + Page - 1) / Page * Page;
    const auto end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) / Page * Page;
    if (begin < end)
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#endif
}

}  // namespace MemoryArenas
