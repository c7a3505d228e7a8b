#include "drawing/greyOverlay.h"

#include "drawing/grayPalette.h"

#include <cstddef>

QRgb GreyOverlay::colourOf(int value) const
{
    if (!(value == 0 ? m_bShowsZero : m_bShowsOthers))
        return 0;
    if (m_eColours == Colours::OneColour)
        return m_nColour;
    return m_eColours == Colours::Greys ? qRgb(value, value, value) : grayPalette()[static_cast<std::size_t>(value)];
}
