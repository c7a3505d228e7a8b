#pragma once

#include <QRgb>

/// How the values of a grey picture lie over a canvas: which are shown, and as what. Shown colours are opaque.
struct GreyOverlay
{
    enum class Colours
    {
        Greys,     ///< Each value as itself.
        Blocks,    ///< Each value by the palette.
        OneColour  ///< All values the same.
    };

    Colours m_eColours = Colours::Greys;
    QRgb m_nColour = 0;  ///< The one colour.
    bool m_bShowsZero = false;
    bool m_bShowsOthers = true;

    QRgb colourOf(int value) const;  ///< Fully transparent where a value is not shown.
};
