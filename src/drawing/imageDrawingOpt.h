#pragma once

#include "drawing/drawingOpt.h"
#include "drawing/imagePlacement.h"
#include "drawing/pixelPool.h"

#include <QRectF>

#include <cstdint>

struct GreyOverlay;

/// What the three picture kinds share: where the picture goes, and a copy of its pixels of the option's own, so that
/// the next pass may refill the record while the option waits.
class Drawing::ImageDrawingOpt : public Drawing::DrawingOpt
{
public:
    void setScaleType(int type) { m_nScaleType = type; }  ///< 0 actual size, 1 fit width, 2 fit height, 3 to window.
    void setAlignType(int type) { m_nAlignType = type; }  ///< 0 centred, 1 origin aligned.
    int getScaleType() const { return m_nScaleType; }
    int getAlignType() const { return m_nAlignType; }

protected:
    /// Copies byteNum bytes of pixels; holds none when pixels is null, byteNum below 1 or there is no memory.
    ImageDrawingOpt(int dataType, int dataId, const void* pixels, std::int64_t byteNum, int width, int height);

    bool hasPixels() const { return m_cPixels.data() != nullptr; }
    unsigned char* pixels() const { return m_cPixels.data(); }
    int width() const { return m_nWidth; }
    int height() const { return m_nHeight; }

    /// Where a picture of the option's size belongs: the part of it that fills the canvas, noted in the view's entry;
    /// null for an unknown scale type.
    QRectF place(const QImage& canvas, WindowQuotients quotients) const;

    /// Clears the canvas and draws such a picture where it belongs.
    void replaceCanvas(QImage& canvas, const QImage& picture, WindowQuotients quotients) const;

private:
    int m_nScaleType = 0;
    int m_nAlignType = 0;
    PooledPixels m_cPixels;
    int m_nWidth;
    int m_nHeight;
};

/// A colour picture; clears the canvas.
class Drawing::DIBDrawingOpt : public Drawing::ImageDrawingOpt
{
public:
    DIBDrawingOpt(int dataId, unsigned char* pixels, int width, int height);

    /// Every draw exchanges the first and third byte of the pixels once more, so an option is meant to be drawn once.
    void draw(QImage* canvas, ArithmParamMgr* store) override;

private:
    bool m_bExchanged = false;  ///< Whether the last draw took the pixels for blue, green, red.
};

/// What the two grey kinds share: how their values become colours.
class Drawing::GrayDrawingOpt : public Drawing::ImageDrawingOpt
{
public:
    void setDrawMode(int mode) { m_nDrawMode = mode; }      ///< 0 normal, 1 overlay with 0 transparent, 2 mask.
    void setLapped(int lapped) { m_nLapped = lapped; }      ///< Overlay: 0 grey, else colours of the palette.
    void setMaskVal(int value) { m_nMaskVal = value; }      ///< Mask: 0 marks the zero pixels, 1 the others.
    void setMaskColor(int color) { m_nMaskColor = color; }  ///< Mask: 0 black, 1 white, 2 red.
    int getDrawMode() const { return m_nDrawMode; }
    int getLapped() const { return m_nLapped; }
    int getMaskVal() const { return m_nMaskVal; }
    int getMaskColor() const { return m_nMaskColor; }

protected:
    using ImageDrawingOpt::ImageDrawingOpt;

private:
    int m_nDrawMode = 0;
    int m_nLapped = 0;
    int m_nMaskVal = 0;
    int m_nMaskColor = 0;
};

/// An 8-bit grey picture: replaces what the canvas shows, or lies over it.
class Drawing::Gray8DrawingOpt : public Drawing::GrayDrawingOpt
{
public:
    Gray8DrawingOpt(int dataId, unsigned char* pixels, int width, int height);
    void draw(QImage* canvas, ArithmParamMgr* store) override;

private:
    void drawNormal(QImage& canvas) const;
    void drawOver(QImage& canvas, const GreyOverlay& overlay) const;
    void paintOver(QImage& canvas, const GreyOverlay& overlay, const QRectF& source) const;
    GreyOverlay lapped() const;
    GreyOverlay mask() const;
};

/// A 16-bit grey picture: taken in, never shown.
class Drawing::Gray16DrawingOpt : public Drawing::GrayDrawingOpt
{
public:
    Gray16DrawingOpt(int dataId, const std::uint16_t* pixels, int width, int height);
    void draw(QImage* canvas, ArithmParamMgr* store) override;
};
