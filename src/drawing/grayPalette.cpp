#include "drawing/grayPalette.h"

#include <cstddef>

namespace {

constexpr int nextLevel(int level, float step)
{
    return static_cast<int>(static_cast<float>(level) + step);
}

constexpr bool isBetweenEnds(int level)
{
    return level != 0 && level != 255;
}

/// Black, white, then a grid of blue, green and red levels without the corners of the colour cube. Of its seven blues
/// the palette has room for the first five.
constexpr std::array<QRgb, 256> makePalette()
{
    std::array<QRgb, 256> palette{0xFF000000, 0xFFFFFFFF};
    std::size_t filled = 2;
    for (int blue = 0; filled < palette.size(); blue = nextLevel(blue, 42.666668F)) {
        for (int j = 0, green = 0; j < 10; ++j, green = nextLevel(green, 28.444445F)) {
            for (int k = 0, red = 0; k < 6; ++k, red = nextLevel(red, 51.2F)) {
                const bool taken = isBetweenEnds(blue) || isBetweenEnds(green) || isBetweenEnds(red);
                if (taken && filled < palette.size())
                    palette[filled++] = 0xFF000000U | static_cast<QRgb>(red << 16 | green << 8 | blue);
            }
        }
    }
    return palette;
}

constexpr std::array<QRgb, 256> Palette = makePalette();
static_assert(Palette[2] == 0xFF330000 && Palette[255] == 0xFF9938A8);

}  // namespace

const std::array<QRgb, 256>& grayPalette()
{
    return Palette;
}
