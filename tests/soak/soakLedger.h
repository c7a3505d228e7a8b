#pragma once

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
 * comes out again is lost, unless the disk had no room for as long as a writer waits or its waiting pictures were
 * cleared by the user.
 */
class SoakLedger
{
public:
    using Pool = int;  ///< Disk * 2, plus 1 for its grey pictures.

    struct Counts
    {
        long long m_nTaken = 0;
        long long m_nDoubtful = 0;  ///< Perhaps refused: the writer waited for as long as it ever waits.
        long long m_nUnknown = 0;   ///< The run ended between entering the picture and putting it there.
        long long m_nCleared = 0;   ///< Perhaps cleared by the user.
    };

    std::uint64_t enter(Pool pool, std::uint32_t writer);
    void putThere(Pool pool, std::uint32_t writer, std::uint64_t number);

    /// False when no such picture is on its way.
    bool take(Pool pool, std::uint32_t writer, std::uint64_t number);

    void excuseAllOf(Pool pool);  ///< The user has just cleared what waits.

    /// Every picture has come out or never will: names those that were lost, and starts afresh.
    void close();

    void report(const std::string& problem);
    std::string problems();
    Counts counts();

private:
    static constexpr int WriterWaitMs = 1000;
    using Clock = std::chrono::steady_clock;

    struct Entry
    {
        Clock::time_point m_cEntered;
        bool m_bThere = false;
        bool m_bDoubtful = false;
        bool m_bExcused = false;
    };
    using Key = std::tuple<Pool, std::uint32_t, std::uint64_t>;

    void addProblem(const std::string& problem);
    static std::string nameOf(const Key& key);

    std::mutex m_cMutex;  ///< Guards all below.
    std::map<Key, Entry> m_mapOnTheirWay;
    std::map<std::uint32_t, std::uint64_t> m_mapLastNumber;  ///< Of each writer.
    std::vector<std::string> m_vecProblems;
    Counts m_cCounts;
};
