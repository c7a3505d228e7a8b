// The workbench of a machine that does nothing else: fills the screen, opens its project and runs all tasks.
#include "bareScreen.h"
#include "mainwindow.h"
#include "memoryArenas.h"
#include "qtTexts.h"
#include "startUp.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();
    StartUp::preparePixels();
    BareScreen::prepare(argc, argv);
    QApplication application(argc, argv);
    QtTexts::makeChinese();
    StartUp::useDrawnIcons();
    MainWindow window;
    const BareScreen screen(&window);
    StartUp::showOverScreen(window);
    StartUp::quitOnEndSignals();
    StartUp::openNamedProject(window, QApplication::arguments());
    window.on_btnStartAll_clicked();
    return QApplication::exec();
}
