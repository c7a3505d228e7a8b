#pragma once

#include <records.h>

/// What a colour to grey step is told.
struct ToGrayOption
{
    PictureRef input{PictureKind::Colour, 0};
    OutputRef output;

    static ToGrayOption read(const QString& text);
    QString write() const;
};
