#pragma once

#include "drawing/drawingOpt.h"

// The kinds that read a list record when they are drawn and land on the picture that was drawn before them. Finding the
// record never makes one, and the list is taken as a whole: a draw sees it before or after a replacement.

/// Points: single pixels, or crosses of arm size.
class Drawing::PointsDrawingOpt : public Drawing::DrawingOpt
{
public:
    explicit PointsDrawingOpt(int dataId) : DrawingOpt(3, dataId) {}
    void draw(QImage* canvas, ArithmParamMgr* store) override;

    void setSize(int size) { m_nSize = size; }  ///< Arm of the cross, canvas pixels; below 1: a single pixel.
    void setColor(int color) { m_nColor = color; }
    int getSize() const { return m_nSize; }
    int getColor() const { return m_nColor; }

private:
    int m_nSize = 0;
    int m_nColor = 0;
};

/// Line segments, with their lengths when asked for.
class Drawing::LinesDrawingOpt : public Drawing::DrawingOpt
{
public:
    explicit LinesDrawingOpt(int dataId) : DrawingOpt(4, dataId) {}
    void draw(QImage* canvas, ArithmParamMgr* store) override;

    void setSize(int size) { m_nSize = size; }  ///< Width of the pen, canvas pixels.
    void setColor(int color) { m_nColor = color; }
    void setDisplayLength(bool display) { m_bDisplayLength = display; }
    int getSize() const { return m_nSize; }
    int getColor() const { return m_nColor; }
    bool getDisplayLength() const { return m_bDisplayLength; }

private:
    int m_nSize = 1;
    int m_nColor = 0;
    bool m_bDisplayLength = false;
};

/// Closed outlines, with their areas when asked for.
class Drawing::PolysDrawingOpt : public Drawing::DrawingOpt
{
public:
    explicit PolysDrawingOpt(int dataId) : DrawingOpt(5, dataId) {}
    void draw(QImage* canvas, ArithmParamMgr* store) override;

    void setBorderSize(int size) { m_nBorderSize = size; }  ///< Width of the pen, canvas pixels.
    void setBorderColor(int color) { m_nBorderColor = color; }
    void setDisplayArea(bool display) { m_bDisplayArea = display; }
    int getBorderSize() const { return m_nBorderSize; }
    int getBorderColor() const { return m_nBorderColor; }
    bool getDisplayArea() const { return m_bDisplayArea; }

    /// Signed area of the triangle of three x, y pairs.
    static float getTriangleArea2D(float* p1, float* p2, float* p3);

    /// Signed area of the polygon of n x, y pairs; 0 for fewer than three.
    static float getPolyArea2D(float* xy, int n);

private:
    int m_nBorderSize = 0;
    int m_nBorderColor = 0;
    bool m_bDisplayArea = false;
};

/// Found regions: bounding box, a cross at the centre, and the record's name when asked for.
class Drawing::AreasDrawingOpt : public Drawing::DrawingOpt
{
public:
    explicit AreasDrawingOpt(int dataId) : DrawingOpt(6, dataId) {}
    void draw(QImage* canvas, ArithmParamMgr* store) override;

    void setColor(int color) { m_nColor = color; }
    void setDisplayArea(bool display) { m_bDisplayArea = display; }
    int getColor() const { return m_nColor; }
    bool getDisplayArea() const { return m_bDisplayArea; }

private:
    int m_nColor = 0;
    bool m_bDisplayArea = false;
};

/// Strings, one below the other.
class Drawing::StringsDrawingOpt : public Drawing::DrawingOpt
{
public:
    explicit StringsDrawingOpt(int dataId) : DrawingOpt(7, dataId) {}

    /// Raises the option's own font size to 5 when it is smaller.
    void draw(QImage* canvas, ArithmParamMgr* store) override;

    void setColor(int color) { m_nColor = color; }
    int getColor() const { return m_nColor; }
    void setPos(int x, int y);  ///< Picture pixels.
    void getPos(int& x, int& y) const;
    void setFontSize(int size) { m_nFontSize = size; }  ///< Canvas pixels.
    int getFontSize() const { return m_nFontSize; }

private:
    int m_nColor = 0;
    int m_nPosX = 0;
    int m_nPosY = 0;
    int m_nFontSize = 12;
};
