#include "view/viewForm.h"

#include "drawing/drawingOpt.h"
#include "drawingSupport.h"
#include "globalFunction.h"
#include "threadGuards.h"

#include <QLabel>
#include <QPainter>
#include <QSet>
#include <QtTest>

#include <atomic>
#include <cstring>
#include <limits>
#include <memory>
#include <thread>

using namespace DrawingSupport;

namespace {

constexpr int View = 1;

void execute(const QByteArray& text, ArithmParamMgr* store)
{
    QByteArray copy = "<View>" + QByteArray::number(View) + "</View>" + text;
    QCOMPARE(Drawing::execute(copy.data(), store), "");
}

int waiting()
{
    const ViewRecord record(View);
    if (!record)
        return -1;
    const ThreadGuards::MutexGuard guard(record->m_cMutex);
    return record->m_nCount;
}

void emptyQueue()
{
    const ViewRecord record(View);
    if (!record)
        return;
    const ThreadGuards::MutexGuard guard(record->m_cMutex);
    while (record->takeOldest()) {
    }
}

QImage canvasOf(ViewForm& view)
{
    const QImage copy = view.requestCanvas()->copy();
    view.releaseCanvas();
    return copy;
}

void paintCanvas(ViewForm& view, QRgb color)
{
    view.requestCanvas()->fill(QColor(color));
    view.releaseCanvas();
}

/// What the view shows, without its label.
QImage shown(ViewForm& view)
{
    view.findChild<QLabel*>(QStringLiteral("lblName"))->hide();
    return view.grab().toImage().convertToFormat(QImage::Format_RGB888);
}

/// A point of the store at x, y, drawn as a single white pixel.
void queuePoint(ArithmParamMgr* store, int id, int x, int y)
{
    store->getParamPoints(id)->replaceAll({{x, y}});
    execute("<DataType>3</DataType><DataID>" + QByteArray::number(id) + "</DataID><Config><Color>-1</Color></Config>",
            store);
}

/// Sees every timer of the program fire, and keeps those of the views from doing so when asked to.
class TimerWatch : public QObject
{
public:
    explicit TimerWatch(bool stopViews) : m_bStopViews(stopViews) { qApp->installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* timer = event->type() == QEvent::Timer ? qobject_cast<QTimer*>(object) : nullptr;
        if (timer)
            m_setPeriods.insert(timer->interval());
        return timer && m_bStopViews && timer->interval() == 300;
    }

    QSet<int> m_setPeriods;  ///< Milliseconds.

private:
    bool m_bStopViews;
};

/// As the window system reports it; QTest::mouseMove only moves the cursor.
void moveMouse(ViewForm& view, QPoint to, Qt::MouseButtons buttons)
{
    QMouseEvent event(QEvent::MouseMove, to, Qt::NoButton, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &event);
}

void drag(ViewForm& view, QPoint from, QPoint to)
{
    QTest::mousePress(&view, Qt::LeftButton, Qt::NoModifier, from);
    moveMouse(view, to, Qt::LeftButton);
    QTest::mouseRelease(&view, Qt::LeftButton, Qt::NoModifier, to);
}

/// The rectangle and its two lines of text, drawn by hand.
void drawMeasure(QImage& picture, QPoint start, QPoint end, const char* place, const char* size)
{
    QPixmap pixmap(picture.size());  // what a widget is grabbed into
    QPainter painter(&pixmap);
    painter.drawImage(0, 0, picture);
    QFont font;
    // 12 points of the screen; Qt Test makes a resolution of its own for everything but widgets.
    font.setPointSizeF(12.0 * QWidget().logicalDpiY() / pixmap.logicalDpiY());
    painter.setFont(font);
    painter.setPen(QColor(255, 0, 0));
    painter.drawLine(start.x(), start.y(), end.x(), start.y());
    painter.drawLine(start.x(), end.y(), end.x(), end.y());
    painter.drawLine(start.x(), start.y(), start.x(), end.y());
    painter.drawLine(end.x(), start.y(), end.x(), end.y());
    painter.drawText(50, 20, QString::fromLatin1(place));
    painter.drawText(50, 40, QString::fromLatin1(size));
    painter.end();
    picture = pixmap.toImage();
}

}  // namespace

