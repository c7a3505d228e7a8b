#pragma once

#include "threadAnnotations.h"

#include <QMutex>

/**
 * Scope guards over Qt's locks.
 *
 * Thread sanitizer does not see into an uninstrumented Qt; these guards announce each acquire and release to it, so
 * that a real race is reported and a correct program is not. All locking of QMutex goes through here. A QSemaphore is
 * used as it is: its permits only count, what they stand for is handed over by a mutex.
 */
#if defined(__SANITIZE_THREAD__)
#define LUMIVANT_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define LUMIVANT_TSAN 1
#endif
#endif

#if defined(LUMIVANT_TSAN)
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);
extern "C" void AnnotateIgnoreReadsBegin(const char* file, int line);
extern "C" void AnnotateIgnoreReadsEnd(const char* file, int line);
extern "C" void AnnotateIgnoreWritesBegin(const char* file, int line);
extern "C" void AnnotateIgnoreWritesEnd(const char* file, int line);
#endif

namespace ThreadGuards {

/// Tells the sanitizer that what was released on address happened before now.
inline void announceAcquire([[maybe_unused]] void* address)
{
#if defined(LUMIVANT_TSAN)
    __tsan_acquire(address);
#endif
}

/// Tells the sanitizer that what happened so far is handed over through address.
inline void announceRelease([[maybe_unused]] void* address)
{
#if defined(LUMIVANT_TSAN)
    __tsan_release(address);
#endif
}

inline void lock(QMutex& mutex) ACQUIRE(mutex) NO_THREAD_SAFETY_ANALYSIS  // Qt's functions are not annotated.
{
    mutex.lock();
    announceAcquire(&mutex);
}

inline void unlock(QMutex& mutex) RELEASE(mutex) NO_THREAD_SAFETY_ANALYSIS
{
    announceRelease(&mutex);
    mutex.unlock();
}

/// Holds a QMutex for a scope.
class SCOPED_CAPABILITY MutexGuard
{
public:
    explicit MutexGuard(QMutex& mutex) ACQUIRE(mutex) : m_cMutex(mutex) { lock(m_cMutex); }
    ~MutexGuard() RELEASE() { unlock(m_cMutex); }
    MutexGuard(const MutexGuard&) = delete;
    MutexGuard& operator=(const MutexGuard&) = delete;

private:
    QMutex& m_cMutex;
};

/// A scope in which a thread posts events: Qt guards its lists of them by locks that the sanitizer does not see.
class PostingScope
{
public:
    PostingScope()
    {
#if defined(LUMIVANT_TSAN)
        AnnotateIgnoreReadsBegin(__FILE__, __LINE__);
        AnnotateIgnoreWritesBegin(__FILE__, __LINE__);
#endif
    }
    ~PostingScope()
    {
#if defined(LUMIVANT_TSAN)
        AnnotateIgnoreWritesEnd(__FILE__, __LINE__);
        AnnotateIgnoreReadsEnd(__FILE__, __LINE__);
#endif
    }
    PostingScope(const PostingScope&) = delete;
    PostingScope& operator=(const PostingScope&) = delete;
};

}  // namespace ThreadGuards
