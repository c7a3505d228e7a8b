#include "dialogLooks.h"
#include "globalFunction.h"
#include "view/viewForm.h"
#include "windowFixture.h"

#include <QScopeGuard>
#include <QToolBar>
#include <QToolButton>

namespace {

constexpr double Density = 2.0;  // QT_SCALE_FACTOR of this test.
const QSize SmallScreen(1024, 600);

/// Shows a colour on all of a view's canvas, but another on the pixel in its last corner.
void fillCanvas(ViewForm& view, QRgb colour, QRgb corner)
{
    QImage* const canvas = view.requestCanvas();
    canvas->fill(colour);
    canvas->setPixel(canvas->width() - 1, canvas->height() - 1, corner);
    view.releaseCanvas();
}

}  // namespace

/// The windows on a screen with two pixels where others have one; all sizes are in the other screen's pixels.
class TestDenseScreen : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { ArithmParamMgr::deleteInstance(m_pcStore); }
    void windowFitsASmallScreenWithNothingClipped();
    void iconsOfTheToolBarHaveAllPixels();
    void dialogsFitASmallScreenWithNothingClipped_data();
    void dialogsFitASmallScreenWithNothingClipped();
    void dialogsAreNotClippedAsTheyOpen_data();
    void dialogsAreNotClippedAsTheyOpen();
    void canvasHasThePixelsOfAnUndenseScreen();
    void canvasCoversTheWholeViewWithLargerPixels();
    void rectangleIsMeasuredInPixelsOfTheCanvas();

private:
    ArithmParamMgr* m_pcStore = nullptr;
};

void TestDenseScreen::initTestCase()
{
    QCOMPARE(qgetenv("QT_SCALE_FACTOR"), QByteArray("2"));
    QCOMPARE(qApp->devicePixelRatio(), Density);
    m_pcStore = ArithmParamMgr::newInstance();
    DialogLooks::fillStore(m_pcStore);
}

void TestDenseScreen::windowFitsASmallScreenWithNothingClipped()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("零件计数")));
    fixture.m_pcWindow->resize(SmallScreen);
    QTRY_COMPARE(fixture.m_pcWindow->size(), SmallScreen);
    QCoreApplication::processEvents();
    QCOMPARE(fixture.m_pcWindow->devicePixelRatioF(), Density);
    QCOMPARE(fixture.m_pcWindow->grab().size(), SmallScreen * 2);
    QVERIFY(DialogLooks::speakers(*fixture.m_pcWindow).size() >= 7 + 4 + 7 + 4);  // tool bar, tab, strip, views
    QCOMPARE(DialogLooks::clipped(*fixture.m_pcWindow).join(' '), QString());
}

void TestDenseScreen::iconsOfTheToolBarHaveAllPixels()
{
    const WindowFixture fixture;
    const auto* const bar = fixture.child<QToolBar>("toolBar");
    int seen = 0;
    for (const QAction* const action : bar->actions()) {
        if (action->isSeparator())
            continue;
        ++seen;
        const QPixmap icon = action->icon().pixmap(fixture.m_pcWindow->windowHandle(), bar->iconSize());
        QVERIFY2(icon.size() == bar->iconSize() * 2, qPrintable(action->objectName()));
    }
    QCOMPARE(seen, 7);
}

void TestDenseScreen::dialogsFitASmallScreenWithNothingClipped_data()
{
    QTest::addColumn<int>("unused");
    for (const QString& name : DialogLooks::Names)
        QTest::newRow(qPrintable(name)) << 0;
}

void TestDenseScreen::dialogsFitASmallScreenWithNothingClipped()
{
    const std::unique_ptr<QDialog> dialog = DialogLooks::make(QLatin1String(QTest::currentDataTag()), m_pcStore);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    QCOMPARE(dialog->devicePixelRatioF(), Density);
    for (int page = 0; page < DialogLooks::pageNum(*dialog); ++page) {
        DialogLooks::openPage(*dialog, page);
        dialog->resize(dialog->minimumSizeHint());
        QCoreApplication::processEvents();
        QVERIFY(!DialogLooks::speakers(*dialog).isEmpty());
        QCOMPARE(DialogLooks::clipped(*dialog).join(' '), QString());
        QCOMPARE(dialog->size().boundedTo(SmallScreen), dialog->size());
        QCOMPARE(dialog->grab().size(), dialog->size() * 2);
    }
}

void TestDenseScreen::dialogsAreNotClippedAsTheyOpen_data()
{
    dialogsFitASmallScreenWithNothingClipped_data();
}

void TestDenseScreen::dialogsAreNotClippedAsTheyOpen()
{
    const std::unique_ptr<QDialog> dialog = DialogLooks::make(QLatin1String(QTest::currentDataTag()), m_pcStore);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    for (int page = 0; page < DialogLooks::pageNum(*dialog); ++page) {
        DialogLooks::openPage(*dialog, page);
        QCOMPARE(DialogLooks::clipped(*dialog).join(' '), QString());
        QCOMPARE(dialog->size().boundedTo(SmallScreen), dialog->size());
    }
}

void TestDenseScreen::canvasHasThePixelsOfAnUndenseScreen()
{
    ViewForm view(0);
    view.resize(301, 201);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCOMPARE(view.devicePixelRatioF(), Density);

    const QImage canvas = *view.requestCanvas();
    view.releaseCanvas();

    QCOMPARE(canvas.size(), QSize(301, 201));
    QCOMPARE(canvas.devicePixelRatioF(), 1.0);
    QCOMPARE(canvas.format(), QImage::Format_RGB888);
    const ViewRecord record(0);
    QCOMPARE(record->m_nCanvasWidth, 301);
    QCOMPARE(record->m_nCanvasHeight, 201);
}

void TestDenseScreen::canvasCoversTheWholeViewWithLargerPixels()
{
    ViewForm view(0);
    view.resize(301, 201);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    fillCanvas(view, qRgb(0, 200, 0), qRgb(0, 0, 200));

    const QImage shown = view.grab().toImage();

    QCOMPARE(shown.size(), QSize(602, 402));
    QCOMPARE(shown.pixelColor(599, 401), QColor(0, 200, 0));
    for (const QPoint pixel : {QPoint(600, 400), QPoint(601, 400), QPoint(600, 401), QPoint(601, 401)})
        QCOMPARE(shown.pixelColor(pixel), QColor(0, 0, 200));
}

void TestDenseScreen::rectangleIsMeasuredInPixelsOfTheCanvas()
{
    ViewForm view(0);
    view.resize(301, 201);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTest::mousePress(&view, Qt::LeftButton, Qt::NoModifier, QPoint(200, 100));
    QMouseEvent move(QEvent::MouseMove, QPoint(250, 150), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &move);
    QTest::mouseRelease(&view, Qt::LeftButton, Qt::NoModifier, QPoint(250, 150));

    const QImage shown = view.grab().toImage();

    QCOMPARE(shown.pixelColor(400, 250), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(450, 200), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(450, 250), QColor(Qt::black));
}

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);  // as the program does
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    TestDenseScreen test;
    return QTest::qExec(&test, argc, argv);
}

#include "testDenseScreen.moc"
