#pragma once

#include "threadAnnotations.h"

#include <QMap>

#include <set>
#include <utility>

/**
 * Which identifiers a store may still hand out; private to the store library.
 *
 * Threads: used under the store's lock.
 */
class ParamIds
{
public:
    /// Takes an identifier out of those that may be handed out.
    void know(int id)
    {
        if (id > m_nLastFresh)
            m_setAhead.insert(m_setAhead.end(), id);
    }

    /// The smallest identifier above the last fresh one that nobody asked for.
    int fresh()
    {
        do {
            ++m_nLastFresh;
        } while (m_setAhead.erase(m_nLastFresh) > 0);
        return m_nLastFresh;
    }

private:
    int m_nLastFresh = 0;
    std::set<int> m_setAhead;  ///< Known ones above the last fresh one; what lies below it never comes again anyway.
};

/**
 * The records of one kind of a store; private to the store library.
 *
 * Threads: every operation but map() takes the store's lock, which is innermost: nothing is called out under it.
 */
template <typename Record>
class ParamTable
{
public:
    ParamTable(Mutex& mutex, ParamIds& ids) : m_cMutex(mutex), m_cIds(ids) {}
    ~ParamTable() { clear(); }
    ParamTable(const ParamTable&) = delete;
    ParamTable& operator=(const ParamTable&) = delete;

    /// The record under id, made when there is none; for -1 always a new one under a fresh identifier.
    Record* make(int id)
    {
        const Guard lock(m_cMutex);
        if (id == -1)
            return insert(m_cIds.fresh());
        m_cIds.know(id);
        Record* found = m_map.value(id, nullptr);
        return found ? found : insert(id);
    }

    /// The record under id or null. Who looks for an identifier names it, so it becomes known even so.
    Record* find(int id) const
    {
        const Guard lock(m_cMutex);
        m_cIds.know(id);
        return m_map.value(id, nullptr);
    }

    void remove(int id)
    {
        const Guard lock(m_cMutex);
        delete m_map.take(id);
    }

    void clear()
    {
        const Guard lock(m_cMutex);
        for (Record* record : std::as_const(m_map))
            delete record;
        m_map.clear();
    }

    QMap<int, Record*>* map() { return &m_map; }

private:
    Record* insert(int id) REQUIRES(m_cMutex)
    {
        auto* record = new Record(id);
        m_map.insert(id, record);
        return record;
    }

    Mutex& m_cMutex;  ///< The store's.
    ParamIds& m_cIds GUARDED_BY(m_cMutex);
    QMap<int, Record*> m_map GUARDED_BY(m_cMutex);  ///< Owns the records.
};
