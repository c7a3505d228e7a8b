#pragma once

#include "testPatternTruth.h"

#include <QString>

/// The configuration of a test pattern.
struct TestPatternOption
{
    static constexpr int LargestSide = 16384;
    static constexpr int MostShapes = 99;  ///< Discs, and as many bars.

    TestPattern::Scene scene;
    double rate = 10.0;  ///< Pictures a second; 0: as fast as asked.

    static TestPatternOption read(const QString& text);
    QString write() const;
};
