#pragma once

#include <QRgb>

#include <array>

/// The 256 opaque colours in which an overlay shows the values of a grey picture as blocks; never changes.
const std::array<QRgb, 256>& grayPalette();
