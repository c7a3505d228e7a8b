#pragma once

#include <algorithm>
#include <chrono>
#include <deque>

/**
 * When a pool of a memory disk had a free slot: what somebody saw who looks at it all the time. The last seconds are
 * kept. One thread at a time.
 */
class SoakRoom
{
public:
    using Clock = std::chrono::steady_clock;

    void see(Clock::time_point now, bool hasRoom)
    {
        while (!m_deqStretches.empty() && now - m_deqStretches.front().m_cLast > Kept)
            m_deqStretches.pop_front();
        if (!m_deqStretches.empty()) {
            Stretch& newest = m_deqStretches.back();
            if (newest.m_bRoom == hasRoom && now - newest.m_cLast <= MostBetweenLooks) {
                newest.m_cLast = now;
                return;
            }
        }
        m_deqStretches.push_back({now, now, hasRoom});
    }

    /// The longest part of a time in which there was room whenever somebody looked.
    Clock::duration longestRoom(Clock::time_point begin, Clock::time_point end) const
    {
        Clock::duration longest{0};
        for (const Stretch& stretch : m_deqStretches) {
            if (stretch.m_bRoom)
                longest = std::max(longest, std::min(end, stretch.m_cLast) - std::max(begin, stretch.m_cFirst));
        }
        return longest;
    }

    /// The part of a time in which nobody looked for longer than between two looks.
    Clock::duration unseen(Clock::time_point begin, Clock::time_point end) const
    {
        Clock::duration sum{0};
        Clock::time_point seen = begin;
        const auto addUpTo = [&sum, &seen](Clock::time_point next) {
            if (next - seen > MostBetweenLooks)
                sum += next - seen;
        };
        for (const Stretch& stretch : m_deqStretches) {
            addUpTo(std::min(end, stretch.m_cFirst));
            seen = std::max(seen, stretch.m_cLast);
        }
        addUpTo(end);
        return sum;
    }

private:
    static constexpr std::chrono::milliseconds MostBetweenLooks{50};
    static constexpr std::chrono::seconds Kept{5};

    /// Looks that saw the same.
    struct Stretch
    {
        Clock::time_point m_cFirst;
        Clock::time_point m_cLast;
        bool m_bRoom;
    };
    std::deque<Stretch> m_deqStretches;
};
