#pragma once

#include "drawing/drawing.h"

#include <QImage>
#include <QRectF>

#include <optional>

/// Where a picture lands: the part of it that fills the whole canvas, and the entry that says so to the shapes.
struct ImagePlacement
{
    QRectF m_cSource;  ///< Picture pixels; what lies outside of the picture stays as the canvas was.
    Drawing::ViewScaleOpt m_cEntry;
};

/// How the entry of a picture that is scaled to the window is computed.
enum class WindowQuotients
{
    Exact,
    Integer,
};

/// The placement for a scale type and an alignment; nothing for an unknown scale type or an empty canvas.
std::optional<ImagePlacement> placeImage(int scaleType, int alignType, QSize canvas, QSize image,
                                         WindowQuotients windowQuotients);

/// Sets every byte of a canvas to zero.
void clearCanvas(QImage& canvas);

/// Lets the painter draw the part of a picture that fills the canvas, which is not empty.
void paintPart(QImage& canvas, const QImage& picture, const QRectF& source);
