#include "drawing/greyOverlay.h"

#include "drawing/grayPalette.h"

#include <cstddef>

QRgb GreyOverlay::colourOf(int value) const
{
    if (!(value == 0 ? m_bShowsZero : m_bShowsOthers))
        return 0;
    switch (m_eColours) {
    case Colours::Greys:
        return qRgb(value, value, value);
    case Colours::Blocks:
        return grayPalette()[static_cast<std::size_t>(value)];
    case Colours::OneColour:
        break;
    }
    return m_nColour;
}
