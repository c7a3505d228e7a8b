#pragma once

#include "forms/drawnIcons.h"
#include "frameBuffer.h"
#include "mainwindow.h"

#include <QApplication>
#include <QFile>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <cstdlib>

#include <malloc.h>

/**
 * Runs the main function of a program on a frame buffer, as a board starts it, and tests in its event loop.
 *
 * A test sets s_pfnTest and calls start(); the tests of both programs share what stands here.
 */
namespace WholeProgram {

inline int (*s_pfnTest)() = nullptr;  ///< Runs in the program's event loop; its result, and the program ends.

inline void planTest()
{
    QTimer::singleShot(0, QCoreApplication::instance(), [] { QCoreApplication::exit(s_pfnTest()); });
}

/// The program's main window; null when there is none.
inline MainWindow* window()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* const found = qobject_cast<MainWindow*>(widget))
            return found;
    }
    return nullptr;
}

/// Calls a program's main function with a project whose only task has the name "a" and runs until it is stopped.
inline int start(int (*program)(int, char**), char* name)
{
    const QTemporaryDir folder;
    QFile device(folder.filePath(QStringLiteral("screen")));
    if (!device.open(QIODevice::WriteOnly) || !device.resize(FrameBuffer::Bytes))
        return 2;
    device.close();
    // The machine's own keyboards and its console are none of the test's business.
    qputenv("QT_QPA_FB_DISABLE_INPUT", "1");
    qputenv("QT_QPA_ENABLE_TERMINAL_KEYBOARD", "1");
    qputenv("QT_QPA_PLATFORM", "linuxfb:nographicsmodeswitch:fb=" + QFile::encodeName(device.fileName()));
    QFile project(folder.filePath(QStringLiteral("a.lmv")));
    if (!project.open(QIODevice::WriteOnly))
        return 2;
    project.write(
        "<=TaskInfo=>\n<-TaskName->a</-TaskName->\n<-Kernel->0</-Kernel->\n<-View->0</-View->\n"
        "<-DataSource->\n<DSName>Memory Disk 0</DSName><OutputName>in</OutputName>"
        "<OutputDescribe></OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID>"
        "<Config></Config>\n</-DataSource->\n</=TaskInfo=>\n");
    project.close();
    QByteArray path = QFile::encodeName(project.fileName());
    char* arguments[] = {name, path.data(), nullptr};
    qAddPreRoutine(planTest);
    return program(2, arguments);
}

/// What both programs are to their user.
class Test : public QObject
{
    Q_OBJECT

private slots:
    void windowIsShownAndFillsTheScreen()
    {
        QVERIFY(window() != nullptr);
        QVERIFY(QTest::qWaitForWindowExposed(window()));
        QCOMPARE(window()->geometry(), QRect(0, 0, FrameBuffer::Width, FrameBuffer::Height));
        QTRY_COMPARE(QApplication::activeWindow(), window());
    }

    void textsHaveTheirUsualSizeAndPicturesThatOfTheScreen()
    {
        QCOMPARE(QGuiApplication::primaryScreen()->logicalDotsPerInch(), 96.0);
        QVERIFY(QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling));
        QVERIFY(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
        QVERIFY(dynamic_cast<DrawnIcons::Style*>(QApplication::style()) != nullptr);
    }

    void textsOfQtAreChinese()
    {
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "&Yes"), QStringLiteral("是(&Y)"));
    }

    void namedProjectIsOpen()
    {
        QVERIFY2(window()->windowTitle().endsWith(QStringLiteral("/a.lmv")), qPrintable(window()->windowTitle()));
    }

    void memoryOfPicturesComesFromTheArenas()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("A sanitizer has a malloc of its own");
#endif
        if (sizeof(void*) == 4)
            QSKIP("The C library refuses the setting");
        const std::size_t before = mallinfo2().hblks;
        void* const picture = std::malloc(6 << 20);
        *static_cast<volatile char*>(picture) = 1;  // so that the compiler asks for it
        QCOMPARE(mallinfo2().hblks, before);
        std::free(picture);
    }
};

}  // namespace WholeProgram
