#include "bareScreen.h"
#include "dlgNameInput.h"
#include "frameBuffer.h"
#include "mainwindow.h"

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QScreen>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <vector>

namespace {

QString s_strDevice;  ///< The file that is the screen.

QImage screenshot()
{
    QFile device(s_strDevice);
    if (!device.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = device.readAll();
    return QImage(reinterpret_cast<const uchar*>(bytes.constData()), FrameBuffer::Width, FrameBuffer::Height,
                  QImage::Format_RGB32)
        .copy();
}

/// How many colours a part of the screen shows.
int colourNum(const QRect& part)
{
    const QImage picture = screenshot().copy(part);
    std::vector<QRgb> colours;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            colours.push_back(picture.pixel(x, y) & 0xFFFFFF);
    }
    std::sort(colours.begin(), colours.end());
    return static_cast<int>(std::unique(colours.begin(), colours.end()) - colours.begin());
}

}  // namespace

/// The window on a frame buffer, without any window manager.
class TestFrameBuffer : public QObject
{
    Q_OBJECT

private slots:
    void textsHaveTheirUsualSize();
    void mainWindowFillsTheScreen();
    void everyEdgeOfTheWindowIsDrawn();
    void dialogIsDrawnInsideTheScreenAndHasTheKeyboard();
};

void TestFrameBuffer::textsHaveTheirUsualSize()
{
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("linuxfb"));
    QCOMPARE(QGuiApplication::primaryScreen()->size(), QSize(1024, 600));
    QCOMPARE(QGuiApplication::primaryScreen()->devicePixelRatio(), 1.0);
    QCOMPARE(QGuiApplication::primaryScreen()->logicalDotsPerInch(), 96.0);
}

void TestFrameBuffer::mainWindowFillsTheScreen()
{
    MainWindow window;
    BareScreen::fit(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.geometry(), QRect(0, 0, 1024, 600));
}

void TestFrameBuffer::everyEdgeOfTheWindowIsDrawn()
{
    MainWindow window;
    BareScreen::fit(&window);
    window.show();
    QTRY_VERIFY(colourNum(QRect(0, 0, 512, 60)) > 3);                    // menus and commands
    QTRY_VERIFY(colourNum(QRect(400, 70, 300, 300)) > 1);                // views and their names
    QTRY_VERIFY(colourNum(QRect(512, 520, 512, 80)) > 3);                // the strip below the views
    QTRY_COMPARE(screenshot().pixelColor(700, 200), QColor(Qt::black));  // the middle of a view
}

void TestFrameBuffer::dialogIsDrawnInsideTheScreenAndHasTheKeyboard()
{
    MainWindow window;
    const BareScreen screen(&window);
    BareScreen::fit(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    {
        dlgNameInput dialog(&window);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(QRect(0, 0, 1024, 600).contains(dialog.geometry()));
        QTRY_COMPARE(QApplication::activeWindow(), &dialog);
        QTRY_VERIFY(colourNum(dialog.geometry()) > 3);
    }
    QTRY_COMPARE(QApplication::activeWindow(), &window);
}

int main(int argc, char* argv[])
{
    const QTemporaryDir folder;
    s_strDevice = folder.filePath(QStringLiteral("screen"));
    QFile device(s_strDevice);
    if (!device.open(QIODevice::WriteOnly) || !device.resize(FrameBuffer::Bytes))
        return 2;
    device.close();
    // The machine's own keyboards and its console are none of the test's business.
    qputenv("QT_QPA_FB_DISABLE_INPUT", "1");
    qputenv("QT_QPA_ENABLE_TERMINAL_KEYBOARD", "1");
    qputenv("QT_QPA_PLATFORM", "linuxfb:nographicsmodeswitch:fb=" + QFile::encodeName(s_strDevice));
    BareScreen::prepare(argc, argv);
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication application(argc, argv);
    TestFrameBuffer test;
    return QTest::qExec(&test, argc, argv);
}
#include "testFrameBuffer.moc"
