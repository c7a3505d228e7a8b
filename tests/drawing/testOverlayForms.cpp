#include "drawing/directDrawing.h"
#include "drawing/greyOverlay.h"
#include "drawingSupport.h"
#include "pixels/samplingKernels.h"

#include <QPainter>
#include <QtTest>

#include <random>

using namespace DrawingSupport;

namespace {

constexpr int Width = 150;  ///< Of the pictures; not whole steps of any form.
constexpr int Height = 9;

QImage noise(QSize size, QImage::Format format)
{
    std::mt19937 random(static_cast<unsigned>(size.width() + format));  // canvas and picture differ
    QImage image(size, format);
    for (int y = 0; y < image.height(); ++y) {
        for (int i = 0; i < image.bytesPerLine(); ++i)
            image.scanLine(y)[i] = static_cast<uchar>(random());
    }
    return image;
}

/// Noise, every third value of which is 0.
QImage greyPicture()
{
    QImage grey = noise({Width, Height}, QImage::Format_Grayscale8);
    for (int y = 0; y < Height; ++y) {
        for (int x = y % 3; x < Width; x += 3)
            grey.scanLine(y)[x] = 0;
    }
    return grey;
}

/// What the painter makes of the colours that the values are shown in.
QImage painted(QImage canvas, const QImage& grey, const QRectF& source, const GreyOverlay& overlay)
{
    QImage colours(grey.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < grey.height(); ++y) {
        for (int x = 0; x < grey.width(); ++x)
            colours.setPixel(x, y, overlay.colourOf(grey.constScanLine(y)[x]));
    }
    QPainter(&canvas).drawImage(QRectF(canvas.rect()), colours, source);
    return canvas;
}

}  // namespace

/// Overlays by each form that this processor has, the ways of the slower ones included.
class TestOverlayForms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachFormDrawsAsThePainterDoes_data();
    void eachFormDrawsAsThePainterDoes();
};

void TestOverlayForms::eachFormDrawsAsThePainterDoes_data()
{
    QTest::addColumn<int>("form");
    QTest::addColumn<QSize>("canvas");
    const std::vector<const SamplingKernels*> forms = SamplingKernels::available();
    for (int form = 0; form < static_cast<int>(forms.size()); ++form) {
        const QByteArray name = forms[static_cast<std::size_t>(form)]->m_pchName;
        QTest::newRow(name + ", as it is") << form << QSize(Width, Height);
        QTest::newRow(name + ", smaller") << form << QSize(Width / 2, Height / 2);
        QTest::newRow(name + ", rows repeated") << form << QSize(Width, 3 * Height);
        QTest::newRow(name + ", larger") << form << QSize(2 * Width + 1, 2 * Height);
    }
}

void TestOverlayForms::eachFormDrawsAsThePainterDoes()
{
    QFETCH(int, form);
    QFETCH(QSize, canvas);
    const QImage before = noise(canvas, QImage::Format_RGB888);
    const QImage grey = greyPicture();
    using Colours = GreyOverlay::Colours;
    for (const Colours colours : {Colours::Greys, Colours::Blocks, Colours::OneColour}) {
        for (const bool showsZero : {true, false}) {
            for (const bool showsOthers : {true, false}) {
                const GreyOverlay overlay{colours, 0xFF123456, showsZero, showsOthers};
                QImage drawn = before;
                QVERIFY(DirectDrawing::overlay(drawn, grey, grey.rect(), overlay,
                                               *SamplingKernels::available().at(static_cast<std::size_t>(form))));
                QCOMPARE(difference(drawn, painted(before, grey, grey.rect(), overlay)), QString());
            }
        }
    }
}

QTEST_MAIN(TestOverlayForms)
#include "testOverlayForms.moc"
