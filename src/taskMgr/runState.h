#pragma once

#include "threadAnnotations.h"

#include <condition_variable>
#include <deque>

/**
 * What a task and its thread share about runs. Owned by both, so that the thread's last touch is not on the task, which
 * may be deleted as soon as the thread says that it is gone.
 */
struct RunState
{
    Mutex m_cMutex;  ///< Innermost; makes beginning and ending a run one step; held briefly.
    std::condition_variable m_cChanged GUARDED_BY(m_cMutex);  ///< Notified when a run ends or its thread is gone.
    long long m_nRun GUARDED_BY(m_cMutex) = 0;                ///< Number of the run begun last.
    bool m_bGone GUARDED_BY(m_cMutex) = true;                 ///< No thread uses the task any more.
    std::deque<long long> m_lstReported
        GUARDED_BY(m_cMutex);  ///< Runs that have ended and whose report has not arrived yet, oldest first.
};
