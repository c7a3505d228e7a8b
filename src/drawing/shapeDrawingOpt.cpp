#include "drawing/shapeDrawingOpt.h"

#include "drawing/polyArea.h"
#include "drawing/viewScaleOpt.h"
#include "paramStore/arithmParamMgr.h"

#include <QFont>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using ViewScale::saturated;

constexpr int MaxPenWidth = 8192;  ///< Covers every canvas; the rasteriser's numbers end at 32767.
constexpr int MaxFontSize = 4096;  ///< Larger letters would only fill the canvas.
constexpr int MaxTextPlace =
    1 << 20;  ///< Text that starts further out is left out; its place would not fit Qt's numbers.

QColor opaque(int color)
{
    return QColor::fromRgb((color >> 16) & 0xFF, (color >> 8) & 0xFF, color & 0xFF);
}

QColor inverted(int color)
{
    return opaque(~color);
}

QPen linePen(const QColor& color, int width)
{
    const QBrush brush(color, Qt::SolidPattern);
    return {brush, static_cast<qreal>(std::clamp(width, 0, MaxPenWidth)), Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

/// Moves a place along an axis.
int moved(int place, std::int64_t distance)
{
    return saturated(place + distance);
}

void drawCross(QPainter& painter, QPoint centre, int arm)
{
    painter.drawLine(moved(centre.x(), -std::int64_t{arm}), centre.y(), moved(centre.x(), arm), centre.y());
    painter.drawLine(centre.x(), moved(centre.y(), -std::int64_t{arm}), centre.x(), moved(centre.y(), arm));
}

void drawText(QPainter& painter, std::int64_t x, std::int64_t y, const QString& text)
{
    if (std::abs(x) <= MaxTextPlace && std::abs(y) <= MaxTextPlace)
        painter.drawText(QPointF(static_cast<qreal>(x), static_cast<qreal>(y)), text);
}

bool canDraw(const QImage* canvas, const ArithmParamMgr* store)
{
    return canvas && store && !canvas->isNull();
}

void drawLength(QPainter& painter, QPoint start, QPoint end)
{
    const double dx = static_cast<double>(end.x()) - start.x();
    const double dy = static_cast<double>(end.y()) - start.y();
    drawText(painter, (std::int64_t{start.x()} + end.x()) / 2, (std::int64_t{start.y()} + end.y()) / 2,
             QString::asprintf("%.2f", std::sqrt(dx * dx + dy * dy)));
}

void drawPolyArea(QPainter& painter, const std::vector<QPoint>& vertices)
{
    std::vector<float> places;
    places.reserve(vertices.size() * 2);
    std::int64_t sumX = 0;
    std::int64_t sumY = 0;
    for (const QPoint& vertex : vertices) {
        places.push_back(static_cast<float>(vertex.x()));
        places.push_back(static_cast<float>(vertex.y()));
        sumX += vertex.x();
        sumY += vertex.y();
    }
    const int n = static_cast<int>(vertices.size());
    const float area = Drawing::PolysDrawingOpt::getPolyArea2D(places.data(), n);
    drawText(painter, sumX / n, sumY / n, QString::asprintf("%.2f", static_cast<double>(area)));
}

void drawArea(QPainter& painter, const ParamAreas::Area& area, const Drawing::ViewScaleOpt& entry)
{
    const QPoint topLeft = ViewScale::toCanvas(area.left, area.top, entry);
    const QPoint bottomRight = ViewScale::toCanvas(area.right, area.bottom, entry);
    const QPoint topRight(bottomRight.x(), topLeft.y());
    const QPoint bottomLeft(topLeft.x(), bottomRight.y());
    painter.drawLine(topLeft, topRight);
    painter.drawLine(topRight, bottomRight);
    painter.drawLine(bottomRight, bottomLeft);
    painter.drawLine(bottomLeft, topLeft);
    drawCross(painter, ViewScale::toCanvas(area.centerX, area.centerY, entry), 3);
}

}  // namespace

void Drawing::PointsDrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    const ParamPoints* record = canDraw(canvas, store) ? store->findParamPoints(getDataID()) : nullptr;
    if (!record)
        return;
    const ViewScaleOpt entry = ViewScale::entryOf(getViewID());
    const QVector<ParamPoints::Point> points = record->getPoints();
    if (m_nSize < 1) {
        for (const ParamPoints::Point& point : points) {
            const QPoint place = ViewScale::toCanvas(point.x, point.y, entry);
            if (canvas->valid(place))
                canvas->setPixel(place, static_cast<QRgb>(m_nColor));
        }
        return;
    }
    QPainter painter(canvas);
    painter.setPen(opaque(m_nColor));
    for (const ParamPoints::Point& point : points)
        drawCross(painter, ViewScale::toCanvas(point.x, point.y, entry), m_nSize);
}

