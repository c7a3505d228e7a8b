// What does drawing a full HD picture onto a view cost, beside what the painter and OpenCV need for the same?
#include "drawing/drawing.h"
#include "drawing/drawingOpt.h"
#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"

#include <QImage>
#include <QPainter>

#ifdef LUMIVANT_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

namespace {

constexpr int Width = 1920;
constexpr int Height = 1080;
constexpr int CanvasWidth = 960;
constexpr int CanvasHeight = 540;

struct StoreDeleter
{
    void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
};
using Store = std::unique_ptr<ArithmParamMgr, StoreDeleter>;

void fill(unsigned char* bytes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(i * 2654435761U >> 24);
}

/// A colour and a grey picture under the number 1.
Store filledStore()
{
    Store store(ArithmParamMgr::newInstance());
    store->getParamDIB(1)->resize(Width, Height);
    fill(store->getParamDIB(1)->getDIB(), std::size_t{Width} * 3 * Height);
    store->getParamGray8(1)->resize(Width, Height);
    fill(store->getParamGray8(1)->getGray8(), std::size_t{Width} * Height);
    return store;
}

/// Data type and configuration of each kind that is measured.
const char* const Kinds[] = {
    "<DataType>0</DataType><Config><Scale>3</Scale></Config>",
    "<DataType>1</DataType><Config><Scale>3</Scale></Config>",
    "<DataType>1</DataType><Config><Scale>3</Scale><DrawMode><Val>1</Val></DrawMode></Config>",
    "<DataType>1</DataType><Config><Scale>3</Scale><DrawMode><Lapped>1</Lapped><Val>1</Val></DrawMode></Config>",
    "<DataType>1</DataType><Config><Scale>3</Scale><DrawMode><Mask>1,2</Mask><Val>2</Val></DrawMode></Config>",
    "<DataType>0</DataType><Config><Scale>0</Scale></Config>",
    "<DataType>1</DataType><Config><Scale>0</Scale></Config>",
};
constexpr int KindNum = static_cast<int>(std::size(Kinds));

QString textOf(int kind)
{
    return QStringLiteral("<DataID>1</DataID>") + QLatin1String(Kinds[kind]);
}

/// Option text to canvas: the copy of the pixels, too.
void drawPicture(benchmark::State& state)
{
    const Store store = filledStore();
    const QString text = textOf(static_cast<int>(state.range(0)));
    QImage canvas(CanvasWidth, CanvasHeight, QImage::Format_RGB888);
    canvas.fill(Qt::black);
    for (auto _ : state) {
        const std::unique_ptr<Drawing::DrawingOpt> option(Drawing::parseConfigString(text, store.get()));
        option->draw(&canvas, store.get());
        benchmark::ClobberMemory();
    }
}

/// The window's part alone: an option that is there onto a canvas. A colour option exchanges blue and red in every
/// second of its drawings, those that are measured.
void drawOption(benchmark::State& state)
{
    const Store store = filledStore();
    const std::unique_ptr<Drawing::DrawingOpt> option(
        Drawing::parseConfigString(textOf(static_cast<int>(state.range(0))), store.get()));
    QImage canvas(CanvasWidth, CanvasHeight, QImage::Format_RGB888);
    canvas.fill(Qt::black);
    for (auto _ : state) {
        const auto begun = std::chrono::steady_clock::now();
        option->draw(&canvas, store.get());
        benchmark::ClobberMemory();
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
        option->draw(&canvas, store.get());
    }
}

/// The plain way: blue and red exchanged in place, then the painter.
void drawByPainter(benchmark::State& state)
{
    const Store store = filledStore();
    unsigned char* pixels = store->getParamDIB(1)->getDIB();
    QImage canvas(CanvasWidth, CanvasHeight, QImage::Format_RGB888);
    for (auto _ : state) {
        PictureLayout::exchangeFirstAndThird(pixels, Width, Height);
        QPainter(&canvas).drawImage(QRectF(0, 0, CanvasWidth, CanvasHeight),
                                    QImage(pixels, Width, Height, 3 * Width, QImage::Format_RGB888),
                                    QRectF(0, 0, Width, Height));
        benchmark::ClobberMemory();
    }
}

BENCHMARK(drawPicture)->DenseRange(0, KindNum - 1);
BENCHMARK(drawOption)->DenseRange(0, KindNum - 1)->UseManualTime();
BENCHMARK(drawByPainter);

#ifdef LUMIVANT_BENCH_OPENCV

/// Nearest neighbour without an exchange, one thread as everywhere here.
void resizeByOpenCv(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Store store = filledStore();
    const cv::Mat picture(Height, Width, CV_8UC3, store->getParamDIB(1)->getDIB());
    cv::Mat canvas(CanvasHeight, CanvasWidth, CV_8UC3);
    for (auto _ : state) {
        cv::resize(picture, canvas, canvas.size(), 0, 0, cv::INTER_NEAREST);
        benchmark::ClobberMemory();
    }
}

BENCHMARK(resizeByOpenCv);

#endif

}  // namespace
