// What does drawing a full HD picture onto a view cost, beside a plain copy of the canvas?
#include "drawing/drawing.h"
#include "drawing/drawingOpt.h"
#include "paramStore/arithmParamMgr.h"

#include <QImage>

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr int CanvasWidth = 960;
constexpr int CanvasHeight = 540;

struct StoreDeleter
{
    void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
};

void canvasCopy(benchmark::State& state)
{
    const QImage canvas(CanvasWidth, CanvasHeight, QImage::Format_RGB888);
    const auto bytes = static_cast<std::size_t>(canvas.sizeInBytes());
    std::vector<unsigned char> target(bytes);
    for (auto _ : state) {
        std::memcpy(target.data(), canvas.constBits(), bytes);
        benchmark::ClobberMemory();
    }
}

/// Option text to canvas: the copy of the pixels, the exchange and the placement. The argument is the data type.
void drawPicture(benchmark::State& state)
{
    const std::unique_ptr<ArithmParamMgr, StoreDeleter> store(ArithmParamMgr::newInstance());
    store->getParamDIB(1)->resize(1920, 1080);
    std::memset(store->getParamDIB(1)->getDIB(), 90, std::size_t{1920} * 3 * 1080);
    store->getParamGray8(1)->resize(1920, 1080);
    std::memset(store->getParamGray8(1)->getGray8(), 90, std::size_t{1920} * 1080);
    const QString text = QStringLiteral("<DataType>%1</DataType><DataID>1</DataID><Config><Scale>3</Scale></Config>")
                             .arg(state.range(0));
    QImage canvas(CanvasWidth, CanvasHeight, QImage::Format_RGB888);
    for (auto _ : state) {
        const std::unique_ptr<Drawing::DrawingOpt> option(Drawing::parseConfigString(text, store.get()));
        option->draw(&canvas, store.get());
        benchmark::ClobberMemory();
    }
}

BENCHMARK(canvasCopy);
BENCHMARK(drawPicture)->Arg(0)->Arg(1);

}  // namespace
