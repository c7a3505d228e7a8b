#pragma once

#include <records.h>

/// What a threshold step is told. The output holds 0 and 255.
struct ThresholdOption
{
    enum Method
    {
        Fixed,    ///< Brighter than value.
        Otsu,     ///< Brighter than the value that parts the picture's histogram best.
        Adaptive  ///< Brighter than the mean of the block around the pixel less offset.
    };
    static constexpr int SmallestBlock = 3;
    static constexpr int LargestBlock = 999;

    PictureRef input;
    OutputRef output;
    int method = Fixed;
    int value = 128;     ///< 0 to 255.
    int blockSize = 31;  ///< Pixels; odd.
    int offset = 5;      ///< Grey levels, -255 to 255.
    bool invert = false;

    static ThresholdOption read(const QString& text);
    QString write() const;
};
