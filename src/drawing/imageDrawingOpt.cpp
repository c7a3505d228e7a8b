#include "drawing/imageDrawingOpt.h"

#include "drawing/grayPalette.h"
#include "drawing/viewScaleOpt.h"
#include "paramStore/pictureLayout.h"

#include <QImage>

#include <cstring>
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
        std::memcpy(m_cPixels.data(), pixels, static_cast<std::size_t>(byteNum));
}

void Drawing::ImageDrawingOpt::place(QImage& canvas, const QImage& picture, WindowQuotients quotients) const
{
    const auto placement = placeImage(m_nScaleType, m_nAlignType, canvas.size(), {m_nWidth, m_nHeight}, quotients);
    if (!placement)
        return;
    ViewScale::setEntry(getViewID(), placement->m_cEntry);
    paintPlaced(canvas, picture, *placement);
}

Drawing::DIBDrawingOpt::DIBDrawingOpt(int dataId, unsigned char* pixels, int width, int height)
    : ImageDrawingOpt(0, dataId, pixels, PictureLayout::colourBytes(width, height), width, height)
{
}

void Drawing::DIBDrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    if (!canvas || !store || !hasPixels())
        return;
    clearCanvas(*canvas);
    // The painter exchanges the bytes while it samples: cheaper than a pass over the whole picture before.
    m_bExchanged = !m_bExchanged;
    const QImage picture(pixels(), width(), height(), static_cast<int>(PictureLayout::colourStride(width())),
                         m_bExchanged ? QImage::Format_BGR888 : QImage::Format_RGB888);
    // Kept on purpose: scaled to the window, a colour picture notes integer quotients and a grey one exact ones.
    place(*canvas, picture, WindowQuotients::Integer);
}

Drawing::Gray8DrawingOpt::Gray8DrawingOpt(int dataId, unsigned char* pixels, int width, int height)
    : GrayDrawingOpt(1, dataId, pixels, PictureLayout::gray8Bytes(width, height), width, height)
{
}

void Drawing::Gray8DrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    if (!canvas || !store || !hasPixels() || canvas->size().isEmpty())
        return;
    switch (getDrawMode()) {
    case 0:
        drawNormal(*canvas);
        break;
    case 1:
        drawThrough(overlayTable(), *canvas);
        break;
    case 2:
        drawThrough(maskTable(), *canvas);
        break;
    default:
        break;
    }
}

void Drawing::Gray8DrawingOpt::drawNormal(QImage& canvas) const
{
    clearCanvas(canvas);
    // Kept on purpose: the last pixel of the last row is not shown; it is black.
    unsigned char& lastPixel = pixels()[PictureLayout::gray8Bytes(width(), height()) - 1];
    const unsigned char value = std::exchange(lastPixel, static_cast<unsigned char>(0));
    const QImage picture(pixels(), width(), height(), width(), QImage::Format_Grayscale8);
    place(canvas, picture, WindowQuotients::Exact);
    lastPixel = value;
}

void Drawing::Gray8DrawingOpt::drawThrough(const ColorTable& table, QImage& canvas) const
{
    const std::int64_t pixelNum = PictureLayout::gray8Bytes(width(), height());
    const std::int64_t byteNum = pixelNum * std::int64_t{sizeof(QRgb)};
    if (byteNum > PictureLayout::MaxBytes)
        return;
    // Coloured here rather than by the painter, which is several times slower with a colour table.
    const PooledPixels memory(byteNum);
    if (!memory.data())
        return;
    const unsigned char* grey = pixels();
    auto* target = reinterpret_cast<QRgb*>(memory.data());
    for (std::int64_t i = 0; i < pixelNum; ++i)
        target[i] = table[grey[i]];
    // Every colour is opaque or nothing at all, so it is its own premultiplied form.
    const QImage picture(memory.data(), width(), height(), QImage::Format_ARGB32_Premultiplied);
    place(canvas, picture, WindowQuotients::Exact);
}

Drawing::Gray8DrawingOpt::ColorTable Drawing::Gray8DrawingOpt::overlayTable() const
{
    ColorTable table{};  // 0 stays transparent
    for (QRgb value = 1; value < table.size(); ++value)
        table[value] = getLapped() != 0 ? grayPalette()[value] : 0xFF000000 | value << 16 | value << 8 | value;
    return table;
}

Drawing::Gray8DrawingOpt::ColorTable Drawing::Gray8DrawingOpt::maskTable() const
{
    const QRgb color = maskColor(getMaskColor());
    ColorTable table;
    table.fill(getMaskVal() == 0 ? 0 : color);
    table[0] = getMaskVal() == 1 ? 0 : color;
    return table;
}

Drawing::Gray16DrawingOpt::Gray16DrawingOpt(int dataId, const std::uint16_t* pixels, int width, int height)
    : GrayDrawingOpt(2, dataId, pixels, PictureLayout::gray16Bytes(width, height), width, height)
{
}

// Kept on purpose: 16-bit pictures are accepted and copied but not shown.
void Drawing::Gray16DrawingOpt::draw(QImage* /*canvas*/, ArithmParamMgr* /*store*/) {}
