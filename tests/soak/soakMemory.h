#pragma once

#include <cstdint>

namespace SoakMemory {

/// Bytes that the process has allocated and not freed, through whichever library. Any thread.
std::int64_t liveBytes();

/// Whether the memory that the process has in use says anything: a sanitizer keeps much of what is freed.
bool isResidentTelling();

}  // namespace SoakMemory
