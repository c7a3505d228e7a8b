#include "bareScreen.h"

#include <QApplication>
#include <QDialog>
#include <QScreen>
#include <QVBoxLayout>
#include <QtTest>

/// Windows on a screen that has no window manager; the platform of the tests has none.
class TestBareScreen : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void frameBufferShowsTextsAtTheirUsualSize_data();
    void frameBufferShowsTextsAtTheirUsualSize();
    void windowLargerThanTheScreenFillsIt_data();
    void windowLargerThanTheScreenFillsIt();
    void windowThatFitsKeepsItsSize();
    void keyboardGoesToTheMainWindowAtTheStart();
    void keyboardGoesBackToTheMainWindowWhenADialogCloses();
    void keyboardGoesBackToTheDialogWhenABoxOverItCloses();
    void windowThatIsOnlyLeftKeepsOutOfTheWay();
};

namespace {

QRect room()
{
    return QGuiApplication::primaryScreen()->availableGeometry();
}

/// A dialog that the window manager's absence would leave without the keyboard once another has closed.
class Modal : public QDialog
{
public:
    explicit Modal(QWidget* parent) : QDialog(parent)
    {
        setModal(true);
        show();
    }
};

}  // namespace

void TestBareScreen::cleanup()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_FONT_DPI");
}

void TestBareScreen::frameBufferShowsTextsAtTheirUsualSize_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("argument");
    QTest::addColumn<QByteArray>("wished");
    QTest::addColumn<QByteArray>("dpi");
    const QByteArray none;
    QTest::newRow("by variable") << QByteArray("linuxfb:fb=/dev/fb1") << none << none << QByteArray("96");
    QTest::newRow("by argument") << QByteArray("xcb") << QByteArray("eglfs") << none << QByteArray("96");
    QTest::newRow("argument goes before") << QByteArray("linuxfb") << QByteArray("xcb") << none << none;
    QTest::newRow("no frame buffer") << none << none << none << none;
    QTest::newRow("the user wants another") << QByteArray("linuxfb") << none << QByteArray("120") << QByteArray("120");
}

void TestBareScreen::frameBufferShowsTextsAtTheirUsualSize()
{
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, argument);
    QFETCH(QByteArray, wished);
    QFETCH(QByteArray, dpi);
    qputenv("QT_QPA_PLATFORM", variable);
    if (!wished.isEmpty())
        qputenv("QT_FONT_DPI", wished);
    const char* const arguments[] = {"lumivant", "-platform", argument.constData()};

    BareScreen::prepare(argument.isEmpty() ? 1 : 3, arguments);

    QCOMPARE(qgetenv("QT_FONT_DPI"), dpi);
}

void TestBareScreen::windowLargerThanTheScreenFillsIt_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("wider") << QSize(room().width() + 1, 100);
    QTest::newRow("higher") << QSize(100, room().height() + 1);
    QTest::newRow("both") << room().size() * 2;
}

void TestBareScreen::windowLargerThanTheScreenFillsIt()
{
    QFETCH(QSize, size);
    QWidget window;
    window.resize(size);
    BareScreen::fit(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.frameGeometry(), room());
    QVERIFY(window.isMaximized());
}

void TestBareScreen::windowThatFitsKeepsItsSize()
{
    QWidget window;
    window.resize(room().size());
    BareScreen::fit(&window);
    QCOMPARE(window.size(), room().size());
    QVERIFY(!window.isMaximized());
}

void TestBareScreen::keyboardGoesToTheMainWindowAtTheStart()
{
    QWidget window;
    const BareScreen screen(&window);
    window.setAttribute(Qt::WA_ShowWithoutActivating);
    window.show();
    QTRY_COMPARE(QApplication::activeWindow(), &window);
}

void TestBareScreen::keyboardGoesBackToTheMainWindowWhenADialogCloses()
{
    QWidget window;
    const BareScreen screen(&window);
    window.show();
    Modal dialog(&window);
    QTRY_COMPARE(QApplication::activeWindow(), &dialog);
    dialog.accept();
    QTRY_COMPARE(QApplication::activeWindow(), &window);
}

void TestBareScreen::keyboardGoesBackToTheDialogWhenABoxOverItCloses()
{
    QWidget window;
    const BareScreen screen(&window);
    window.show();
    Modal dialog(&window);
    {
        Modal box(&dialog);
        QTRY_COMPARE(QApplication::activeWindow(), &box);
    }
    QTRY_COMPARE(QApplication::activeWindow(), &dialog);
}

void TestBareScreen::windowThatIsOnlyLeftKeepsOutOfTheWay()
{
    QWidget window;
    const BareScreen screen(&window);
    window.show();
    QDialog dialog(&window);
    dialog.show();
    QTRY_COMPARE(QApplication::activeWindow(), &dialog);
    QApplication::setActiveWindow(nullptr);
    QTest::qWait(50);
    QCOMPARE(QApplication::activeWindow(), nullptr);
}

QTEST_MAIN(TestBareScreen)
#include "testBareScreen.moc"
