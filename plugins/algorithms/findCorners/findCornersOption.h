#pragma once

#include <records.h>

/// What a find corners step is told.
struct FindCornersOption
{
    PictureRef input;
    OutputRef output;
    int maxCount = 100;   ///< The strongest ones are kept.
    int quality = 5;      ///< Percent of the strongest corner.
    int minDistance = 8;  ///< Pixels between two corners.

    static FindCornersOption read(const QString& text);
    QString write() const;
};
