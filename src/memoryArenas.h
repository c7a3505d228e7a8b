#pragma once

#include <malloc.h>

namespace MemoryArenas {

/**
 * Lets all threads share two of malloc's arenas, where the C library has such a setting. For the start of a program.
 *
 * Each arena keeps holes that the others cannot use. With the usual number, eight for each processor, a program whose
 * tasks start and stop for weeks needs ever more memory for the same pictures.
 */
inline void limit()
{
#if defined(M_ARENA_MAX)
    mallopt(M_ARENA_MAX, 2);
#endif
}

}  // namespace MemoryArenas
