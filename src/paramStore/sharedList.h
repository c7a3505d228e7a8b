#pragma once

#include "threadAnnotations.h"

#include <QVector>

#include <utility>

/**
 * The elements of one list record; private to the store library.
 *
 * Snapshots share the vector's memory. Memory that was ever shared is never written again: Qt looks at the number of
 * sharers without ordering memory, so writing in place after the last reader let go would be a data race.
 *
 * Threads: every operation takes the record's lock.
 */
template <typename Element>
class SharedList
{
public:
    explicit SharedList(Mutex& mutex) : m_cMutex(mutex) {}

    int count() const
    {
        const Guard lock(m_cMutex);
        return m_vecElements.size();
    }

    /// Calls use(element) under the lock when there is an element index; its result, or 0 when there is none.
    template <typename Use>
    int with(int index, Use use) const
    {
        const Guard lock(m_cMutex);
        if (index < 0 || index >= m_vecElements.size())
            return 0;
        return use(m_vecElements.at(index));
    }

    /// Copies element index out; 1 on success, 0 when there is none.
    int get(Element& element, int index) const
    {
        return with(index, [&element](const Element& found) {
            element = found;
            return 1;
        });
    }

    QVector<Element> snapshot() const
    {
        const Guard lock(m_cMutex);
        m_bShared = true;
        return m_vecElements;
    }

    void append(const Element& element)
    {
        const Guard lock(m_cMutex);
        if (m_bShared)
            copyElements();
        m_vecElements.append(element);
    }

    /// What was in the list before is destroyed after the lock is released.
    void replace(QVector<Element> elements)
    {
        const Guard lock(m_cMutex);
        m_vecElements.swap(elements);
        m_bShared = true;
    }

private:
    void copyElements() REQUIRES(m_cMutex)
    {
        QVector<Element> own;
        own.reserve(m_vecElements.size() + 1);
        for (const Element& element : std::as_const(m_vecElements))
            own.append(element);
        m_vecElements.swap(own);
        m_bShared = false;
    }

    Mutex& m_cMutex;                                     ///< The record's.
    mutable bool m_bShared GUARDED_BY(m_cMutex) = true;  ///< Whether somebody else may hold the vector's memory.
    QVector<Element> m_vecElements GUARDED_BY(m_cMutex);
};
