#include "bareScreen.h"

#include <QApplication>
#include <QDialog>
#include <QScreen>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

/// Windows on a screen that has no window manager; the platform of the tests has none.
class TestBareScreen : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void frameBufferShowsTextsAtTheirUsualSize_data();
    void frameBufferShowsTextsAtTheirUsualSize();
    void platformArgumentWithoutAValueIsLeftOut();
    void windowLargerThanTheScreenFillsIt_data();
    void windowLargerThanTheScreenFillsIt();
    void windowThatFitsKeepsItsSize();
    void keyboardGoesToTheMainWindowAtTheStart();
    void keyboardGoesBackToTheMainWindowWhenADialogCloses();
    void keyboardGoesBackToTheDialogWhenABoxOverItCloses();
    void windowThatIsOnlyLeftKeepsOutOfTheWay();
    void onlyTheMainWindowAsksForTheKeyboardAndOnlyWhenTheProgramShowsIt();
    void windowThatIsHiddenDoesNotGetTheKeyboard();
    void mainWindowMayGoFirst();
    void windowsAndTheirChildrenGetTheirEvents();
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

/// Counts what it is told of.
class Told : public QWidget
{
public:
    using QWidget::QWidget;
    bool event(QEvent* event) override
    {
        m_nShown += event->type() == QEvent::Show;
        m_nLeft += event->type() == QEvent::WindowDeactivate;
        return QWidget::event(event);
    }
    int m_nShown = 0;
    int m_nLeft = 0;
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

void TestBareScreen::platformArgumentWithoutAValueIsLeftOut()
{
    qputenv("QT_QPA_PLATFORM", "linuxfb");
    const char* const arguments[] = {"lumivant", "-platform", nullptr};

    BareScreen::prepare(2, arguments);

    QCOMPARE(qgetenv("QT_FONT_DPI"), QByteArray("96"));
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

void TestBareScreen::onlyTheMainWindowAsksForTheKeyboardAndOnlyWhenTheProgramShowsIt()
{
    QWidget window;
    QWidget other;
    const BareScreen screen(&window);
    window.show();
    other.show();
    QTRY_COMPARE(QApplication::activeWindow(), &other);
    QApplication::setActiveWindow(nullptr);
    // This platform activates each window that is shown; so the events come without one.
    QShowEvent shown;
    QCoreApplication::sendEvent(&other, &shown);
    QShowEvent shownBySystem;
    QSpontaneKeyEvent::setSpontaneous(&shownBySystem);
    QApplication::instance()->notify(&window, &shownBySystem);
    QTest::qWait(50);
    QCOMPARE(QApplication::activeWindow(), nullptr);

    QCoreApplication::sendEvent(&window, &shown);
    QTRY_COMPARE(QApplication::activeWindow(), &window);
}

void TestBareScreen::windowThatIsHiddenDoesNotGetTheKeyboard()
{
    QWidget window;
    const BareScreen screen(&window);
    window.show();
    QDialog dialog;
    dialog.show();
    QTRY_COMPARE(QApplication::activeWindow(), &dialog);
    window.hide();
    dialog.hide();
    QApplication::setActiveWindow(nullptr);
    QTest::qWait(50);
    QCOMPARE(QApplication::activeWindow(), nullptr);
}

void TestBareScreen::mainWindowMayGoFirst()
{
    auto window = std::make_unique<QWidget>();
    const BareScreen screen(window.get());
    window.reset();
    QWidget other;
    other.show();
    QTRY_COMPARE(QApplication::activeWindow(), &other);
    other.hide();
    QApplication::setActiveWindow(nullptr);
    QTest::qWait(50);
    QCOMPARE(QApplication::activeWindow(), nullptr);
}

void TestBareScreen::windowsAndTheirChildrenGetTheirEvents()
{
    Told window;
    Told child(&window);
    const BareScreen screen(&window);
    window.show();
    QTRY_COMPARE(QApplication::activeWindow(), &window);
    QCOMPARE(window.m_nShown, 1);
    QCOMPARE(child.m_nShown, 1);
    QApplication::setActiveWindow(nullptr);
    QCOMPARE(window.m_nLeft, 1);
    QCOMPARE(child.m_nLeft, 1);
}

QTEST_MAIN(TestBareScreen)
#include "testBareScreen.moc"
