#pragma once

#include "drawing/drawing.h"

#include <QPoint>

#include <cstdint>

/**
 * Mapping between the pixels of a canvas and of the picture on it. Every result is saturated: no scale (0, not a
 * number) and no place, however far outside, is undefined.
 */
namespace ViewScale {

/// The nearest int: the ends of the range for what lies outside of it, 0 for what is not a number.
int saturated(float value);
int saturated(std::int64_t value);

/// Canvas place of a picture place along one axis, before it is cut to an int.
float toCanvas(int place, int offset, float scale);

/// Canvas pixel of a picture pixel.
QPoint toCanvas(int x, int y, const Drawing::ViewScaleOpt& entry);

/// Picture place of a canvas place along one axis.
int toPicture(int place, int offset, float scale);

/// The entry of a view; that of an untouched view when there is no such view. Window's thread.
Drawing::ViewScaleOpt entryOf(int view);

/// Rewrites the entry of a view; nothing happens when there is no such view. Window's thread.
void setEntry(int view, const Drawing::ViewScaleOpt& entry);

}  // namespace ViewScale
