#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

/**
 * Lets views that have something to draw paint in turn, one a turn of the event loop, so that a window with four busy
 * views answers its user between two of them.
 *
 * Threads: window's thread only.
 */
class PaintTurns : public QObject
{
    Q_OBJECT

public:
    /// Schedules a repaint of the view in one of the next turns; a view that waits for its turn is not queued twice.
    static void ask(QWidget* view);

private:
    explicit PaintTurns(QObject* parent);
    void queue(QWidget* view);
    void paintNext();

    QList<QPointer<QWidget>> m_lstWaiting;  ///< Not owned; in the order in which they asked.
    QTimer m_cTurn;                         ///< Runs while a view waits.
};
