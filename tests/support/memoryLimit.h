#pragma once

#include <QFile>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <vector>

/// Lets the process have no more than so many bytes of address space in addition to what it has, while it lives.
class MemoryLimit
{
public:
    explicit MemoryLimit(std::size_t more)
    {
        ::getrlimit(RLIMIT_AS, &m_cBefore);
        const rlimit limit{addressSpaceInUse() + more, m_cBefore.rlim_max};
        ::setrlimit(RLIMIT_AS, &limit);
        takeWhatIsLeft(more + MostNeeded);
    }
    ~MemoryLimit()
    {
        for (void* block : m_vecBlocks)
            ::munmap(block, m_nBlockBytes);
        ::setrlimit(RLIMIT_AS, &m_cBefore);
    }
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
    static constexpr std::size_t MostNeeded = 1024 * 1024;
    static constexpr std::size_t MostBlocks = 256;

    static rlim_t addressSpaceInUse()
    {
        QFile file(QStringLiteral("/proc/self/statm"));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("/proc/self/statm cannot be read");
        return file.readAll().split(' ').constFirst().toULongLong() * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
    }

    /// An emulator of the board ignores the limit. There all large blocks are taken; elsewhere there is none to take.
    void takeWhatIsLeft(std::size_t blockBytes)
    {
        m_nBlockBytes = blockBytes;
        m_vecBlocks.reserve(MostBlocks);
        while (m_vecBlocks.size() < MostBlocks) {
            void* block = ::mmap(nullptr, blockBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
            if (block == MAP_FAILED)
                return;
            m_vecBlocks.push_back(block);
        }
    }

    rlimit m_cBefore{};
    std::size_t m_nBlockBytes = 0;
    std::vector<void*> m_vecBlocks;
};
