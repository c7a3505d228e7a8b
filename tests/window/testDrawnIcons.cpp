#include "forms/drawnIcons.h"
#include "startUp.h"
#include "windowFixture.h"

#include <QApplication>
#include <QPainter>
#include <QScopeGuard>
#include <QStyleFactory>
#include <QStyleOption>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>

/// The window's icons: drawn by code, sharp at every size, and there without a picture format of Qt's.
class TestDrawnIcons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void windowShowsWithoutLoadingPictureFormats();
    void programsIconLooksAsTheInstalledOne_data();
    void programsIconLooksAsTheInstalledOne();
    void iconHasShapesAndColoursOfTheFileItWasDesignedIn_data();
    void iconHasShapesAndColoursOfTheFileItWasDesignedIn();
    void doubleArrowHasTheShapeOfTheFileItWasDesignedIn();
    void iconIsDrawnAtItsSizeWithNothingCutOff_data();
    void iconIsDrawnAtItsSizeWithNothingCutOff();
    void noTwoIconsLookAlike();
    void iconOfWhatCannotBeDoneIsFaded();
    void iconInAWideRectangleKeepsItsShapeInTheMiddle();
    void iconIsPaintedWithAllPixelsOfADenseScreen();
    void copyOfAnIconDrawsTheSame();
    void barThatIsTooNarrowShowsADrawnDoubleArrow();
    void doubleArrowPointsToWhereTheTextsGo();
    void noSizeGivesNoPictureAndNoWarning();
    void allOtherPicturesOfTheStyleAreAsBefore();
};

namespace {

const QVector<QIcon (*)()> Icons{DrawnIcons::workbench,   DrawnIcons::newProject,    DrawnIcons::openProject,
                                 DrawnIcons::saveProject, DrawnIcons::saveProjectAs, DrawnIcons::addTask,
                                 DrawnIcons::deleteTask,  DrawnIcons::memoryDisks};

/// Colours multiplied by their opacity, as pixmaps are kept: nothing is converted, which Qt would do in other threads.
QImage imageOf(const QIcon& icon, int side, QIcon::Mode mode = QIcon::Normal)
{
    return icon.pixmap(QSize(side, side), mode).toImage();
}

/// The sum of all differences of a channel, for each pixel.
double difference(const QImage& one, const QImage& other)
{
    double sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QColor a = one.pixelColor(x, y);
            const QColor b = other.pixelColor(x, y);
            sum += std::abs(a.alpha() - b.alpha());
            if (a.alpha() > 0 && b.alpha() > 0)
                sum += std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue());
        }
    }
    return sum / one.width() / one.height();
}

constexpr int MostAtEdges = 32;  // Of 255: curves are laid out as other pieces in a file.

constexpr int PixelBytes = 4;
constexpr int AlphaByte = 3;  // of a pixel

/// The largest difference of the bytes of pixels from one byte on.
int largestDifference(const QImage& one, const QImage& other, int firstByte = 0)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int i = 0; i < one.width() * PixelBytes; ++i) {
            if (i % PixelBytes >= firstByte)
                largest = std::max(largest, std::abs(one.constScanLine(y)[i] - other.constScanLine(y)[i]));
        }
    }
    return largest;
}

/// The rectangle of all that is not transparent.
QRect inked(const QImage& image)
{
    QRect found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 0)
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

/// The colours of areas: opaque ones that more than a few pixels have.
QSet<QRgb> areaColours(const QImage& image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    QSet<QRgb> found;
    for (auto it = counts.begin(); it != counts.end(); ++it) {
        if (qAlpha(it.key()) == 255 && it.value() > image.width() / 4)
            found.insert(it.key());
    }
    return found;
}

/// Libraries of Qt's that read picture files or draw icons from them, as far as this process has loaded them.
QByteArrayList formatsLoaded()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    QByteArrayList found;
    if (!maps.open(QIODevice::ReadOnly))
        return {"nothing known"};
    for (const QByteArray& line : maps.readAll().split('\n')) {
        if (line.contains("/imageformats/") || line.contains("/iconengines/"))
            found.append(line.mid(line.indexOf('/')));
    }
    return found;
}

}  // namespace

// First of all: later tests load them. The window's start-up is a sixth longer with them.
void TestDrawnIcons::windowShowsWithoutLoadingPictureFormats()
{
    StartUp::dress();
    const WindowFixture fixture;
    fixture.m_pcWindow->grab();
    QCOMPARE(formatsLoaded(), QByteArrayList());
    QVERIFY(!QIcon(QStringLiteral(":/lumivant.svg")).pixmap(16, 16).isNull());
    QVERIFY(!formatsLoaded().isEmpty());  // What is looked for would have been seen.
}

