#pragma once

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

namespace MemoryArenas {

/**
 * Has the heap continue at the start of a large page, with its next 6 MiB or more in such pages where the system gives
 * them to who asks.
 *
 * The start of a program touches more than half of that, and the system clears a large page in much less time than five
 * hundred small ones, one fault each. What lies in front of the first large page, at most 2 MiB of addresses, is not
 * used any more. Nothing happens where the heap is not the C library's, as under a sanitizer.
 */
inline void useLargePages()
{
#if defined(M_TOP_PAD) && defined(MADV_HUGEPAGE) && UINTPTR_MAX > UINT32_MAX
    constexpr std::uintptr_t LargePage = 2 << 20;
    constexpr int Growth = 8 << 20;
    constexpr int UsualGrowth = 128 << 10;    // The C library's own.
    constexpr std::size_t Begin = 160 << 10;  // More than the heap has left when a program begins: it has to grow.
    constexpr std::uintptr_t Margin = 4096;   // What malloc writes behind a block does not get into the large page.
    [[maybe_unused]] static void* volatile s_pNeverUsed;
    mallopt(M_TOP_PAD, Growth);
    void* const begin = std::malloc(Begin);
    mallopt(M_TOP_PAD, UsualGrowth);

    const std::uintptr_t place = reinterpret_cast<std::uintptr_t>(begin) + Begin + Margin;
    const std::uintptr_t first = (place / LargePage + 1) * LargePage;
    const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
    // It is far more where the block is not of the heap or lies behind its end, or where there is none.
    if (end - first <= Growth) {
        s_pNeverUsed = std::malloc(first - place);
        madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
    }
    std::free(begin);
#endif
}

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
    useLargePages();
}

}  // namespace MemoryArenas
