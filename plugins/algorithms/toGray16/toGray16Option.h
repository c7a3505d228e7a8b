#pragma once

#include <records.h>

/// What a colour to 16-bit grey step is told.
struct ToGray16Option
{
    PictureRef input{PictureKind::Colour, 0};
    OutputRef output;

    static ToGray16Option read(const QString& text);
    QString write() const;
};
