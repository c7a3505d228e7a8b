#pragma once

#include "threadGuards.h"

#include <QImage>
#include <QMutex>
#include <QTimer>
#include <QWidget>

#include <array>
#include <atomic>
#include <memory>

class QPainter;

QT_BEGIN_NAMESPACE
namespace Ui {
class ViewForm;
}
QT_END_NAMESPACE

/**
 * One view pane: takes drawing options off its queue, one a paint, draws each onto its canvas and shows the canvas.
 *
 * Threads: a widget, so the window's thread only, but requestCanvas, releaseCanvas and isDrawing, which
 * any thread may call.
 */
class ViewForm : public QWidget
{
    Q_OBJECT

public:
    explicit ViewForm(int index, QWidget* parent = nullptr);
    ~ViewForm() override;

    QImage* requestCanvas()
        ACQUIRE(m_cMtxCanvas);  ///< The canvas with its mutex held until releaseCanvas; not handed over.
    void releaseCanvas() RELEASE(m_cMtxCanvas);

    /// Whether an option that has left the queue may not be on the canvas yet. Any thread.
    bool isDrawing() const { return m_bDrawing.load(); }

    static constexpr int ViewNum = 4;
    static std::array<ViewForm*, ViewNum> s_apcViewForms;  ///< By index; null where absent; filled by the main window.

public Q_SLOTS:
    void timeout();  ///< Schedules a paint when an option waits.

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    bool hasWaitingOption() const;
    bool drawNextOption();  ///< Draws the oldest waiting option; false when there was none.
    QSize canvasSize();
    void paintCanvas(QPainter& painter);
    void paintDragRectangle(QPainter& painter) const;

    std::unique_ptr<Ui::ViewForm> m_pcUi;
    int m_nIndex;
    QMutex m_cMtxCanvas;  ///< Taken alone.
    std::unique_ptr<QImage> m_pcCanvas GUARDED_BY(m_cMtxCanvas) PT_GUARDED_BY(m_cMtxCanvas);
    std::unique_ptr<QTimer> m_pcTimer;
    std::atomic<bool> m_bDrawing{false};
    int m_nStartX = 0;  ///< The dragged rectangle, widget pixels; shown when its end is not before its start.
    int m_nStartY = 0;
    int m_nEndX = -1;
    int m_nEndY = -1;
    bool m_bDragging = false;
};