/// A real view pane: its form, its queue, its canvas, its measuring rectangle.
class TestViewForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void formIsBlackAndNamesItsView_data();
    void formIsBlackAndNamesItsView();
    void canvasStartsEmpty();
    void sizeIsReportedToTheRegistry();
    void growingKeepsThePictureTopLeftOnBlack();
    void shrinkingCutsThePicture();
    void zeroSizeNeitherCrashesNorWarns();
    void timerDrainsTheQueue();
    void timeoutWithoutOptionsPaintsNothing();
    void oneOptionIsDrawnEachPaint();
    void refreshTimerHasAPeriodOf300Milliseconds();
    void eachPaintThatDrewCallsTheNextWithoutTheTimer();
    void hiddenViewDrawsNothing();
    void viewWithoutARecordPaints();
    void pictureAndShapesOfATaskAreShown();
    void canvasIsPaintedAtTheOrigin();
    void draggedRectangleShowsPictureCoordinatesAndSize();
    void noRectangleShowsAtFirst();
    void rectangleOfOnePixelShows();
    void rectangleDraggedUpOrLeftDoesNotShow();
    void rectangleStaysAfterReleaseAndStopsFollowing();
    void rightPressHidesTheRectangleAndStartsNone();
    void pressUpAndLeftOfTheOldStartShowsARectangleToItUntilTheMouseMoves();
    void placesOfTheMouseAreRounded();
    void doubleClickIsIgnored();
    void measureSaturatesWithExtremeEntries();
    void deletedViewLeavesTheArray();
    void otherThreadsReadTheCanvasWhileItIsDrawnAndResized();

private:
    void showView()
    {
        m_pcView->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_pcView.get()));
    }

    Store m_cStore;
    std::unique_ptr<ViewForm> m_pcView;
};

void TestViewForm::init()
{
    resetViewScales();
    m_cStore = makeStore();
    m_pcView = std::make_unique<ViewForm>(View);
    m_pcView->resize(200, 150);
}

void TestViewForm::cleanup()
{
    m_pcView.reset();
    emptyQueue();
    GlobalFunction::getInstance()->removeView(View);
}

void TestViewForm::formIsBlackAndNamesItsView_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << QString::fromUtf8("视窗1");
    QTest::newRow("3") << 3 << QString::fromUtf8("视窗4");
}

void TestViewForm::formIsBlackAndNamesItsView()
{
    QFETCH(int, index);
    QFETCH(QString, text);

    const ViewForm view(index);

    QCOMPARE(view.objectName(), QStringLiteral("ViewForm"));
    QCOMPARE(view.windowTitle(), QStringLiteral("Form"));
    QCOMPARE(view.font().pointSize(), 12);
    QVERIFY(view.autoFillBackground());
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        QCOMPARE(view.palette().brush(group, QPalette::Window), QBrush(Qt::black, Qt::SolidPattern));
    QCOMPARE(view.findChild<QLabel*>(QStringLiteral("lblName"))->text(), text);
}

void TestViewForm::canvasStartsEmpty()
{
    ViewForm view(0);

    const QImage* canvas = view.requestCanvas();
    QCOMPARE(canvas->size(), QSize(0, 0));
    view.releaseCanvas();
}

void TestViewForm::sizeIsReportedToTheRegistry()
{
    showView();

    QCOMPARE(canvasOf(*m_pcView).size(), QSize(200, 150));
    QCOMPARE(canvasOf(*m_pcView).format(), QImage::Format_RGB888);
    QCOMPARE(difference(canvasOf(*m_pcView), filledCanvas(200, 150, 0xFF000000)), QString());
    const ViewRecord record(View);
    QVERIFY(record);
    QCOMPARE(record->m_nCanvasWidth, 200);
    QCOMPARE(record->m_nCanvasHeight, 150);
}

void TestViewForm::growingKeepsThePictureTopLeftOnBlack()
{
    showView();
    paintCanvas(*m_pcView, 0xFF335577);

    m_pcView->resize(211, 163);

    QImage expected = filledCanvas(211, 163, 0xFF000000);
    QPainter(&expected).fillRect(0, 0, 200, 150, QColor(0xFF335577));
    QCOMPARE(difference(canvasOf(*m_pcView), expected), QString());
}

void TestViewForm::shrinkingCutsThePicture()
{
    showView();
    paintCanvas(*m_pcView, 0xFF335577);

    m_pcView->resize(101, 53);

    QCOMPARE(difference(canvasOf(*m_pcView), filledCanvas(101, 53, 0xFF335577)), QString());
}

