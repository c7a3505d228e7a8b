#pragma once

#include "taggedText.h"

#include <paramStore/arithmParamMgr.h>

/// The kinds of pictures that the algorithms read.
enum class PictureKind
{
    Colour,  ///< ParamDIB, "RGB" in option texts.
    Gray     ///< ParamGray8, "Gray8" in option texts.
};

QString pictureKindName(PictureKind kind);  ///< As the user reads it.

/// Names an input picture of a step in its option text.
struct PictureRef
{
    PictureKind kind = PictureKind::Gray;
    int id = 0;  ///< 0: none chosen.

    static PictureRef read(const TaggedReader& reader, PictureKind fallback);
    void write(TaggedWriter& writer) const;
};

/// Names an output record of a step in its option text: "<{prefix}ID>" and "<{prefix}Name>".
struct OutputRef
{
    int id = -1;  ///< -1: not made yet.
    QString name;
    QString describe;  ///< The step's own words, so not part of the option text.

    static OutputRef read(const TaggedReader& reader, const QString& prefix, const QString& defaultName,
                          const QString& describe);
    void write(TaggedWriter& writer, const QString& prefix) const;

    /// Takes a name that the user typed; an empty one, and one with markup in it, changes nothing.
    void rename(const QString& typed);

    /// Makes the record known to the store, labelled: under the identifier it has, else under a fresh one.
    template <typename Record>
    void make(ArithmParamMgr& store, Record* (ArithmParamMgr::*get)(int))
    {
        Record* record = (store.*get)(id);
        id = record->getID();
        label(*record);
    }

    /// The record to write a result into, labelled; null when the step was never configured.
    template <typename Record>
    Record* open(ArithmParamMgr& store, Record* (ArithmParamMgr::*get)(int)) const
    {
        if (id < 1)
            return nullptr;
        Record* record = (store.*get)(id);
        label(*record);
        return record;
    }

    /// Gives a record its name and description, which go whenever the workbench empties the store.
    void label(ArithmParam& record) const;
};
