#pragma once

#include <malloc.h>

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

}  // namespace MemoryArenas
