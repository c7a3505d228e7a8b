#pragma once

#include "soakRoom.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

/**
 * The book of all pictures that are on their way through a memory disk. Any thread.
 *
 * A picture is entered before it is put onto a disk, and struck out when it is taken off. What was put there and never
 * comes out again is lost, unless its writer waited for as long as it ever waits and the disk was seen to have no room
 * meanwhile, or its waiting pictures were cleared by the user.
 */
class SoakLedger
{
public:
    using Pool = int;  ///< Disk * 2, plus 1 for its grey pictures.

    struct Counts
    {
        long long m_nTaken = 0;
        long long m_nRefused = 0;   ///< The writer waited for as long as it ever waits, and there was no room.
        long long m_nDoubtful = 0;  ///< The same, but whether there was no room was not seen well enough.
        long long m_nUnknown = 0;   ///< A stop request came between entering the picture and putting it there.
        long long m_nCleared = 0;   ///< Perhaps cleared by the user.

        long long m_nWriters = 0;  ///< Runs that entered pictures: each is stopped once at most.

        /// Empty when what is not known is only a small part of what was handed over, or of the runs that were stopped.
        std::string problem() const
        {
            constexpr long long Few = 10;
            constexpr int OneOf = 100;
            constexpr int OneOfWriters = 3;
            if (m_nDoubtful > Few + m_nTaken / OneOf)
                return "too many pictures were perhaps refused: " + std::to_string(m_nDoubtful);
            if (m_nUnknown > Few + std::max(m_nTaken / OneOf, m_nWriters / OneOfWriters))
                return "too many pictures ended with their run: " + std::to_string(m_nUnknown);
            return {};
        }
    };

    static constexpr int PoolNum = 12;
    void see(const std::array<bool, PoolNum>& hasRoom);  ///< To be called every few milliseconds.

    std::uint64_t enter(Pool pool, std::uint32_t writer);

    /// @param certain false when the run was ended by a stop request, and it may not have come to the writing at all
    void putThere(Pool pool, std::uint32_t writer, std::uint64_t number, bool certain);

    /// False when no such picture is on its way.
    bool take(Pool pool, std::uint32_t writer, std::uint64_t number);

    void excuseAllOf(Pool pool);  ///< The user has just cleared what waits.

    /// Every picture has come out or never will: names those that were lost, and starts afresh.
    void close();

    void report(const std::string& problem);
    std::string problems();
    Counts counts();

private:
    using Clock = SoakRoom::Clock;

    /// What is known of the time for which a writer waited for room.
    enum class Wait
    {
        None,     ///< It did not wait until it gave up.
        Full,     ///< There was no room.
        Unclear,  ///< There was room for a moment, or nobody looked.
        Room,     ///< There was room for so long that the writer must have got it.
    };
    struct Entry
    {
        Clock::time_point m_cEntered;
        Wait m_eWait = Wait::None;
        bool m_bThere = false;
        bool m_bCertain = false;
        bool m_bExcused = false;
    };
    using Key = std::tuple<Pool, std::uint32_t, std::uint64_t>;

    Wait waitOf(Pool pool, Clock::time_point entered, Clock::time_point now) const;
    void judge(const Key& key, const Entry& entry);
    void addProblem(const std::string& problem);
    static std::string nameOf(const Key& key);

    std::mutex m_cMutex;  ///< Guards all below.
    std::map<Key, Entry> m_mapOnTheirWay;
    std::map<std::uint32_t, std::uint64_t> m_mapLastNumber;  ///< Of each writer.
    std::array<SoakRoom, PoolNum> m_acRoom;                  ///< Of each pool.
    std::vector<std::string> m_vecProblems;
    Counts m_cCounts;
};
