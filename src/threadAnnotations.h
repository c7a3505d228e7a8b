#pragma once

#include <condition_variable>
#include <mutex>

/**
 * Which lock guards what, said where the data is and checked by clang (scripts/check; other compilers see nothing).
 *
 *     Mutex m_cMutex ACQUIRED_BEFORE(m_cOther);  // the order of locks
 *     int m_nCount GUARDED_BY(m_cMutex) = 0;     // touched with the mutex held only
 *     void count() REQUIRES(m_cMutex);           // the caller holds it
 *
 * A function that hands a lock over to its caller is left out with NO_THREAD_SAFETY_ANALYSIS and says why.
 */
#if defined(__clang__)
#define LUMIVANT_ANNOTATION(x) __attribute__((x))
#else
#define LUMIVANT_ANNOTATION(x)
#endif

#define CAPABILITY(name) LUMIVANT_ANNOTATION(capability(name))
#define SCOPED_CAPABILITY LUMIVANT_ANNOTATION(scoped_lockable)
#define GUARDED_BY(lock) LUMIVANT_ANNOTATION(guarded_by(lock))
#define PT_GUARDED_BY(lock) LUMIVANT_ANNOTATION(pt_guarded_by(lock))
#define ACQUIRED_BEFORE(...) LUMIVANT_ANNOTATION(acquired_before(__VA_ARGS__))
#define REQUIRES(...) LUMIVANT_ANNOTATION(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) LUMIVANT_ANNOTATION(acquire_capability(__VA_ARGS__))
#define RELEASE(...) LUMIVANT_ANNOTATION(release_capability(__VA_ARGS__))
#define RETURN_CAPABILITY(lock) LUMIVANT_ANNOTATION(lock_returned(lock))
#define NO_THREAD_SAFETY_ANALYSIS LUMIVANT_ANNOTATION(no_thread_safety_analysis)

// Qt's mutex counts as one, too, where this header comes before Qt's own; the check sees to that.
class CAPABILITY("mutex") QMutex;

/// A mutex of the standard library that clang knows as one.
class CAPABILITY("mutex") Mutex
{
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

private:
    friend class Guard;
    std::mutex m_cMutex;
};

/// Holds a Mutex for a scope, or until it is unlocked.
class SCOPED_CAPABILITY Guard
{
public:
    explicit Guard(Mutex& mutex) ACQUIRE(mutex) : m_cLock(mutex.m_cMutex) {}
    ~Guard() RELEASE() {}
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    void unlock() RELEASE() { m_cLock.unlock(); }

    /// Lets go of the mutex until the condition is notified; may return without, so call it in a loop.
    void wait(std::condition_variable& condition) { condition.wait(m_cLock); }

private:
    std::unique_lock<std::mutex> m_cLock;
};
