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
    BareScreen::fit(&window);
    window.show();
    StartUp::openNamedProject(window, QApplication::arguments());
    return QApplication::exec();
}