void TestDrawnIcons::programsIconLooksAsTheInstalledOne_data()
{
    QTest::addColumn<int>("side");
    for (const int side : {16, 24, 48, 64, 256})
        QTest::addRow("%d", side) << side;
}

void TestDrawnIcons::programsIconLooksAsTheInstalledOne()
{
    QFETCH(int, side);
    const QImage drawn = imageOf(DrawnIcons::workbench(), side);
    const QImage installed = imageOf(QIcon(QStringLiteral(":/lumivant.svg")), side);
    QCOMPARE(drawn.size(), QSize(side, side));
    QCOMPARE(installed.size(), QSize(side, side));
    QVERIFY2(difference(drawn, installed) < 1, qPrintable(QString::number(difference(drawn, installed))));
    QVERIFY(difference(drawn, imageOf(DrawnIcons::memoryDisks(), side)) > 50);  // Others are far away.
}

void TestDrawnIcons::iconHasShapesAndColoursOfTheFileItWasDesignedIn_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("file");
    int index = 0;
    for (const char* name : {"lumivant", "new", "open", "save", "saveAs", "add", "delete", "memory"})
        QTest::newRow(name) << index++ << QStringLiteral(":/%1.svg").arg(QLatin1String(name));
}

void TestDrawnIcons::iconHasShapesAndColoursOfTheFileItWasDesignedIn()
{
    QFETCH(int, index);
    QFETCH(QString, file);
    constexpr int Side = 192;
    const QImage drawn = imageOf(Icons[index](), Side);
    const QImage designed = imageOf(QIcon(file), Side);
    QCOMPARE(drawn.format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(designed.format(), drawn.format());
    QCOMPARE(areaColours(drawn), areaColours(designed));
    QVERIFY(!areaColours(designed).isEmpty());
    const int largest = largestDifference(drawn, designed);
    QVERIFY2(largest < MostAtEdges, qPrintable(QString::number(largest)));
}

void TestDrawnIcons::doubleArrowHasTheShapeOfTheFileItWasDesignedIn()
{
    const QIcon icon = DrawnIcons::Style().standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton);
    const QImage drawn = imageOf(icon, 192);
    const QImage designed = imageOf(QIcon(QStringLiteral(":/more.svg")), 192);
    const int largest = largestDifference(drawn, designed, AlphaByte);
    QVERIFY2(largest < MostAtEdges, qPrintable(QString::number(largest)));
}

void TestDrawnIcons::iconIsDrawnAtItsSizeWithNothingCutOff_data()
{
    programsIconLooksAsTheInstalledOne_data();
}

void TestDrawnIcons::iconIsDrawnAtItsSizeWithNothingCutOff()
{
    QFETCH(int, side);
    for (int i = 0; i < Icons.size(); ++i) {
        const QImage image = imageOf(Icons[i](), side);
        QCOMPARE(image.size(), QSize(side, side));
        const QRect ink = inked(image);
        QVERIFY2(std::max(ink.width(), ink.height()) > side * 3 / 4, qPrintable(QString::number(i)));
        // Nothing reaches the last pixels: the edge would be hard.
        for (int at = 0; at < side; ++at) {
            for (const QPoint& edge : {QPoint(at, 0), QPoint(at, side - 1), QPoint(0, at), QPoint(side - 1, at)})
                QVERIFY2(image.pixelColor(edge).alpha() < 128, qPrintable(QString::number(i)));
        }
    }
}

void TestDrawnIcons::noTwoIconsLookAlike()
{
    for (int i = 0; i < Icons.size(); ++i) {
        for (int j = 0; j < i; ++j)
            QVERIFY(difference(imageOf(Icons[i](), 24), imageOf(Icons[j](), 24)) > 5);
    }
}

void TestDrawnIcons::iconOfWhatCannotBeDoneIsFaded()
{
    const QIcon icon = DrawnIcons::deleteTask();
    const QColor can = imageOf(icon, 24).pixelColor(12, 6);
    const QColor cannot = imageOf(icon, 24, QIcon::Disabled).pixelColor(12, 6);
    QVERIFY(can.red() > can.blue() + 50);
    QVERIFY2(std::abs(cannot.red() - cannot.blue()) < 25, qPrintable(cannot.name()));
    QVERIFY(cannot.alpha() > 0);
}