void TestViewForm::zeroSizeNeitherCrashesNorWarns()
{
    const WarningCounter warnings;
    showView();
    queuePoint(m_cStore.get(), 1, 5, 5);

    for (const QSize size : {QSize(0, 0), QSize(30, 0), QSize(0, 30)}) {
        m_pcView->resize(size);
        m_pcView->repaint();
        m_pcView->timeout();
        m_pcView->grab();
    }
    QCOMPARE(warnings.count(), 0);

    m_pcView->resize(30, 20);
    QCOMPARE(canvasOf(*m_pcView).size(), QSize(30, 20));
}

void TestViewForm::timerDrainsTheQueue()
{
    showView();
    const QVector<QPoint> places{{5, 6}, {50, 60}, {199, 149}};
    for (int i = 0; i < places.size(); ++i)
        queuePoint(m_cStore.get(), i + 1, places.at(i).x(), places.at(i).y());

    QTRY_COMPARE_WITH_TIMEOUT(waiting(), 0, 20000);
    QTRY_COMPARE_WITH_TIMEOUT(canvasOf(*m_pcView).pixel(places.last()), 0xFFFFFFFFU, 20000);

    QImage expected = filledCanvas(200, 150, 0xFF000000);
    for (const QPoint place : places)
        expected.setPixel(place, 0xFFFFFFFF);
    QCOMPARE(difference(canvasOf(*m_pcView), expected), QString());
}

void TestViewForm::timeoutWithoutOptionsPaintsNothing()
{
    class PaintCounter : public QObject
    {
    public:
        bool eventFilter(QObject* /*object*/, QEvent* event) override
        {
            m_nPaints += event->type() == QEvent::Paint || event->type() == QEvent::UpdateRequest;
            return false;
        }
        int m_nPaints = 0;
    };
    showView();
    QTest::qWait(50);
    PaintCounter counter;
    m_pcView->installEventFilter(&counter);

    m_pcView->timeout();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(counter.m_nPaints, 0);

    queuePoint(m_cStore.get(), 1, 5, 5);
    m_pcView->timeout();
    QTRY_VERIFY_WITH_TIMEOUT(counter.m_nPaints > 0, 20000);
}

void TestViewForm::oneOptionIsDrawnEachPaint()
{
    showView();
    for (int id = 1; id <= 3; ++id)
        queuePoint(m_cStore.get(), id, id, 0);

    for (int left = 2; left >= 0; --left) {
        m_pcView->repaint();
        QCOMPARE(waiting(), left);
    }
    m_pcView->repaint();
    QCOMPARE(waiting(), 0);
}

void TestViewForm::refreshTimerHasAPeriodOf300Milliseconds()
{
    const TimerWatch watch(false);

    // The turns of views that paint are timers of 0 ms.
    QTRY_COMPARE_WITH_TIMEOUT(watch.m_setPeriods - QSet<int>{0}, QSet<int>{300}, 20000);
}

void TestViewForm::eachPaintThatDrewCallsTheNextWithoutTheTimer()
{
    const TimerWatch watch(true);
    showView();
    for (int id = 1; id <= 5; ++id)
        queuePoint(m_cStore.get(), id, id, 0);

    m_pcView->update();

    QTRY_COMPARE_WITH_TIMEOUT(waiting(), 0, 20000);
}

void TestViewForm::hiddenViewDrawsNothing()
{
    queuePoint(m_cStore.get(), 1, 5, 5);  // no such view before its first size
    showView();
    m_pcView->hide();
    for (int i = 0; i < 11; ++i)
        queuePoint(m_cStore.get(), 1, 5, 5);

    m_pcView->timeout();
    QTest::qWait(50);  // some turns of the event loop

    QCOMPARE(waiting(), 10);
    GlobalFunction::getInstance()->dropOptionsOf(m_cStore.get());
    m_cStore.reset();
    m_pcView->show();
    m_pcView->repaint();
    QCOMPARE(difference(canvasOf(*m_pcView), filledCanvas(200, 150, 0xFF000000)), QString());
}

void TestViewForm::viewWithoutARecordPaints()
{
    showView();
    GlobalFunction::getInstance()->removeView(View);
    paintCanvas(*m_pcView, 0xFF112233);

    m_pcView->timeout();

    QCOMPARE(difference(shown(*m_pcView), filledCanvas(200, 150, 0xFF112233)), QString());
}

