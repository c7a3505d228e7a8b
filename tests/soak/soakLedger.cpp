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

void SoakLedger::putThere(Pool pool, std::uint32_t writer, std::uint64_t number)
{
    const Clock::time_point now = Clock::now();
    const std::lock_guard<std::mutex> guard(m_cMutex);
    const auto found = m_mapOnTheirWay.find(Key(pool, writer, number));
    if (found == m_mapOnTheirWay.end())
        return;  // a reader was faster
    found->second.m_bThere = true;
    found->second.m_bDoubtful = now - found->second.m_cEntered >= std::chrono::milliseconds(WriterWaitMs);
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
    for (const auto& [key, entry] : m_mapOnTheirWay) {
        if (entry.m_bExcused)
            ++m_cCounts.m_nCleared;
        else if (!entry.m_bThere)
            ++m_cCounts.m_nUnknown;
        else if (entry.m_bDoubtful)
            ++m_cCounts.m_nDoubtful;
        else
            addProblem("lost: " + nameOf(key));
    }
    m_mapOnTheirWay.clear();
    m_mapLastNumber.clear();
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
