// Counts the bytes that malloc has given out: what malloc says itself counts holes between them, too. Under a
// sanitizer, which has a malloc of its own, the sanitizer is asked.
#include "soakMemory.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

std::int64_t SoakMemory::liveBytes()
{
    return static_cast<std::int64_t>(__sanitizer_get_current_allocated_bytes());
}

SoakMemory::Requests SoakMemory::requestsOfThisThread()
{
    return {};
}

bool SoakMemory::isResidentTelling()
{
    return false;
}

#else

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

std::atomic<std::int64_t> s_nLive{0};

thread_local SoakMemory::Requests s_cRequests;

void* counted(void* memory, std::size_t asked)
{
    ++s_cRequests.m_nAll;
    s_cRequests.m_nLarge += asked >= SoakMemory::Requests::LargeBytes;
    s_nLive.fetch_add(static_cast<std::int64_t>(malloc_usable_size(memory)), std::memory_order_relaxed);
    return memory;
}

void uncount(void* memory)
{
    s_nLive.fetch_sub(static_cast<std::int64_t>(malloc_usable_size(memory)), std::memory_order_relaxed);
}

}  // namespace

// The process's own malloc, in front of the C library's: every library uses these.
extern "C" {

void* malloc(std::size_t size)
{
    return counted(__libc_malloc(size), size);
}

void* calloc(std::size_t count, std::size_t size)
{
    return counted(__libc_calloc(count, size), count * size);
}

void* realloc(void* memory, std::size_t size)
{
    const auto before = static_cast<std::int64_t>(malloc_usable_size(memory));
    void* const result = __libc_realloc(memory, size);
    if (result || size == 0) {
        s_nLive.fetch_sub(before, std::memory_order_relaxed);
        counted(result, size);
    }
    return result;
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return counted(__libc_memalign(alignment, size), size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return counted(__libc_memalign(alignment, size), size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size)
{
    void* const result = counted(__libc_memalign(alignment, size), size);
    if (!result)
        return ENOMEM;
    *memory = result;
    return 0;
}

void free(void* memory)
{
    uncount(memory);
    __libc_free(memory);
}

}  // extern "C"

std::int64_t SoakMemory::liveBytes()
{
    return s_nLive.load(std::memory_order_relaxed);
}

SoakMemory::Requests SoakMemory::requestsOfThisThread()
{
    return s_cRequests;
}

bool SoakMemory::isResidentTelling()
{
    return true;
}

#endif
