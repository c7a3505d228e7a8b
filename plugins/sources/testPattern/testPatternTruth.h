#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

/**
 * What a test picture shows, as pure functions of its scene and its number: the ground truth of tests.
 *
 * Top row: 32 marks of 4 x 4 pixels, mark i holding bit i of the picture's number. Below them, where wanted, the number
 * as eight decimal digits. Below those every disc and every bar moves to and fro in a lane of its own, so that shapes
 * never touch. Shapes have a grey value of at least ShapeGray, everything else is at most OtherGray: one threshold in
 * between leaves exactly the shapes. What does not fit into the picture is cut off at its edges; a shape for which its
 * lane is too small has no size and is not drawn.
 */
namespace TestPattern {

/// A colour in the byte order of pictures.
struct Colour
{
    unsigned char blue, green, red;
};

struct Scene
{
    int width = 640;
    int height = 480;
    int discs = 3;
    int bars = 2;
    bool text = true;
};

struct Disc
{
    int x, y;    ///< Centre.
    int radius;  ///< Covers the pixels at most this far from the centre; 0: not drawn.
    Colour colour;
};

struct Bar
{
    int left, top;
    int width, height;  ///< 0: not drawn.
    Colour colour;
};

constexpr int MarkSize = 4;
constexpr int MarkCount = 32;
constexpr int OtherGray = 112;
constexpr int ShapeGray = 150;
constexpr Colour Background{24, 24, 24};
constexpr Colour MarkZero{8, 8, 8};
constexpr Colour MarkOne{96, 96, 96};
constexpr Colour TextColour{112, 112, 112};

constexpr int DigitCount = 8;
constexpr int DigitWidth = 5;   ///< In dots of textScale pixels.
constexpr int DigitHeight = 7;  ///< In dots.
constexpr int TextTop = 2 * MarkSize;

/// Pixels of one dot of a digit.
constexpr int textScale(const Scene& scene)
{
    return std::clamp(scene.height / 160, 1, 8);
}

/// Where the number begins: in the middle, because views have their captions in the corner.
constexpr int textLeft(const Scene& scene)
{
    return std::max(0, (scene.width - (DigitCount * (DigitWidth + 1) - 1) * textScale(scene)) / 2);
}

/// The first row below marks and text.
constexpr int lanesTop(const Scene& scene)
{
    return scene.text ? TextTop + DigitHeight * textScale(scene) + MarkSize : TextTop;
}

/// Rows of one lane; discs have the upper ones.
constexpr int laneHeight(const Scene& scene)
{
    const int lanes = scene.discs + scene.bars;
    return lanes < 1 ? 0 : std::max(0, scene.height - lanesTop(scene)) / lanes;
}

constexpr int laneMiddle(const Scene& scene, int lane)
{
    return lanesTop(scene) + laneHeight(scene) * lane + laneHeight(scene) / 2;
}

/// A position that goes to and fro between 0 and range.
constexpr int swing(std::uint32_t number, int lane, int range)
{
    if (range < 1)
        return 0;
    const std::int64_t step = 2 + lane % 5;
    const std::int64_t period = 2 * std::int64_t{range};
    const std::int64_t place = (number * step + std::int64_t{lane} * 37) % period;
    return static_cast<int>(place < range ? place : period - place);
}

constexpr std::array<Colour, 4> ShapeColours{{{40, 220, 255}, {240, 230, 60}, {120, 255, 120}, {255, 255, 255}}};

constexpr Disc disc(const Scene& scene, int index, std::uint32_t number)
{
    const int radius = std::max(0, std::min((laneHeight(scene) - 2) * 2 / 5, scene.width / 6));
    const int range = scene.width - 2 * (radius + 1) - 1;
    return {radius + 1 + swing(number, index, range), laneMiddle(scene, index), radius,
            ShapeColours[static_cast<std::size_t>(index) % ShapeColours.size()]};
}

constexpr Bar bar(const Scene& scene, int index, std::uint32_t number)
{
    const int lane = scene.discs + index;
    const int height = std::max(0, (laneHeight(scene) - 2) * 2 / 3);
    const int width = height < 1 ? 0 : scene.width / 3;
    const int range = scene.width - width - 2;
    return {1 + swing(number, lane, range), laneMiddle(scene, lane) - height / 2, width, height,
            ShapeColours[static_cast<std::size_t>(lane) % ShapeColours.size()]};
}

/// Whether a dot of a decimal digit is set.
constexpr bool digitDot(int digit, int column, int row)
{
    // One row of five dots in each group of bits, the leftmost dot highest.
    constexpr std::array<std::array<unsigned char, DigitHeight>, 10> Dots{{
        {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E},
        {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
        {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F},
        {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E},
        {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02},
        {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
        {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E},
        {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
        {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E},
        {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C},
    }};
    return (Dots[static_cast<std::size_t>(digit)][static_cast<std::size_t>(row)] >> (DigitWidth - 1 - column) & 1) != 0;
}

/// Decimal digit place (0 the leftmost) of a picture's number.
constexpr int digitOf(std::uint32_t number, int place)
{
    for (int i = place; i < DigitCount - 1; ++i)
        number /= 10;
    return static_cast<int>(number % 10);
}

/**
 * Reads the number off the marks of a picture that is at least 128 x 4 pixels large.
 *
 * @param bytesPerPixel 3 for "RGB", 1 for "Gray8"
 */
inline std::uint32_t readNumber(const unsigned char* pixels, int bytesPerPixel, int stride)
{
    std::uint32_t number = 0;
    for (int i = 0; i < MarkCount; ++i) {
        const unsigned char* middle = pixels + 2 * stride + (i * MarkSize + 2) * bytesPerPixel;
        if (*middle > (MarkZero.blue + MarkOne.blue) / 2)
            number |= std::uint32_t{1} << i;
    }
    return number;
}

}  // namespace TestPattern
