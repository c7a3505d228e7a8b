#pragma once

#include "arithmParam.h"

#include <QString>

#include <mutex>

// Private to the store library: what stands behind the opaque pointer of every record.

struct ARITHM_PARAM_LOCAL ArithmParam::Private
{
    explicit Private(int id) : m_nID(id) {}
    virtual ~Private() = default;
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    const int m_nID;
    mutable std::mutex m_cMutex;  ///< Guards the two texts and, in list records, the list.
    QString m_strName;
    QString m_strDescribe;
};
