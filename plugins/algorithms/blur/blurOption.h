#pragma once

#include <records.h>

/// What a blur step is told. The output is of the input's kind.
struct BlurOption
{
    enum Method
    {
        Box,
        Gauss,
        Median
    };
    static constexpr int LargestSize = 99;

    PictureRef input;
    OutputRef output;
    int method = Gauss;
    int size = 5;  ///< Of the window, pixels; odd.

    static BlurOption read(const QString& text);
    QString write() const;
};
