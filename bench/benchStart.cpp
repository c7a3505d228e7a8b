// How long does it take until the window shows? Ends as soon as it was painted: "bare" shows an empty window of Qt,
// "workbench" the workbench, with the plug-ins beside the program.
#include "bareScreen.h"
#include "mainwindow.h"
#include "startUp.h"

#include <QApplication>
#include <QMainWindow>
#include <QTimer>

#include <cstring>

namespace {

/// Quits once the window was painted.
class FirstPaint : public QObject
{
public:
    bool eventFilter(QObject* window, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        return QObject::eventFilter(window, event);
    }
};

int showUntilPainted(QMainWindow& window)
{
    FirstPaint paint;
    window.installEventFilter(&paint);
    window.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char* argv[])
{
    if (argc > 1 && std::strcmp(argv[1], "bare") == 0) {
        QApplication application(argc, argv);
        QMainWindow window;
        return showUntilPainted(window);
    }
    StartUp::prepare(argc, argv);
    QApplication application(argc, argv);
    StartUp::dress();
    MainWindow window;
    const BareScreen screen(&window);
    BareScreen::fit(&window);
    return showUntilPainted(window);
}
