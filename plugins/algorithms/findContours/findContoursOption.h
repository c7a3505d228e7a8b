#pragma once

#include <records.h>

/// What a find contours step is told: outer contours of pixels that are not 0, as polygons.
struct FindContoursOption
{
    PictureRef input;
    OutputRef output;
    int minSize = 20;   ///< Square pixels inside the contour.
    int minPoints = 3;  ///< Polygons with fewer vertices are left out.
    int tolerance = 2;  ///< How far the polygon may be from the contour, pixels.

    static FindContoursOption read(const QString& text);
    QString write() const;
};
