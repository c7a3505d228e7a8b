#include "drawing/imagePlacement.h"

#include "drawing/viewScaleOpt.h"

#include <QPainter>

#include <cstring>

namespace {

ImagePlacement actualSize(bool centred, QSize canvas, QSize image)
{
    // Integer halves; a negative offset moves a picture that is smaller than the canvas to the right or down.
    const int x = centred ? image.width() / 2 - canvas.width() / 2 : 0;
    const int y = centred ? image.height() / 2 - canvas.height() / 2 : 0;
    return {QRectF(x, y, canvas.width(), canvas.height()), {1.0F, 1.0F, x, y}};
}

/// The picture's middle in the middle of the canvas, scale picture pixels to one canvas pixel.
ImagePlacement centredAt(float scale, QSize canvas, QSize image)
{
    const auto canvasWidth = static_cast<float>(canvas.width());
    const auto canvasHeight = static_cast<float>(canvas.height());
    const float x = static_cast<float>(image.width()) / 2.0F - canvasWidth / 2.0F * scale;
    const float y = static_cast<float>(image.height()) / 2.0F - canvasHeight / 2.0F * scale;
    return {QRectF(x, y, canvasWidth * scale, canvasHeight * scale),
            {scale, scale, ViewScale::saturated(x), ViewScale::saturated(y)}};
}

float quotient(int dividend, int divisor)
{
    return static_cast<float>(dividend) / static_cast<float>(divisor);
}

ImagePlacement wholeWindow(QSize canvas, QSize image, WindowQuotients quotients)
{
    const QRectF source(0, 0, image.width(), image.height());
    if (quotients == WindowQuotients::Exact)
        return {source, {quotient(image.width(), canvas.width()), quotient(image.height(), canvas.height()), 0, 0}};
    return {source,
            {static_cast<float>(image.width() / canvas.width()), static_cast<float>(image.height() / canvas.height()),
             0, 0}};
}

}  // namespace

std::optional<ImagePlacement> placeImage(int scaleType, int alignType, QSize canvas, QSize image,
                                         WindowQuotients windowQuotients)
{
    if (canvas.isEmpty())
        return std::nullopt;
    switch (scaleType) {
    case 0:
        return actualSize(alignType == 0, canvas, image);
    case 1:
        return centredAt(quotient(image.width(), canvas.width()), canvas, image);
    case 2:
        return centredAt(quotient(image.height(), canvas.height()), canvas, image);
    case 3:
        return wholeWindow(canvas, image, windowQuotients);
    default:
        return std::nullopt;
    }
}

void clearCanvas(QImage& canvas)
{
    if (!canvas.isNull())
        std::memset(canvas.bits(), 0, static_cast<std::size_t>(canvas.sizeInBytes()));
}

void paintPart(QImage& canvas, const QImage& picture, const QRectF& source)
{
    QPainter painter(&canvas);
    painter.drawImage(QRectF(0, 0, canvas.width(), canvas.height()), picture, source);
}
