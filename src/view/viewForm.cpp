#include "view/viewForm.h"

#include "drawing/drawingOpt.h"
#include "drawing/imagePlacement.h"
#include "drawing/viewScaleOpt.h"
#include "globalFunction.h"
#include "threadGuards.h"
#include "ui_viewForm.h"
#include "view/paintTurns.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cstdint>

using ThreadGuards::MutexGuard;

namespace {

constexpr int RefreshPeriodMs = 300;

std::unique_ptr<Drawing::DrawingOpt> takeOldestOption(int view)
{
    const ViewRecord record(view);
    if (!record)
        return nullptr;
    const MutexGuard guard(record->m_cMutex);
    return record->takeOldest();
}

/// Picture pixels that a number of canvas pixels covers.
int covered(int pixelNum, float scale)
{
    return ViewScale::toPicture(pixelNum, 0, scale);
}

/// The outline whose opposite corners are the two points; a single pixel, too, which QPainter::drawRect leaves out.
void drawOutline(QPainter& painter, QPoint start, QPoint end)
{
    painter.drawLine(start.x(), start.y(), end.x(), start.y());
    painter.drawLine(end.x(), start.y(), end.x(), end.y());
    painter.drawLine(end.x(), end.y(), start.x(), end.y());
    painter.drawLine(start.x(), end.y(), start.x(), start.y());
}

}  // namespace

std::array<ViewForm*, ViewForm::ViewNum> ViewForm::s_apcViewForms{};

ViewForm::ViewForm(int index, QWidget* parent)
    : QWidget(parent),
      m_pcUi(std::make_unique<Ui::ViewForm>()),
      m_nIndex(index),
      m_pcCanvas(std::make_unique<QImage>()),
      m_pcTimer(std::make_unique<QTimer>())
{
    m_pcUi->setupUi(this);
    setAttribute(Qt::WA_OpaquePaintEvent);  // The canvas hides the background: Qt need not fill it before each paint.
    m_pcUi->lblName->setText(QStringLiteral("视窗") + QString::number(index + 1));
    m_pcUi->lblName->adjustSize();  // The same text is taller in some fonts.
    connect(m_pcTimer.get(), &QTimer::timeout, this, &ViewForm::timeout);
    m_pcTimer->start(RefreshPeriodMs);
}

ViewForm::~ViewForm()
{
    std::replace(s_apcViewForms.begin(), s_apcViewForms.end(), this, static_cast<ViewForm*>(nullptr));
}

QImage* ViewForm::requestCanvas()
{
    ThreadGuards::lock(m_cMtxCanvas);
    return m_pcCanvas.get();
}

void ViewForm::releaseCanvas()
{
    ThreadGuards::unlock(m_cMtxCanvas);
}

void ViewForm::timeout()
{
    if (hasWaitingOption())
        PaintTurns::ask(this);
}

bool ViewForm::hasWaitingOption() const
{
    const ViewRecord record(m_nIndex);
    if (!record)
        return false;
    const MutexGuard guard(record->m_cMutex);
    return record->m_nCount >= 1;
}

void ViewForm::paintEvent(QPaintEvent* /*event*/)
{
    if (drawNextOption())
        PaintTurns::ask(this);
    QPainter painter(this);
    paintCanvas(painter);
    paintDragRectangle(painter);
}

bool ViewForm::drawNextOption()
{
    if (canvasSize().isEmpty())
        return false;
    m_bDrawing.store(true);  // before the option leaves the queue: who finds that empty sees this
    const std::unique_ptr<Drawing::DrawingOpt> option = takeOldestOption(m_nIndex);
    if (option) {
        const MutexGuard guard(m_cMtxCanvas);
        option->draw(m_pcCanvas.get(), option->getParamMgr());
    }
    m_bDrawing.store(false);
    return option != nullptr;
}

QSize ViewForm::canvasSize()
{
    const MutexGuard guard(m_cMtxCanvas);
    return m_pcCanvas->size();
}

void ViewForm::paintCanvas(QPainter& painter)
{
    const MutexGuard guard(m_cMtxCanvas);
    if (m_pcCanvas->size() != size())
        painter.fillRect(rect(), palette().window());
    painter.drawImage(0, 0, *m_pcCanvas);
}

void ViewForm::paintDragRectangle(QPainter& painter) const
{
    if (m_nEndX < m_nStartX || m_nEndY < m_nStartY)
        return;
    const Drawing::ViewScaleOpt entry = ViewScale::entryOf(m_nIndex);
    const int x = ViewScale::toPicture(m_nStartX, entry.m_nOffsetX, entry.m_fScaleX);
    const int y = ViewScale::toPicture(m_nStartY, entry.m_nOffsetY, entry.m_fScaleY);
    const int width = covered(m_nEndX - m_nStartX + 1, entry.m_fScaleX);
    const int height = covered(m_nEndY - m_nStartY + 1, entry.m_fScaleY);
    painter.setPen(Qt::red);
    drawOutline(painter, {m_nStartX, m_nStartY}, {m_nEndX, m_nEndY});
    painter.drawText(50, 20, QString::asprintf("x=%d, y=%d", x, y));
    painter.drawText(50, 40, QString::asprintf("w=%d, h=%d", width, height));
}

void ViewForm::resizeEvent(QResizeEvent* /*event*/)
{
    auto canvas = std::make_unique<QImage>(rect().size(), QImage::Format_RGB888);
    clearCanvas(*canvas);
    const QSize size = canvas->size();
    {
        const MutexGuard guard(m_cMtxCanvas);
        if (!canvas->isNull())
            QPainter(canvas.get()).drawImage(0, 0, *m_pcCanvas);
        m_pcCanvas = std::move(canvas);
    }
    GlobalFunction::getInstance()->resizeViewCanvas(m_nIndex, size.width(), size.height());
}

void ViewForm::mousePressEvent(QMouseEvent* event)
{
    // Hides the last rectangle. Kept on purpose: a press up and left of where that one started shows a rectangle from
    // there to the old start until the mouse moves.
    m_nEndX = m_nStartX - 1;
    m_nEndY = m_nStartY - 1;
    if (event->button() == Qt::LeftButton) {
        m_bDragging = true;
        m_nStartX = event->pos().x();
        m_nStartY = event->pos().y();
    }
    update();
}

void ViewForm::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_bDragging)
        return;
    m_nEndX = event->pos().x();
    m_nEndY = event->pos().y();
    update();
}

void ViewForm::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    m_bDragging = false;
}

// Kept on purpose: a double-click does nothing, not even what a press does.
void ViewForm::mouseDoubleClickEvent(QMouseEvent* /*event*/) {}