void TestDrawnIcons::iconInAWideRectangleKeepsItsShapeInTheMiddle()
{
    const QImage wide = DrawnIcons::addTask().pixmap(QSize(72, 24)).toImage();
    QCOMPARE(wide.size(), QSize(72, 24));
    QCOMPARE(wide.copy(24, 0, 24, 24), imageOf(DrawnIcons::addTask(), 24));
    QVERIFY(QRect(24, 0, 24, 24).contains(inked(wide)));
    const QImage tall = DrawnIcons::addTask().pixmap(QSize(24, 72)).toImage();
    QCOMPARE(tall.copy(0, 24, 24, 24), imageOf(DrawnIcons::addTask(), 24));
}

void TestDrawnIcons::iconIsPaintedWithAllPixelsOfADenseScreen()
{
    QImage screen(48, 48, QImage::Format_ARGB32);
    screen.fill(Qt::transparent);
    screen.setDevicePixelRatio(2);
    {
        QPainter painter(&screen);
        DrawnIcons::openProject().paint(&painter, 0, 0, 24, 24);
    }
    screen.setDevicePixelRatio(1);
    QVERIFY(difference(screen, imageOf(DrawnIcons::openProject(), 48)) < 0.5);
}

void TestDrawnIcons::copyOfAnIconDrawsTheSame()
{
    const QIcon icon = DrawnIcons::saveProject();
    QIcon copy = icon;
    copy.addPixmap(QPixmap(1, 1));  // Detaches it; a drawn icon takes no pictures.
    QCOMPARE(imageOf(copy, 24), imageOf(icon, 24));
}

void TestDrawnIcons::barThatIsTooNarrowShowsADrawnDoubleArrow()
{
    StartUp::dress();
    QMainWindow window;
    QToolBar* const bar = window.addToolBar(QStringLiteral("bar"));
    for (int i = 0; i < 40; ++i)
        bar->addAction(DrawnIcons::addTask(), QString::number(i));
    window.resize(200, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto* const more = bar->findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button"));
    QVERIFY(more);
    QTRY_VERIFY(more->isVisible());
    const QImage arrow = imageOf(more->icon(), 24);
    // Two heads that point to the right: at half height their tips, above and below nothing to the right of them.
    QCOMPARE(arrow.pixelColor(11, 12).alpha(), 255);
    QCOMPARE(arrow.pixelColor(18, 12).alpha(), 255);
    QCOMPARE(arrow.pixelColor(15, 12).alpha(), 0);
    QCOMPARE(arrow.pixelColor(18, 5).alpha(), 0);
    QVERIFY(arrow.pixelColor(12, 6).alpha() > 100);
    QCOMPARE(arrow.pixelColor(11, 12).rgb(), QGuiApplication::palette().buttonText().color().rgb());
}

void TestDrawnIcons::doubleArrowPointsToWhereTheTextsGo()
{
    const DrawnIcons::Style style;
    QStyleOption option;
    option.direction = Qt::LeftToRight;
    const QImage right = imageOf(style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton, &option), 24);
    option.direction = Qt::RightToLeft;
    const QImage left = imageOf(style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton, &option), 24);
    QVERIFY(right != left);
    QVERIFY(difference(right.mirrored(true, false), left) < 1);
}

void TestDrawnIcons::noSizeGivesNoPictureAndNoWarning()
{
    static int s_nWarnings = 0;
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++s_nWarnings; });
    const auto restore = qScopeGuard([before] { qInstallMessageHandler(before); });
    for (const QSize& size : {QSize(), QSize(0, 0), QSize(-1, 4), QSize(4, 0)})
        QVERIFY(DrawnIcons::addTask().pixmap(size).isNull());
    QCOMPARE(s_nWarnings, 0);
}

void TestDrawnIcons::allOtherPicturesOfTheStyleAreAsBefore()
{
    QStyle* const before = QStyleFactory::create(QStringLiteral("fusion"));
    const QImage expected = imageOf(before->standardIcon(QStyle::SP_MessageBoxWarning), 32);
    const DrawnIcons::Style style(before);
    QVERIFY(!inked(expected).isEmpty());
    QCOMPARE(imageOf(style.standardIcon(QStyle::SP_MessageBoxWarning), 32), expected);
    QCOMPARE(style.baseStyle(), before);
}

QTEST_MAIN(TestDrawnIcons)
#include "testDrawnIcons.moc"
