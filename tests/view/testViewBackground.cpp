#include "drawingSupport.h"
#include "view/viewForm.h"

#include <QLabel>
#include <QPainter>
#include <QtTest>

#include <memory>

using namespace DrawingSupport;

namespace {

constexpr QRgb CanvasColour = 0xFF335577;
constexpr QRgb BackgroundColour = 0xFF000000;
constexpr QRgb ColourBefore = 0xFFFF0000;

std::unique_ptr<ViewForm> makeView(QSize size)
{
    auto view = std::make_unique<ViewForm>(0);
    view->findChild<QLabel*>(QStringLiteral("lblName"))->hide();
    view->resize(size);
    view->grab();  // from now on it has a canvas of its size
    view->requestCanvas()->fill(QColor(CanvasColour));
    view->releaseCanvas();
    return view;
}

/// A view whose background Qt fills before each paint.
class FilledView : public QWidget
{
public:
    explicit FilledView(const ViewForm& view)
    {
        setAutoFillBackground(true);
        setPalette(view.palette());
        resize(view.size());
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter(this).drawImage(0, 0, filledCanvas(width(), height(), CanvasColour));
    }
};

/// What a widget paints at a place of a picture of another colour, of as many pixels as it touches at this density.
QImage paintedOver(QWidget& widget, qreal density, QPoint place = {})
{
    const QSizeF pixels = QSizeF(widget.width() + place.x(), widget.height() + place.y()) * density;
    QImage picture(qCeil(pixels.width()), qCeil(pixels.height()), QImage::Format_RGB32);
    picture.fill(ColourBefore);
    picture.setDevicePixelRatio(density);
    widget.render(&picture, place);
    picture.setDevicePixelRatio(1);
    return picture.convertToFormat(QImage::Format_RGB888);  // small enough for Qt to do so without threads of its own
}

}  // namespace

/// What is seen of a view where its canvas is, and where it is not.
class TestViewBackground : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void canvasAloneIsPaintedWhereItCoversTheView();
    void backgroundIsBlackWhereTheCanvasDoesNotReach();
    void edgesAtAnyDensityAreAsIfQtHadFilledThem_data();
    void edgesAtAnyDensityAreAsIfQtHadFilledThem();
};

void TestViewBackground::canvasAloneIsPaintedWhereItCoversTheView()
{
    const auto view = makeView({101, 71});

    QVERIFY(view->testAttribute(Qt::WA_OpaquePaintEvent));  // Qt does not fill what is covered anyway
    QCOMPARE(difference(paintedOver(*view, 1), filledCanvas(101, 71, CanvasColour)), QString());
}

void TestViewBackground::backgroundIsBlackWhereTheCanvasDoesNotReach()
{
    const auto view = makeView({101, 71});
    *view->requestCanvas() = filledCanvas(60, 71, CanvasColour);
    view->releaseCanvas();

    QImage expected = filledCanvas(101, 71, BackgroundColour);
    QPainter(&expected).fillRect(0, 0, 60, 71, QColor(CanvasColour));
    QCOMPARE(difference(paintedOver(*view, 1), expected), QString());
}

void TestViewBackground::edgesAtAnyDensityAreAsIfQtHadFilledThem_data()
{
    QTest::addColumn<qreal>("density");
    for (const qreal density : {0.75, 1.0, 1.1, 1.25, 1.3, 1.5, 1.7, 1.75, 2.0, 2.2, 3.0})
        QTest::newRow(qPrintable(QString::number(density))) << density;
}

void TestViewBackground::edgesAtAnyDensityAreAsIfQtHadFilledThem()
{
    QFETCH(qreal, density);
    for (const QSize size : {QSize(40, 30), QSize(41, 31), QSize(42, 33), QSize(43, 37)}) {
        const auto view = makeView(size);
        FilledView filled(*view);
        const QPoint place(size.width() % 7, size.height() % 5);
        QCOMPARE(difference(paintedOver(*view, density, place), paintedOver(filled, density, place)), QString());
    }
}

QTEST_MAIN(TestViewBackground)
#include "testViewBackground.moc"
