#pragma once

#include <records.h>

/// What a find areas step is told: connected regions of pixels that are not 0.
struct FindAreasOption
{
    enum WhenNone
    {
        GoOn,
        Skip,
        Stop
    };
    static constexpr int LargestSize = 1000000000;
    static constexpr int MostSkippedSteps = 999;

    PictureRef input;
    OutputRef areas;
    OutputRef count;     ///< A string record.
    int minSize = 20;    ///< Pixels of a region.
    int maxSize = 0;     ///< Pixels of a region; 0: no limit.
    bool print = false;  ///< Shows the count in the window's output line.
    int whenNone = GoOn;
    int skipSteps = 1;  ///< Steps to leave out when none is found.

    static FindAreasOption read(const QString& text);
    QString write() const;
};
