#include "drawing/viewScaleOpt.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

bool isView(int view)
{
    return view >= 0 && view < Drawing::ViewScaleNum;
}

}  // namespace

std::array<Drawing::ViewScaleOpt, Drawing::ViewScaleNum> Drawing::s_acVSO;

void Drawing::resetViewScaleOpt(int view)
{
    ViewScale::setEntry(view, ViewScaleOpt());
}

namespace ViewScale {

int saturated(float value)
{
    constexpr float limit = 2147483648.0F;  // one above the largest int
    if (std::isnan(value))
        return 0;
    if (value >= limit)
        return std::numeric_limits<int>::max();
    if (value <= -limit)
        return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}

int saturated(std::int64_t value)
{
    return static_cast<int>(
        std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

float toCanvas(int place, int offset, float scale)
{
    // The difference has 33 bits: exact as a double, and 32-bit processors have no instruction for 64-bit integers.
    const auto distance = static_cast<float>(static_cast<double>(place) - offset);
    if (scale != 0.0F)
        return distance / scale;
    return distance == 0.0F ? 0.0F : std::copysign(std::numeric_limits<float>::infinity(), distance);
}

QPoint toCanvas(int x, int y, const Drawing::ViewScaleOpt& entry)
{
    return {saturated(toCanvas(x, entry.m_nOffsetX, entry.m_fScaleX)),
            saturated(toCanvas(y, entry.m_nOffsetY, entry.m_fScaleY))};
}

int toPicture(int place, int offset, float scale)
{
    return saturated(static_cast<float>(offset) + static_cast<float>(place) * scale);
}

Drawing::ViewScaleOpt entryOf(int view)
{
    return isView(view) ? Drawing::s_acVSO[static_cast<std::size_t>(view)] : Drawing::ViewScaleOpt();
}

void setEntry(int view, const Drawing::ViewScaleOpt& entry)
{
    if (isView(view))
        Drawing::s_acVSO[static_cast<std::size_t>(view)] = entry;
}

}  // namespace ViewScale
