#pragma once

#include "testPatternTruth.h"

namespace TestPattern {

/// Draws a test picture: 3 bytes a pixel with padded rows, or one byte a pixel when gray.
void paint(const Scene& scene, std::uint32_t number, bool gray, unsigned char* pixels);

}  // namespace TestPattern
