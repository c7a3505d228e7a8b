// Breaks the rules of locks in every way that the annotations speak of. scripts/check refuses this source, line by
// line: each line that ends in "refused" must be complained about, no other may be.
#include "drawing/drawingOpt.h"
#include "globalFunction.h"
#include "threadGuards.h"

#include <QMutex>

using ThreadGuards::MutexGuard;

class Unguarded
{
public:
    int readWithoutLock() { return m_nCount; }  // refused
    void writeWithoutLock()
    {
        m_nGuardedByQt = 1;  // refused
    }
    void callWithoutLock()
    {
        count();  // refused
    }
    void useAfterUnlock()
    {
        Guard guard(m_cOuter);
        m_nCount = 1;
        guard.unlock();
        m_nCount = 2;  // refused
    }
    void lockTwice()
    {
        const MutexGuard guard(m_cQtMutex);
        const MutexGuard again(m_cQtMutex);  // refused
    }
    void lockInWrongOrder()
    {
        const MutexGuard inner(m_cQtMutex);
        const Guard outer(m_cOuter);  // refused
    }
    void forgetToUnlock()
    {
        ThreadGuards::lock(m_cQtMutex);
        m_nGuardedByQt = 3;
    }  // refused
    void wrongLock(GlobalFunction::ViewDrawOption& record)
    {
        const MutexGuard guard(m_cQtMutex);
        record.takeOldest();  // refused
    }
    void rightly(GlobalFunction::ViewDrawOption& record)
    {
        const Guard outer(m_cOuter);
        const MutexGuard inner(m_cQtMutex);
        const MutexGuard recordGuard(record.m_cMutex);
        record.takeOldest();
        m_nGuardedByQt = m_nCount;
        count();
    }

private:
    void count() REQUIRES(m_cOuter) { ++m_nCount; }

    Mutex m_cOuter ACQUIRED_BEFORE(m_cQtMutex);
    QMutex m_cQtMutex;
    int m_nCount GUARDED_BY(m_cOuter) = 0;
    int m_nGuardedByQt GUARDED_BY(m_cQtMutex) = 0;
};
