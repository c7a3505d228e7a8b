#include "bareScreen.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QTimer>
#include <QWidget>

namespace {

constexpr char FontDpi[] = "QT_FONT_DPI";
constexpr char UsualDpi[] = "96";

}  // namespace

BareScreen::BareScreen(QWidget* mainWindow) : m_pcMainWindow(mainWindow)
{
    QApplication::instance()->installEventFilter(this);
}

void BareScreen::prepare(int argumentCount, const char* const* arguments)
{
    QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    for (int i = 1; i + 1 < argumentCount; ++i) {
        if (qstrcmp(arguments[i], "-platform") == 0)
            platform = arguments[i + 1];
    }
    const bool isFrameBuffer = platform.startsWith("linuxfb") || platform.startsWith("eglfs");
    if (isFrameBuffer && !qEnvironmentVariableIsSet(FontDpi))
        qputenv(FontDpi, UsualDpi);
}

void BareScreen::fit(QWidget* window)
{
    const QRect room = window->screen()->availableGeometry();
    if (window->width() <= room.width() && window->height() <= room.height())
        return;
    window->setGeometry(room);
    window->setWindowState(window->windowState() | Qt::WindowMaximized);
}

bool BareScreen::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() != QEvent::WindowDeactivate && event->type() != QEvent::Show)
        return false;
    auto* const widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr || !widget->isWindow())
        return false;
    if (event->type() == QEvent::WindowDeactivate)
        QTimer::singleShot(0, this, [this, closed = QPointer<QWidget>(widget)] { handOnKeyboard(closed); });
    else if (widget == m_pcMainWindow && !event->spontaneous())
        widget->activateWindow();
    return false;
}

/// A window that was left for another program's is still to be seen; only one that has closed leaves the keyboard over.
void BareScreen::handOnKeyboard(const QPointer<QWidget>& closed) const
{
    if ((closed && closed->isVisible()) || QApplication::activeWindow() != nullptr)
        return;
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const next = modal != nullptr ? modal : m_pcMainWindow.data();
    if (next != nullptr && next->isVisible())
        next->activateWindow();
}
