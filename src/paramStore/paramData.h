#pragma once

#include "arithmParam.h"
#include "threadAnnotations.h"

#include <QString>

// Private to the store library: what stands behind the opaque pointer of every record.

struct ARITHM_PARAM_LOCAL ArithmParam::Private
{
    explicit Private(int id) : m_nID(id) {}
    virtual ~Private() = default;
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    const int m_nID;
    mutable Mutex m_cMutex;  ///< Innermost. Guards the list of list records, too.
    QString m_strName GUARDED_BY(m_cMutex);
    QString m_strDescribe GUARDED_BY(m_cMutex);
};