void Drawing::LinesDrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    const ParamLines* record = canDraw(canvas, store) ? store->findParamLines(getDataID()) : nullptr;
    if (!record)
        return;
    const ViewScaleOpt entry = ViewScale::entryOf(getViewID());
    QPainter painter(canvas);
    painter.setPen(linePen(opaque(m_nColor), m_nSize));
    for (const ParamLines::Line& line : record->getLines()) {
        const QPoint start = ViewScale::toCanvas(line.x1, line.y1, entry);
        const QPoint end = ViewScale::toCanvas(line.x2, line.y2, entry);
        painter.drawLine(start, end);
        if (!m_bDisplayLength)
            continue;
        // Kept on purpose: the thin inverted pen of the length stays for all following lines.
        painter.setPen(inverted(m_nColor));
        drawLength(painter, start, end);
    }
}

float Drawing::PolysDrawingOpt::getTriangleArea2D(float* p1, float* p2, float* p3)
{
    return PolyArea::triangle(p1, p2, p3);
}

float Drawing::PolysDrawingOpt::getPolyArea2D(float* xy, int n)
{
    return PolyArea::polygon(xy, n);
}

void Drawing::PolysDrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    const ParamPolys* record = canDraw(canvas, store) ? store->findParamPolys(getDataID()) : nullptr;
    if (!record)
        return;
    const ViewScaleOpt entry = ViewScale::entryOf(getViewID());
    QPainter painter(canvas);
    // Kept on purpose: outlines exchange red and blue, unlike every other kind.
    const QColor border = opaque(m_nBorderColor);
    painter.setPen(linePen(QColor(border.blue(), border.green(), border.red()), m_nBorderSize));
    for (const ParamPolys::Poly& poly : record->getPolys()) {
        if (poly.size() <= 2)
            continue;
        std::vector<QPoint> vertices;
        vertices.reserve(static_cast<std::size_t>(poly.size()));
        for (const ParamPolys::Point& vertex : poly)
            vertices.push_back(ViewScale::toCanvas(vertex.x, vertex.y, entry));
        for (std::size_t i = 0; i < vertices.size(); ++i)
            painter.drawLine(vertices[i], vertices[(i + 1) % vertices.size()]);
        if (!m_bDisplayArea)
            continue;
        // Kept on purpose: the thin inverted pen of the area stays for all following polygons.
        painter.setPen(inverted(m_nBorderColor));
        drawPolyArea(painter, vertices);
    }
}

void Drawing::AreasDrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    const ParamAreas* record = canDraw(canvas, store) ? store->findParamAreas(getDataID()) : nullptr;
    if (!record)
        return;
    const ViewScaleOpt entry = ViewScale::entryOf(getViewID());
    const QString name = record->getName();
    QPainter painter(canvas);
    for (const ParamAreas::Area& area : record->getAreas()) {
        painter.setPen(opaque(m_nColor));
        drawArea(painter, area, entry);
        if (!m_bDisplayArea)
            continue;
        const QPoint topLeft = ViewScale::toCanvas(area.left, area.top, entry);
        painter.setPen(inverted(m_nColor));
        drawText(painter, std::int64_t{topLeft.x()} + 3, std::int64_t{topLeft.y()} - 3, name);
    }
}

void Drawing::StringsDrawingOpt::setPos(int x, int y)
{
    m_nPosX = x;
    m_nPosY = y;
}

void Drawing::StringsDrawingOpt::getPos(int& x, int& y) const
{
    x = m_nPosX;
    y = m_nPosY;
}

void Drawing::StringsDrawingOpt::draw(QImage* canvas, ArithmParamMgr* store)
{
    constexpr int maxBytes = 1023;  // of one string
    const ParamStrings* record = canDraw(canvas, store) ? store->findParamStrings(getDataID()) : nullptr;
    const QVector<QByteArray> strings = record ? record->getStrings() : QVector<QByteArray>();
    if (strings.isEmpty())
        return;
    m_nFontSize = std::max(m_nFontSize, 5);
    const ViewScaleOpt entry = ViewScale::entryOf(getViewID());
    const int x = saturated(ViewScale::toCanvas(m_nPosX, entry.m_nOffsetX, entry.m_fScaleX));
    const float top = ViewScale::toCanvas(m_nPosY, entry.m_nOffsetY, entry.m_fScaleY);
    const int firstY = saturated(top + static_cast<float>(m_nFontSize));

    QFont font;
    font.setPixelSize(std::min(m_nFontSize, MaxFontSize));
    QPainter painter(canvas);
    painter.setFont(font);
    painter.setPen(opaque(m_nColor));
    for (int i = 0; i < strings.size(); ++i) {
        // A text ends at its first zero byte.
        const QString text = QString::fromLatin1(strings.at(i).left(maxBytes).constData());
        if (!text.isEmpty())
            drawText(painter, x, firstY + i * (std::int64_t{m_nFontSize} + 10), text);
    }
}
