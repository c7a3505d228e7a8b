#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>

/// A page of memory between two others that nobody may touch.
class GuardedPage
{
public:
    GuardedPage()
        : m_nBytes(static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))),
          m_pStart(::mmap(nullptr, 3 * m_nBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
        ::mprotect(first(), m_nBytes, PROT_READ | PROT_WRITE);
    }
    ~GuardedPage() { ::munmap(m_pStart, 3 * m_nBytes); }
    GuardedPage(const GuardedPage&) = delete;
    GuardedPage& operator=(const GuardedPage&) = delete;

    unsigned char* first() const { return static_cast<unsigned char*>(m_pStart) + m_nBytes; }
    unsigned char* last(std::size_t byteNum) const { return first() + m_nBytes - byteNum; }

private:
    std::size_t m_nBytes;
    void* m_pStart;
};
