#pragma once

/// Signed areas in single precision, from places given as x, y pairs.
namespace PolyArea {

/// Negative when the three places turn the other way round; see the definition for flat triangles.
float triangle(const float* p1, const float* p2, const float* p3);

/// A fan of triangles from the first of n places; 0 for fewer than three.
float polygon(const float* places, int n);

}  // namespace PolyArea
