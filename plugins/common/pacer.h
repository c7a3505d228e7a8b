#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

/**
 * When the next picture of a source is due. Not locked: belongs to whoever guards the source's state.
 *
 * A source that falls behind goes on from now: it never makes up for lost pictures in a burst.
 */
class Pacer
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr double MinRate = 0.01;  ///< Pictures a second; the finest that the dialogs show.
    static constexpr double MaxRate = 1000.0;
    static constexpr std::chrono::milliseconds LongestWait{200};  ///< Of one request: a task notices its stop after it.

    /// A rate as it can be kept: one below MinRate is raised to it and never becomes 0, which means no limit.
    static double possibleRate(double rate) { return rate > 0 ? std::clamp(rate, MinRate, MaxRate) : 0; }

    /// @param rate pictures a second, a possible one; 0: a picture is always due
    void start(double rate)
    {
        m_cPeriod = rate > 0 ? std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1.0 / rate))
                             : Clock::duration::zero();
        m_cDue = Clock::now();
    }

    void delivered() { m_cDue = std::max(m_cDue + m_cPeriod, Clock::now()); }

    /**
     * Waits inside a request until a picture can be handed out, at most LongestWait.
     *
     * @param lock, wake the lock of the source's state, held, and what is notified when the state changes
     * @param ready whether there is a picture, due or not
     * @param stopped whether the source was stopped since the request began
     * @return true when there is a picture and it is due
     */
    template <typename Ready, typename Stopped>
    bool waitUntilDue(std::unique_lock<std::mutex>& lock, std::condition_variable& wake, Ready ready,
                      Stopped stopped) const
    {
        const Clock::time_point deadline = Clock::now() + LongestWait;
        while (!stopped()) {
            const Clock::time_point now = Clock::now();
            if (ready() && now >= m_cDue)
                return true;
            if (now >= deadline)
                return false;
            wake.wait_until(lock, ready() ? std::min(deadline, m_cDue) : deadline);
        }
        return false;
    }

private:
    Clock::duration m_cPeriod{};
    Clock::time_point m_cDue{};
};
