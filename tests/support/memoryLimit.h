#pragma once

#include <sys/resource.h>

/// Lets the process have no more than so many bytes of address space while it lives.
class MemoryLimit
{
public:
    explicit MemoryLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_AS, &m_cBefore);
        const rlimit limit{bytes, m_cBefore.rlim_max};
        setrlimit(RLIMIT_AS, &limit);
    }
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &m_cBefore); }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

    /// False where a sanitizer has taken more address space than any limit already.
    static constexpr bool works()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        return false;
#else
        return true;
#endif
    }

private:
    rlimit m_cBefore{};
};