void TestViewForm::pictureAndShapesOfATaskAreShown()
{
    showView();
    ParamDIB* picture = m_cStore->getParamDIB(1);
    picture->resize(400, 300);
    for (int i = 0; i < 400 * 300; ++i)
        std::memcpy(picture->getDIB() + i * 3, "\x10\x20\x30", 3);  // blue, green, red
    m_cStore->getParamLines(2)->append({20, 40, 60, 40});
    std::thread([this] {
        execute("<DataType>0</DataType><DataID>1</DataID><Config><Scale>1</Scale></Config>", m_cStore.get());
        execute("<DataType>4</DataType><DataID>2</DataID><Config><Color>-65536</Color></Config>", m_cStore.get());
    }).join();

    m_pcView->repaint();
    m_pcView->repaint();

    QImage expected = filledCanvas(200, 150, 0xFF302010);
    QPainter(&expected).fillRect(10, 20, 21, 1, QColor(255, 0, 0));
    QCOMPARE(difference(canvasOf(*m_pcView), expected), QString());
    QCOMPARE(difference(shown(*m_pcView), expected), QString());
}

void TestViewForm::canvasIsPaintedAtTheOrigin()
{
    showView();
    m_pcView->requestCanvas()->setPixel(0, 0, 0xFFABCDEF);
    m_pcView->releaseCanvas();
    m_pcView->requestCanvas()->setPixel(199, 149, 0xFF123456);
    m_pcView->releaseCanvas();

    QCOMPARE(difference(shown(*m_pcView), canvasOf(*m_pcView)), QString());
    QCOMPARE(shown(*m_pcView).pixel(0, 0), 0xFFABCDEFU);
}

void TestViewForm::draggedRectangleShowsPictureCoordinatesAndSize()
{
    showView();
    paintCanvas(*m_pcView, 0xFF204060);
    Drawing::s_acVSO[View] = {2.0F, 2.0F, 5, 7};

    drag(*m_pcView, {10, 10}, {19, 29});

    QImage expected = filledCanvas(200, 150, 0xFF204060);
    drawMeasure(expected, {10, 10}, {19, 29}, "x=25, y=27", "w=20, h=40");
    QCOMPARE(difference(shown(*m_pcView), expected), QString());
    QCOMPARE(difference(canvasOf(*m_pcView), filledCanvas(200, 150, 0xFF204060)), QString());

    Drawing::s_acVSO[View] = {0.3F, 1.5F, -20, 0};  // -17, 15; 3, 30
    expected = filledCanvas(200, 150, 0xFF204060);
    drawMeasure(expected, {10, 10}, {19, 29}, "x=-17, y=15", "w=3, h=30");
    QCOMPARE(difference(shown(*m_pcView), expected), QString());
}

void TestViewForm::noRectangleShowsAtFirst()
{
    showView();
    paintCanvas(*m_pcView, 0xFF204060);

    moveMouse(*m_pcView, {50, 50}, Qt::NoButton);

    QCOMPARE(difference(shown(*m_pcView), filledCanvas(200, 150, 0xFF204060)), QString());
}

void TestViewForm::rectangleOfOnePixelShows()
{
    showView();

    drag(*m_pcView, {30, 100}, {30, 100});

    QImage expected = filledCanvas(200, 150, 0xFF000000);
    drawMeasure(expected, {30, 100}, {30, 100}, "x=30, y=100", "w=1, h=1");
    QCOMPARE(difference(shown(*m_pcView), expected), QString());
}

void TestViewForm::rectangleDraggedUpOrLeftDoesNotShow()
{
    showView();
    paintCanvas(*m_pcView, 0xFF204060);
    for (const QPoint end : {QPoint(40, 90), QPoint(90, 40)}) {
        drag(*m_pcView, {50, 50}, end);
        QCOMPARE(difference(shown(*m_pcView), filledCanvas(200, 150, 0xFF204060)), QString());
    }
}

void TestViewForm::rectangleStaysAfterReleaseAndStopsFollowing()
{
    showView();
    drag(*m_pcView, {60, 60}, {90, 80});
    const QImage before = shown(*m_pcView);

    moveMouse(*m_pcView, {150, 140}, Qt::NoButton);

    QCOMPARE(difference(shown(*m_pcView), before), QString());
    QVERIFY(!difference(before, filledCanvas(200, 150, 0xFF000000)).isEmpty());
}

void TestViewForm::rightPressHidesTheRectangleAndStartsNone()
{
    showView();
    drag(*m_pcView, {60, 60}, {90, 80});

    QTest::mousePress(m_pcView.get(), Qt::RightButton, Qt::NoModifier, {70, 70});
    QCOMPARE(difference(shown(*m_pcView), filledCanvas(200, 150, 0xFF000000)), QString());

    moveMouse(*m_pcView, {120, 120}, Qt::RightButton);
    QTest::mouseRelease(m_pcView.get(), Qt::RightButton, Qt::NoModifier, {120, 120});
    QCOMPARE(difference(shown(*m_pcView), filledCanvas(200, 150, 0xFF000000)), QString());
}

