#pragma once

#include <cstddef>
#include <cstdint>

namespace SoakMemory {

/// Bytes that the process has allocated and not freed, through whichever library. Any thread.
std::int64_t liveBytes();

/// What the calling thread has asked malloc for so far: how often, and for at least this many bytes at once how often.
struct Requests
{
    static constexpr std::size_t LargeBytes = 64 * 1024;
    std::int64_t m_nAll = 0;
    std::int64_t m_nLarge = 0;
};
/// Nothing under a sanitizer with a malloc of its own.
Requests requestsOfThisThread();

/// Whether the memory that the process has in use says anything: a sanitizer keeps much of what is freed.
bool isResidentTelling();

}  // namespace SoakMemory
