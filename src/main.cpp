#include "mainwindow.h"
#include "qtTexts.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QtTexts::makeChinese();
    MainWindow window;
    window.show();
    return QApplication::exec();
}
