#pragma once

#include "paramExport.h"

#include <QString>

class ArithmParamMgr;

/**
 * What all records of a parameter store have in common: an identifier, a name and a description.
 *
 * Ownership: every record is made, owned and destroyed by its ArithmParamMgr; callers borrow it until the record
 * is removed, the store is cleaned or the store is destroyed.
 *
 * Threads: name and description may be read and written from any thread at any time.
 */
class ARITHM_PARAM_API ArithmParam
{
public:
    ArithmParam(const ArithmParam&) = delete;
    ArithmParam& operator=(const ArithmParam&) = delete;

    /// The identifier under which the store keeps this record; never changes.
    int getID() const;

    /// The name shown in tables and drawn as the label of an areas record; empty for a new record.
    QString getName() const;
    void setName(const QString& name);

    /// The description shown in tables; empty for a new record.
    QString getDescribe() const;
    void setDescribe(const QString& describe);

protected:
    struct Private;  ///< Data of a record; each kind derives its own from it.

    ARITHM_PARAM_LOCAL explicit ArithmParam(Private* data);  ///< Takes ownership of data.
    ARITHM_PARAM_LOCAL ~ArithmParam();

    Private* m_pcData;  ///< Owned; never null.
};
