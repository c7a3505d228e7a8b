#include "testPatternPainter.h"

#include <grayValue.h>
#include <paramStore/pictureLayout.h>

#include <cmath>
#include <cstring>

using namespace TestPattern;

namespace {

/// Draws rectangles, cut off at the edges of a picture.
class Canvas
{
public:
    Canvas(int width, int height, bool gray, unsigned char* pixels)
        : m_nWidth(width),
          m_nHeight(height),
          m_bGray(gray),
          m_nStride(gray ? static_cast<std::size_t>(width)
                         : static_cast<std::size_t>(PictureLayout::colourStride(width))),
          m_pchPixels(pixels)
    {
    }

    void clear(Colour colour)
    {
        std::memset(m_pchPixels, 0, m_nStride * static_cast<std::size_t>(m_nHeight));  // padding, too
        fill(0, 0, m_nWidth, m_nHeight, colour);
    }

    void fill(int left, int top, int width, int height, Colour colour)
    {
        const int endX = std::min(left + width, m_nWidth);
        const int endY = std::min(top + height, m_nHeight);
        for (int y = std::max(top, 0); y < endY; ++y)
            fillRow(y, std::max(left, 0), endX, colour);
    }

private:
    void fillRow(int y, int from, int to, Colour colour)
    {
        if (from >= to)
            return;
        unsigned char* row = m_pchPixels + m_nStride * static_cast<std::size_t>(y);
        const auto count = static_cast<std::size_t>(to - from);
        if (m_bGray) {
            std::memset(row + from, grayValue(colour.blue, colour.green, colour.red), count);
            return;
        }
        unsigned char* pixel = row + 3 * static_cast<std::size_t>(from);
        for (std::size_t i = 0; i < count; ++i, pixel += 3) {
            pixel[0] = colour.blue;
            pixel[1] = colour.green;
            pixel[2] = colour.red;
        }
    }

    int m_nWidth, m_nHeight;
    bool m_bGray;
    std::size_t m_nStride;
    unsigned char* m_pchPixels;  ///< Not owned.
};

void paintMarks(Canvas& canvas, std::uint32_t number)
{
    for (int i = 0; i < MarkCount; ++i)
        canvas.fill(i * MarkSize, 0, MarkSize, MarkSize, (number >> i & 1) != 0 ? MarkOne : MarkZero);
}

void paintDigit(Canvas& canvas, int digit, int left, int scale)
{
    for (int row = 0; row < DigitHeight; ++row) {
        for (int column = 0; column < DigitWidth; ++column) {
            if (digitDot(digit, column, row))
                canvas.fill(left + column * scale, TextTop + row * scale, scale, scale, TextColour);
        }
    }
}

void paintText(Canvas& canvas, const Scene& scene, std::uint32_t number)
{
    const int scale = textScale(scene);
    for (int i = 0; i < DigitCount; ++i)
        paintDigit(canvas, digitOf(number, i), textLeft(scene) + i * (DigitWidth + 1) * scale, scale);
}

/// The largest n with n * n <= square.
int wholeRoot(int square)
{
    int root = static_cast<int>(std::sqrt(static_cast<double>(square)));
    while (root * root > square)
        --root;
    while ((root + 1) * (root + 1) <= square)
        ++root;
    return root;
}

void paintDisc(Canvas& canvas, const Disc& disc)
{
    if (disc.radius < 1)
        return;
    for (int dy = -disc.radius; dy <= disc.radius; ++dy) {
        const int half = wholeRoot(disc.radius * disc.radius - dy * dy);
        canvas.fill(disc.x - half, disc.y + dy, 2 * half + 1, 1, disc.colour);
    }
}

}  // namespace

void TestPattern::paint(const Scene& scene, std::uint32_t number, bool gray, unsigned char* pixels)
{
    Canvas canvas(scene.width, scene.height, gray, pixels);
    canvas.clear(Background);
    paintMarks(canvas, number);
    if (scene.text)
        paintText(canvas, scene, number);
    for (int i = 0; i < scene.discs; ++i)
        paintDisc(canvas, disc(scene, i, number));
    for (int i = 0; i < scene.bars; ++i) {
        const Bar shape = bar(scene, i, number);
        canvas.fill(shape.left, shape.top, shape.width, shape.height, shape.colour);
    }
}
