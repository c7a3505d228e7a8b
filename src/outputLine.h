#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

class QLabel;

/**
 * Shows what the tasks print in a label.
 *
 * Any thread prints; the window's thread shows, and of many messages only the newest, at most one a frame, so that a
 * flood of them neither piles up nor keeps the event loop from its other work. The line made last is the current one.
 */
class OutputLine : public QObject
{
    Q_OBJECT

public:
    /// label is not handed over. Window's thread.
    explicit OutputLine(QLabel* label, QObject* parent = nullptr);
    ~OutputLine() override;

    /// Shows at once when called on the window's thread, with the next frame otherwise; nothing without a line.
    static void print(const QString& message);

    /// Shows a message in place of all that were printed before. Window's thread.
    void show(const QString& message);

private:
    Q_INVOKABLE void showNewest();
    void setLabel(const QString& message);

    QPointer<QLabel> m_pcLabel;
    QTimer m_cPause;  ///< Runs between two printed messages.
};