void TestViewForm::pressUpAndLeftOfTheOldStartShowsARectangleToItUntilTheMouseMoves()
{
    showView();
    drag(*m_pcView, {60, 70}, {90, 80});

    QTest::mousePress(m_pcView.get(), Qt::LeftButton, Qt::NoModifier, {20, 60});

    QImage expected = filledCanvas(200, 150, 0xFF000000);
    drawMeasure(expected, {20, 60}, {59, 69}, "x=20, y=60", "w=40, h=10");
    QCOMPARE(difference(shown(*m_pcView), expected), QString());
    QTest::mouseRelease(m_pcView.get(), Qt::LeftButton, Qt::NoModifier, {20, 60});
}

void TestViewForm::placesOfTheMouseAreRounded()
{
    showView();
    const auto send = [this](QEvent::Type type, QPointF place, Qt::MouseButton button) {
        QMouseEvent event(type, place, button, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_pcView.get(), &event);
    };

    send(QEvent::MouseButtonPress, {9.6, 60.4}, Qt::LeftButton);
    send(QEvent::MouseMove, {19.4, 78.5}, Qt::NoButton);

    QImage expected = filledCanvas(200, 150, 0xFF000000);
    drawMeasure(expected, {10, 60}, {19, 79}, "x=10, y=60", "w=10, h=20");
    QCOMPARE(difference(shown(*m_pcView), expected), QString());
    send(QEvent::MouseButtonRelease, {19.4, 78.5}, Qt::LeftButton);
}

void TestViewForm::doubleClickIsIgnored()
{
    showView();
    drag(*m_pcView, {60, 60}, {90, 80});
    const QImage before = shown(*m_pcView);

    QMouseEvent event(QEvent::MouseButtonDblClick, QPointF(5, 5), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_pcView.get(), &event);
    moveMouse(*m_pcView, {150, 140}, Qt::NoButton);

    QCOMPARE(difference(shown(*m_pcView), before), QString());
}

void TestViewForm::measureSaturatesWithExtremeEntries()
{
    constexpr int largest = std::numeric_limits<int>::max();
    showView();
    drag(*m_pcView, {10, 60}, {19, 79});

    Drawing::s_acVSO[View] = {1e30F, 0.0F, largest, -largest - 1};
    QImage expected = filledCanvas(200, 150, 0xFF000000);
    drawMeasure(expected, {10, 60}, {19, 79}, "x=2147483647, y=-2147483648", "w=2147483647, h=0");
    QCOMPARE(difference(shown(*m_pcView), expected), QString());
}

void TestViewForm::deletedViewLeavesTheArray()
{
    auto first = std::make_unique<ViewForm>(0);
    const ViewForm second(2);
    ViewForm::s_apcViewForms = {first.get(), nullptr, const_cast<ViewForm*>(&second), nullptr};

    first.reset();

    QVERIFY(!ViewForm::s_apcViewForms[0]);
    QCOMPARE(static_cast<const ViewForm*>(ViewForm::s_apcViewForms[2]), &second);
    ViewForm::s_apcViewForms = {};
}

void TestViewForm::otherThreadsReadTheCanvasWhileItIsDrawnAndResized()
{
    showView();
    std::atomic<bool> stop{false};
    std::atomic<int> reads{0};
    std::atomic<int> mixed{0};
    std::thread reader([&] {
        while (!stop) {
            const QImage* canvas = m_pcView->requestCanvas();
            const unsigned char first = canvas->constBits()[0];
            for (int x = 0; x < 20; ++x)
                mixed += canvas->constBits()[x * 3] != first;
            m_pcView->releaseCanvas();
            ++reads;
            std::this_thread::yield();
        }
    });
    ParamGray8* grey = m_cStore->getParamGray8(1);
    grey->resize(300, 300);
    for (int i = 0; i < 100 || reads < 100; ++i) {
        std::memset(grey->getGray8(), i % 256, 300 * 300);
        execute("<DataType>1</DataType><DataID>1</DataID>", m_cStore.get());
        m_pcView->repaint();
        m_pcView->resize(100 + i % 7, 90);
    }
    stop = true;
    reader.join();

    QCOMPARE(mixed.load(), 0);
}

QTEST_MAIN(TestViewForm)
#include "testViewForm.moc"
