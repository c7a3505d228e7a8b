#include "mainwindow.h"
#include "memoryArenas.h"
#include "qtTexts.h"
#include "startUp.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    MemoryArenas::limit();
    StartUp::preparePixels();
    QApplication application(argc, argv);
    QtTexts::makeChinese();
    MainWindow window;
    window.show();
    StartUp::openNamedProject(window, QApplication::arguments());
    return QApplication::exec();
}
