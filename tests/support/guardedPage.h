#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>

/// A page of memory with another behind it that nobody may touch.
class GuardedPage
{
public:
    GuardedPage()
        : m_nBytes(static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))),
          m_pStart(::mmap(nullptr, 2 * m_nBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
        ::mprotect(static_cast<unsigned char*>(m_pStart) + m_nBytes, m_nBytes, PROT_NONE);
    }
    ~GuardedPage() { ::munmap(m_pStart, 2 * m_nBytes); }
    GuardedPage(const GuardedPage&) = delete;
    GuardedPage& operator=(const GuardedPage&) = delete;

    unsigned char* last(std::size_t byteNum) const
    {
        return static_cast<unsigned char*>(m_pStart) + m_nBytes - byteNum;
    }

private:
    std::size_t m_nBytes;
    void* m_pStart;
};
