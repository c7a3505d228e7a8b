#include "startUp.h"

#include "bareScreen.h"
#include "forms/drawnIcons.h"
#include "mainwindow.h"
#include "memoryArenas.h"
#include "qtTexts.h"

#include <QApplication>
#include <QFileInfo>
#include <QScreen>
#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace {

int s_anEnds[2] = {-1, -1};  // A pipe from the signal handler to the event loop; open until the process ends.

void noteEndSignal(int)
{
    const int error = errno;
    const char sign = 0;
    // A full pipe already holds what it is to tell.
    static_cast<void>(!::write(s_anEnds[1], &sign, 1));
    errno = error;
}

}  // namespace

int StartUp::run(Program program, int argc, char* argv[])
{
    prepare(argc, argv);
    QApplication application(argc, argv);
    dress();
    MainWindow window;
    const BareScreen screen(&window);
    if (program == Program::Kiosk) {
        showOverScreen(window);
        quitOnEndSignals();
    } else {
        BareScreen::fit(&window);
        window.show();
    }
    openNamedProject(window, QApplication::arguments());
    if (program == Program::Kiosk)
        window.on_btnStartAll_clicked();
    return QApplication::exec();
}

void StartUp::prepare(int argc, const char* const* argv)
{
    MemoryArenas::setUp();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    BareScreen::prepare(argc, argv);
}

void StartUp::dress()
{
    QtTexts::makeChinese();
    QApplication::setStyle(new DrawnIcons::Style(QApplication::style()));
}

void StartUp::openNamedProject(MainWindow& window, const QStringList& arguments)
{
    const QString name = arguments.value(1);
    if (!name.isEmpty())
        window.openProject(QFileInfo(name).absoluteFilePath());
}

void StartUp::showOverScreen(QWidget& window)
{
    window.setWindowFlag(Qt::FramelessWindowHint);
    window.setGeometry(QApplication::primaryScreen()->geometry());
    window.showFullScreen();
}

void StartUp::quitOnEndSignals()
{
    if (::pipe2(s_anEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* const notifier = new QSocketNotifier(s_anEnds[0], QSocketNotifier::Read, QCoreApplication::instance());
    // What is in the pipe stays there: a loop that starts after that of an open box ended is ended, too.
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, &QCoreApplication::quit);
    struct sigaction action = {};
    action.sa_handler = noteEndSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}
