#pragma once

#include <records.h>

/// What a find lines step is told: straight segments along the edges of a grey picture.
struct FindLinesOption
{
    PictureRef input;
    OutputRef output;
    int lowEdge = 60;    ///< Strength of an edge that continues a strong one.
    int highEdge = 150;  ///< Strength of an edge that counts by itself.
    int votes = 40;      ///< Edge pixels that must agree on a line.
    int minLength = 40;  ///< Pixels.
    int maxGap = 5;      ///< Pixels between parts of one line.

    static FindLinesOption read(const QString& text);
    QString write() const;
};
