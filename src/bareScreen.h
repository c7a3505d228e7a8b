#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

/**
 * What a window manager would do, for screens that have none: a board's, with a bare X server or the frame buffer.
 *
 * Where there is a window manager it has the last word. The window's thread only.
 */
class BareScreen : public QObject
{
    Q_OBJECT

public:
    /// Looks after the windows of the application while it lives; the main window gets the keyboard when no other has.
    explicit BareScreen(QWidget* mainWindow);

    /**
     * Before the application object is made: keeps texts and controls of a frame buffer at the size that they have on
     * other screens.
     *
     * A frame buffer tells how large its glass is. Qt takes that for a wish, and on a panel of 7 inches and 1024 x 600
     * everything would get twice as large. Who wants that sets QT_SCALE_FACTOR or QT_FONT_DPI.
     */
    static void prepare(int argumentCount, const char* const* arguments);

    /// Before it is shown: a window that is larger than the screen fills the screen instead.
    static void fit(QWidget* window);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void handOnKeyboard(const QPointer<QWidget>& closed) const;

    QPointer<QWidget> m_pcMainWindow;
};
