// The kinds of atomics that a pass uses need no lock on any processor that we build for.
#include <atomic>

static_assert(std::atomic<bool>::is_always_lock_free);
static_assert(std::atomic<int>::is_always_lock_free);
static_assert(std::atomic<unsigned>::is_always_lock_free);
static_assert(std::atomic<long long>::is_always_lock_free);  // the number of passes; two words on a 32-bit processor
static_assert(std::atomic<void*>::is_always_lock_free);
static_assert(std::atomic<void (*)()>::is_always_lock_free);
