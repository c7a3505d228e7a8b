// Pictures that are drawn directly against the painter, which defines every byte of what they become. Input: which
// drawing, the sizes of canvas and picture, the part of the picture, the seed of its pixels.
#include "drawing/directDrawing.h"
#include "drawing/greyOverlay.h"
#include "fuzzInput.h"
#include "fuzzSupport.h"

#include <QImage>
#include <QPainter>

#include <cmath>
#include <cstring>
#include <random>

namespace {

/// Mostly small; sometimes beyond the 2048 pixels that the painter takes in one go.
int side(FuzzInput& input)
{
    const int choice = input.byte();
    return choice < 250 ? 1 + choice % 80 : 2000 + 16 * (choice - 250) + input.upTo(15);
}

QSize size(FuzzInput& input)
{
    const int width = side(input);
    const int height = side(input);
    return {width, width > 80 ? 1 + height % 8 : height};
}

/// Whole numbers, fractions of powers of two, other fractions, and any finite double at all.
double number(FuzzInput& input)
{
    const int kind = input.byte();
    if (kind < 100)
        return kind - 10;
    const int high = input.byte();
    const int wide = high << 8 | input.byte();
    if (kind < 170)
        return (wide - 4096) / 256.0;
    if (kind < 240)
        return (wide - 4096) / 100.0 / (1 + kind % 7);
    std::uint64_t bits = static_cast<std::uint64_t>(wide) << 48;
    for (int shift = 40; shift >= 0; shift -= 8)
        bits |= static_cast<std::uint64_t>(input.byte()) << shift;
    double value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return std::isfinite(value) ? value : 0;
}

QImage noise(QSize size, QImage::Format format, unsigned seed)
{
    QImage picture(size, format);
    std::mt19937 random(seed);
    for (int y = 0; y < size.height(); ++y) {
        unsigned char* row = picture.scanLine(y);
        for (int i = 0; i < size.width() * picture.depth() / 8; ++i)
            row[i] = static_cast<unsigned char>(random() % 3 == 0 ? 0 : random() >> 9);
    }
    return picture;
}

QImage painted(QImage canvas, const QImage& picture, const QRectF& source)
{
    QPainter(&canvas).drawImage(QRectF(canvas.rect()), picture, source);
    return canvas;
}

QImage coloursOf(const QImage& grey, const GreyOverlay& overlay)
{
    QImage colours(grey.size(), QImage::Format_ARGB32);
    for (int y = 0; y < grey.height(); ++y)
        for (int x = 0; x < grey.width(); ++x)
            colours.setPixel(x, y, overlay.colourOf(grey.constScanLine(y)[x]));
    return colours;
}

GreyOverlay overlayOf(FuzzInput& input)
{
    constexpr QRgb Shown[] = {0xFF000000, 0xFFFFFFFF, 0xFFFF0000};
    GreyOverlay overlay;
    overlay.m_eColours = static_cast<GreyOverlay::Colours>(input.upTo(2));
    overlay.m_nColour = Shown[input.upTo(2)];
    overlay.m_bShowsZero = input.flag();
    overlay.m_bShowsOthers = input.flag();
    return overlay;
}

void replaceAsThePainter(QImage canvas, const QImage& picture, const QRectF& source)
{
    const QImage before = canvas.copy();
    if (!DirectDrawing::replace(canvas, picture, source)) {
        Fuzz::expect(source != QRectF(picture.rect()), "a whole picture is drawn");
        return Fuzz::expect(canvas == before, "a picture that is not drawn leaves the canvas alone");
    }
    QImage black(canvas.size(), canvas.format());
    black.fill(Qt::black);
    const QImage wanted = painted(black, picture.convertToFormat(QImage::Format_RGB888), source);
    Fuzz::expect(canvas == wanted, "a picture is drawn as the painter draws it");
}

void overlayAsThePainter(QImage canvas, const QImage& grey, const QRectF& source, const GreyOverlay& overlay)
{
    const QImage before = canvas.copy();
    if (!DirectDrawing::overlay(canvas, grey, source, overlay))
        return Fuzz::expect(canvas == before, "an overlay that is not drawn leaves the canvas alone");
    Fuzz::expect(canvas == painted(before, coloursOf(grey, overlay), source),
                 "an overlay is drawn as the painter draws it");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    Fuzz::startProgram();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length)
{
    constexpr QImage::Format Formats[] = {QImage::Format_RGB888, QImage::Format_BGR888, QImage::Format_Grayscale8};
    FuzzInput input(data, length);
    const int kind = input.upTo(3);
    const QImage canvas = noise(size(input), QImage::Format_RGB888, 1);
    const QSize pictureSize = size(input);
    const auto seed = static_cast<unsigned>(input.byte());
    const double x = number(input);
    const double y = number(input);
    const double width = number(input);
    const double height = number(input);
    const QRectF source(x, y, width, height);
    if (kind == 3)
        overlayAsThePainter(canvas, noise(pictureSize, QImage::Format_Grayscale8, seed), source, overlayOf(input));
    else
        replaceAsThePainter(canvas, noise(pictureSize, Formats[kind], seed), source);
    return 0;
}
