#pragma once

/// The grey value of a colour: the same weights and rounding as the colour to grey step, so both ways agree.
constexpr unsigned char grayValue(int blue, int green, int red)
{
    return static_cast<unsigned char>((blue * 1868 + green * 9617 + red * 4899 + 8192) >> 14);
}

static_assert(grayValue(0, 0, 0) == 0 && grayValue(255, 255, 255) == 255 && grayValue(77, 77, 77) == 77);
static_assert(grayValue(255, 0, 0) == 29 && grayValue(0, 255, 0) == 150 && grayValue(0, 0, 255) == 76);
