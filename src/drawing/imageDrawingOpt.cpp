#include "drawing/imageDrawingOpt.h"

#include "drawing/directDrawing.h"
#include "drawing/greyOverlay.h"
#include "drawing/viewScaleOpt.h"
#include "paramStore/pictureLayout.h"
#include "pixels/pixels.h"

#include <QImage>

#include <array>
#include <utility>

namespace {

QRgb maskColor(int code)
{
    switch (code) {
    case 0:
        return 0xFF000000;
    case 1:
        return 0xFFFFFFFF;
    case 2:
        return 0xFFFF0000;
    default:
        return 0;  // nothing to be seen
    }
}

}  // namespace

Drawing::ImageDrawingOpt::ImageDrawingOpt(int dataType, int dataId, const void* pixels, std::int64_t byteNum, int width,
                                          int height)
    : DrawingOpt(dataType, dataId), m_cPixels(pixels ? byteNum : 0), m_nWidth(width), m_nHeight(height)
{
    if (hasPixels())
        Pixels::copyPictureAside(static_cast<const unsigned char*>(pixels), m_cPixels.data(),
                                 static_cast<std::size_t>(byteNum));
}

QRectF Drawing::ImageDrawingOpt::place(const QImage& canvas, WindowQuotients quotients) const
{
    const auto placement = placeImage(m_nScaleType, m_nAlignType, canvas.size(), {m_nWidth, m_nHeight}, quotients);
    if (!placement)
        return {};
    ViewScale::setEntry(getViewID(), placement->m_cEntry);
    return placement->m_cSource;
}

void Drawing::ImageDrawingOpt::replaceCanvas(QImage& canvas, const QImage& picture, WindowQuotients quotients) const
{
    const QRectF source = place(canvas, quotients);
    if (DirectDrawing::replace(canvas, picture, source))
        return;
    clearCanvas(canvas);
    if (source.isNull())
        return;
    // The painter rounds half pixels of an unscaled picture by its format: as for red, green, blue.
    const bool isUnscaled = source.size() == QSizeF(canvas.size());
    paintPart(canvas, isUnscaled ? picture.convertToFormat(QImage::Format_RGB888) : picture, source);
}

Drawing::DIBDrawingOpt::DIBDrawingOpt(int dataId, unsigned char* pixels, int width, int height)
    : ImageDrawingOpt(0, dataId, pixels, PictureLayout::colourBytes(width, height), width, height)
{
}

void Drawing::DIBDrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    if (!canvas || !store || !hasPixels())
        return;
    // The bytes are exchanged while they are shown: cheaper than a pass over the whole picture before.
    m_bExchanged = !m_bExchanged;
    const QImage picture(pixels(), width(), height(), static_cast<int>(PictureLayout::colourStride(width())),
                         m_bExchanged ? QImage::Format_BGR888 : QImage::Format_RGB888);
    // Kept on purpose: scaled to the window, a colour picture notes integer quotients and a grey one exact ones.
    replaceCanvas(*canvas, picture, WindowQuotients::Integer);
}

Drawing::Gray8DrawingOpt::Gray8DrawingOpt(int dataId, unsigned char* pixels, int width, int height)
    : GrayDrawingOpt(1, dataId, pixels, PictureLayout::gray8Bytes(width, height), width, height)
{
}

void Drawing::Gray8DrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    if (!canvas || !store || !hasPixels() || canvas->size().isEmpty())
        return;
    if (getDrawMode() == 0)
        drawNormal(*canvas);
    else if (getDrawMode() == 1)
        drawOver(*canvas, lapped());
    else if (getDrawMode() == 2)
        drawOver(*canvas, mask());
}

void Drawing::Gray8DrawingOpt::drawNormal(QImage& canvas) const
{
    // Kept on purpose: the last pixel of the last row is not shown; it is black.
    unsigned char& lastPixel = pixels()[PictureLayout::gray8Bytes(width(), height()) - 1];
    const unsigned char value = std::exchange(lastPixel, static_cast<unsigned char>(0));
    const QImage picture(pixels(), width(), height(), width(), QImage::Format_Grayscale8);
    replaceCanvas(canvas, picture, WindowQuotients::Exact);
    lastPixel = value;
}

void Drawing::Gray8DrawingOpt::drawOver(QImage& canvas, const GreyOverlay& overlay) const
{
    const QRectF source = place(canvas, WindowQuotients::Exact);
    if (source.isNull())
        return;
    const QImage picture(pixels(), width(), height(), width(), QImage::Format_Grayscale8);
    if (!DirectDrawing::overlay(canvas, picture, source, overlay))
        paintOver(canvas, overlay, source);
}

void Drawing::Gray8DrawingOpt::paintOver(QImage& canvas, const GreyOverlay& overlay, const QRectF& source) const
{
    const std::int64_t pixelNum = PictureLayout::gray8Bytes(width(), height());
    const std::int64_t byteNum = pixelNum * std::int64_t{sizeof(QRgb)};
    if (byteNum > PictureLayout::MaxBytes)
        return;
    // Coloured here rather than by the painter, which is several times slower with a colour table.
    const PooledPixels memory(byteNum);
    if (!memory.data())
        return;
    std::array<QRgb, 256> table;
    int value = 0;
    for (QRgb& colour : table)
        colour = overlay.colourOf(value++);
    const unsigned char* grey = pixels();
    auto* target = reinterpret_cast<QRgb*>(memory.data());
    const auto count = static_cast<std::size_t>(pixelNum);
    for (std::size_t i = 0; i < count; ++i)
        target[i] = table[grey[i]];
    // Every colour is opaque or nothing at all, so it is its own premultiplied form.
    paintPart(canvas, QImage(memory.data(), width(), height(), QImage::Format_ARGB32_Premultiplied), source);
}

GreyOverlay Drawing::Gray8DrawingOpt::lapped() const
{
    GreyOverlay overlay;  // 0 stays transparent
    overlay.m_eColours = getLapped() != 0 ? GreyOverlay::Colours::Blocks : GreyOverlay::Colours::Greys;
    return overlay;
}

GreyOverlay Drawing::Gray8DrawingOpt::mask() const
{
    const QRgb colour = maskColor(getMaskColor());
    const bool isVisible = colour != 0;
    return {GreyOverlay::Colours::OneColour, colour, isVisible && getMaskVal() != 1, isVisible && getMaskVal() != 0};
}

Drawing::Gray16DrawingOpt::Gray16DrawingOpt(int dataId, const std::uint16_t* pixels, int width, int height)
    : GrayDrawingOpt(2, dataId, pixels, PictureLayout::gray16Bytes(width, height), width, height)
{
}

// Kept on purpose: 16-bit pictures are accepted and copied but not shown.
void Drawing::Gray16DrawingOpt::draw(QImage* /*canvas*/, ArithmParamMgr* /*store*/) {}
