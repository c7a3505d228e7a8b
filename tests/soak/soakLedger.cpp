#include "soakLedger.h"

std::uint64_t SoakLedger::enter(Pool pool, std::uint32_t writer)
{
    const std::lock_guard<std::mutex> guard(m_cMutex);
    const std::uint64_t number = ++m_mapLastNumber[writer];
    Entry entry;
    entry.m_cEntered = Clock::now();
    m_mapOnTheirWay.emplace(Key(pool, writer, number), entry);
    return number;
}

void SoakLedger::see(const std::array<bool, PoolNum>& hasRoom)
{
    const std::lock_guard<std::mutex> guard(m_cMutex);
    const Clock::time_point now = Clock::now();
    for (std::size_t pool = 0; pool < hasRoom.size(); ++pool)
        m_acRoom[pool].see(now, hasRoom[pool]);
}

void SoakLedger::putThere(Pool pool, std::uint32_t writer, std::uint64_t number, bool certain)
{
    const Clock::time_point now = Clock::now();
    const std::lock_guard<std::mutex> guard(m_cMutex);
    const auto found = m_mapOnTheirWay.find(Key(pool, writer, number));
    if (found == m_mapOnTheirWay.end() || found->second.m_bThere)
        return;  // a reader was faster, or this is known
    Entry& entry = found->second;
    entry.m_bThere = true;
    entry.m_bCertain = certain;
    entry.m_eWait = waitOf(pool, entry.m_cEntered, now);
}

/// A writer that is refused has waited for exactly a second: what it took longer, it did not wait, and there may have
/// been room. While it waits there is room only for as long as a thread needs to take or to give a slot.
SoakLedger::Wait SoakLedger::waitOf(Pool pool, Clock::time_point entered, Clock::time_point now) const
{
    constexpr std::chrono::milliseconds WriterWait{1000};
    constexpr std::chrono::milliseconds Moment{100};
    constexpr std::chrono::milliseconds TooLong{300};
    if (now - entered < WriterWait)
        return Wait::None;
    const SoakRoom& room = m_acRoom.at(static_cast<std::size_t>(pool));
    const Clock::duration longest = room.longestRoom(entered, now);
    if (longest > now - entered - WriterWait + TooLong)
        return Wait::Room;
    return longest > Moment || room.unseen(entered, now) > TooLong ? Wait::Unclear : Wait::Full;
}

bool SoakLedger::take(Pool pool, std::uint32_t writer, std::uint64_t number)
{
    const std::lock_guard<std::mutex> guard(m_cMutex);
    if (m_mapOnTheirWay.erase(Key(pool, writer, number)) == 0)
        return false;
    ++m_cCounts.m_nTaken;
    return true;
}

void SoakLedger::excuseAllOf(Pool pool)
{
    const std::lock_guard<std::mutex> guard(m_cMutex);
    for (auto& [key, entry] : m_mapOnTheirWay) {
        if (std::get<0>(key) == pool)
            entry.m_bExcused = true;
    }
}

void SoakLedger::close()
{
    const std::lock_guard<std::mutex> guard(m_cMutex);
    for (const auto& [key, entry] : m_mapOnTheirWay)
        judge(key, entry);
    m_mapOnTheirWay.clear();
    m_cCounts.m_nWriters += static_cast<long long>(m_mapLastNumber.size());
    m_mapLastNumber.clear();
}

/// Counts a picture that never came out, or names it as lost.
void SoakLedger::judge(const Key& key, const Entry& entry)
{
    if (entry.m_bExcused)
        ++m_cCounts.m_nCleared;
    else if (!entry.m_bThere || (entry.m_eWait == Wait::None && !entry.m_bCertain))
        ++m_cCounts.m_nUnknown;
    else if (entry.m_eWait == Wait::Full)
        ++m_cCounts.m_nRefused;
    else if (entry.m_eWait == Wait::Unclear || !entry.m_bCertain)
        ++m_cCounts.m_nDoubtful;
    else
        addProblem((entry.m_eWait == Wait::Room ? "lost although there was room: " : "lost: ") + nameOf(key));
}

void SoakLedger::report(const std::string& problem)
{
    const std::lock_guard<std::mutex> guard(m_cMutex);
    addProblem(problem);
}

std::string SoakLedger::problems()
{
    const std::lock_guard<std::mutex> guard(m_cMutex);
    std::string text;
    for (const std::string& problem : m_vecProblems)
        text += problem + "\n";
    return text;
}

SoakLedger::Counts SoakLedger::counts()
{
    const std::lock_guard<std::mutex> guard(m_cMutex);
    return m_cCounts;
}

void SoakLedger::addProblem(const std::string& problem)
{
    constexpr std::size_t MostProblems = 20;
    if (m_vecProblems.size() < MostProblems)
        m_vecProblems.push_back(problem);
}

std::string SoakLedger::nameOf(const Key& key)
{
    const Pool pool = std::get<0>(key);
    return "picture " + std::to_string(std::get<2>(key)) + " of run " + std::to_string(std::get<1>(key)) +
           " on memory disk " + std::to_string(pool / 2) + (pool % 2 ? " (grey)" : " (colour)");
}
