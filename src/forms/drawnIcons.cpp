#include "forms/drawnIcons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

#include <algorithm>
#include <initializer_list>

namespace {

constexpr qreal Side = 24;  // Of the square that icons are drawn in; one unit is a pixel at this size.

/// An icon that a function draws.
class DrawnIconEngine : public QIconEngine
{
public:
    using Draw = void (*)(QPainter&);  // Into the square; whatever it sets is taken back.

    explicit DrawnIconEngine(Draw draw) : m_pfnDraw(draw) {}

    QIconEngine* clone() const override { return new DrawnIconEngine(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal density = painter->device()->devicePixelRatioF();
        painter->drawPixmap(rect, pixmap((QSizeF(rect.size()) * density).toSize(), mode, state));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override
    {
        if (size.isEmpty())
            return {};
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        drawInto(picture);
        const QStyleOption option;
        return QApplication::style()->generatedIconPixmap(mode, picture, &option);
    }

private:
    /// The largest square in the middle.
    void drawInto(QPixmap& picture) const
    {
        const qreal side = std::min(picture.width(), picture.height());
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate((picture.width() - side) / 2, (picture.height() - side) / 2);
        painter.scale(side / Side, side / Side);
        m_pfnDraw(painter);
    }

    Draw m_pfnDraw;
};

QIcon drawn(DrawnIconEngine::Draw draw)
{
    return QIcon(new DrawnIconEngine(draw));
}

QPen pen(QRgb colour, qreal width, Qt::PenCapStyle cap = Qt::FlatCap)
{
    return {QColor(colour), width, Qt::SolidLine, cap, Qt::MiterJoin};
}

QPen roundedPen(QRgb colour, qreal width)
{
    return {QColor(colour), width, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin};
}

void use(QPainter& painter, const QPen& line, const QBrush& area)
{
    painter.setPen(line);
    painter.setBrush(area);
}

using Points = std::initializer_list<QPointF>;

void drawLine(QPainter& painter, Points points)
{
    painter.drawPolyline(points.begin(), static_cast<int>(points.size()));
}

void drawArea(QPainter& painter, Points points)
{
    painter.drawPolygon(points.begin(), static_cast<int>(points.size()));
}

void drawWorkbench(QPainter& painter)
{
    use(painter, Qt::NoPen, QColor(0x1f3a57));
    painter.drawRoundedRect(QRectF(1.5, 1.5, 21, 21), 4, 4);
    use(painter, pen(0xffd45e, 2), Qt::NoBrush);
    painter.drawEllipse(QPointF(12, 12), 6.5, 6.5);
    use(painter, Qt::NoPen, QColor(0xffd45e));
    painter.drawEllipse(QPointF(12, 12), 2.4, 2.4);
    use(painter, pen(0xffffff, 1.6, Qt::RoundCap), Qt::NoBrush);
    for (const QLineF& line :
         {QLineF(12, 2.5, 12, 6.5), QLineF(12, 17.5, 12, 21.5), QLineF(2.5, 12, 6.5, 12), QLineF(17.5, 12, 21.5, 12)})
        painter.drawLine(line);
}

void drawNewProject(QPainter& painter)
{
    use(painter, roundedPen(0x3b5b80, 1.5), Qt::white);
    drawArea(painter, {{5, 2.5}, {14, 2.5}, {19, 7.5}, {19, 21.5}, {5, 21.5}});
    drawLine(painter, {{14, 2.5}, {14, 7.5}, {19, 7.5}});
}

void drawOpenProject(QPainter& painter)
{
    const QPen line = roundedPen(0x8a6416, 1.5);
    use(painter, Qt::NoPen, QColor(0xf3d38b));
    drawArea(painter, {{2.5, 19.5}, {2.5, 5.5}, {8.5, 5.5}, {10.5, 8}, {19.5, 8}, {19.5, 11}});
    use(painter, line, Qt::NoBrush);
    drawLine(painter, {{2.5, 19.5}, {2.5, 5.5}, {8.5, 5.5}, {10.5, 8}, {19.5, 8}, {19.5, 11}});
    use(painter, line, QColor(0xfbe6b4));
    drawArea(painter, {{2.5, 19.5}, {6, 11}, {22, 11}, {18.5, 19.5}});
}

void drawSaveProject(QPainter& painter)
{
    use(painter, roundedPen(0x2f4a6b, 1.5), QColor(0x7d9cc0));
    drawArea(painter, {{3.5, 3.5}, {17.5, 3.5}, {20.5, 6.5}, {20.5, 20.5}, {3.5, 20.5}});
    use(painter, pen(0x2f4a6b, 1), Qt::white);
    painter.drawRect(QRectF(7.5, 3.5, 8, 6));
    painter.drawRect(QRectF(6.5, 13, 11, 7.5));
}

void drawSaveProjectAs(QPainter& painter)
{
    use(painter, roundedPen(0x2f4a6b, 1.5), QColor(0x7d9cc0));
    drawArea(painter, {{2.5, 2.5}, {15.5, 2.5}, {18.5, 5.5}, {18.5, 18.5}, {2.5, 18.5}});
    use(painter, pen(0x2f4a6b, 1), Qt::white);
    painter.drawRect(QRectF(6, 2.5, 8, 5.5));
    use(painter, roundedPen(0x8a6416, 1), QColor(0xffd45e));
    drawArea(painter, {{12, 21.5}, {13, 17.5}, {20, 10.5}, {23, 13.5}, {16, 20.5}});
}

void drawAddTask(QPainter& painter)
{
    use(painter, pen(0x2c6b3a, 1.5), QColor(0x5aa469));
    painter.drawEllipse(QPointF(12, 12), 9, 9);
    use(painter, pen(0xffffff, 2.4, Qt::RoundCap), Qt::NoBrush);
    painter.drawLine(QPointF(12, 7), QPointF(12, 17));
    painter.drawLine(QPointF(7, 12), QPointF(17, 12));
}

void drawDeleteTask(QPainter& painter)
{
    use(painter, pen(0x8c2f26, 1.5), QColor(0xcf6459));
    painter.drawEllipse(QPointF(12, 12), 9, 9);
    use(painter, pen(0xffffff, 2.4, Qt::RoundCap), Qt::NoBrush);
    painter.drawLine(QPointF(7.5, 12), QPointF(16.5, 12));
}

void drawMemoryDisks(QPainter& painter)
{
    use(painter, pen(0x4b3f78, 1.5), QColor(0x8d7fb5));
    painter.drawRoundedRect(QRectF(5, 5, 14, 14), 1.5, 1.5);
    for (const qreal at : {8.5, 12.0, 15.5}) {
        painter.drawLine(QPointF(at, 2), QPointF(at, 5));
        painter.drawLine(QPointF(at, 19), QPointF(at, 22));
        painter.drawLine(QPointF(2, at), QPointF(5, at));
        painter.drawLine(QPointF(19, at), QPointF(22, at));
    }
    painter.fillRect(QRectF(9, 9, 6, 6), Qt::white);
}

/// Two arrow heads to the right, in the colour of texts.
void drawMore(QPainter& painter)
{
    use(painter, pen(QGuiApplication::palette().buttonText().color().rgb(), 2.5), Qt::NoBrush);
    for (const qreal at : {5.0, 12.0})
        drawLine(painter, {{at, 5}, {at + 7, 12}, {at, 19}});
}

void drawMoreToTheLeft(QPainter& painter)
{
    painter.translate(Side, 0);
    painter.scale(-1, 1);
    drawMore(painter);
}

}  // namespace

QIcon DrawnIcons::workbench()
{
    return drawn(drawWorkbench);
}

QIcon DrawnIcons::newProject()
{
    return drawn(drawNewProject);
}

QIcon DrawnIcons::openProject()
{
    return drawn(drawOpenProject);
}

QIcon DrawnIcons::saveProject()
{
    return drawn(drawSaveProject);
}

QIcon DrawnIcons::saveProjectAs()
{
    return drawn(drawSaveProjectAs);
}

QIcon DrawnIcons::addTask()
{
    return drawn(drawAddTask);
}

QIcon DrawnIcons::deleteTask()
{
    return drawn(drawDeleteTask);
}

QIcon DrawnIcons::memoryDisks()
{
    return drawn(drawMemoryDisks);
}

QIcon DrawnIcons::Style::standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const
{
    if (which == SP_ToolBarHorizontalExtensionButton) {
        const Qt::LayoutDirection direction = option ? option->direction : QGuiApplication::layoutDirection();
        return drawn(direction == Qt::RightToLeft ? drawMoreToTheLeft : drawMore);
    }
    return QProxyStyle::standardIcon(which, option, widget);
}
