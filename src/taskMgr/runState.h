#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

/**
 * What a task and its thread share about runs. Owned by both, so that the thread's last touch is not on the task, which
 * may be deleted as soon as the thread says that it is gone.
 */
struct RunState
{
    std::mutex m_cMutex;  ///< Guards all members and makes beginning and ending a run one step; held briefly.
    std::condition_variable m_cChanged;
    long long m_nRun = 0;                 ///< Number of the run begun last.
    bool m_bGone = true;                  ///< No thread uses the task any more.
    std::deque<long long> m_lstReported;  ///< Runs that have ended and whose report has not arrived yet, oldest first.
};
