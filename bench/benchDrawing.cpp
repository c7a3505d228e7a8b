// What does drawing a full HD picture onto a view cost, beside what the painter and OpenCV need for the same?
#include "drawing/drawing.h"
#include "drawing/drawingOpt.h"
#include "inTurns.h"
#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"

#include <QImage>
#include <QPainter>

#ifdef LUMIVANT_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

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
    "<DataType>1</DataType><Config><Scale>0</Scale><DrawMode><Val>1</Val></DrawMode></Config>",
    "<DataType>1</DataType><Config><Scale>0</Scale><DrawMode><Lapped>1</Lapped><Val>1</Val></DrawMode></Config>",
    "<DataType>1</DataType><Config><Scale>0</Scale><DrawMode><Mask>1,2</Mask><Val>2</Val></DrawMode></Config>",
};
constexpr int KindNum = static_cast<int>(std::size(Kinds));

QString textOf(int kind)
{
    return QStringLiteral("<DataID>1</DataID>") + QLatin1String(Kinds[kind]);
}

/// Canvases differ: what is drawn onto one finds nothing of the others in the cache.
class Canvas
{
public:
    explicit Canvas(int kind) : m_strText(textOf(kind)), m_pcOption(newOption()) { m_cImage.fill(Qt::black); }

    /// Option text to canvas: the copy of the pixels, too.
    void drawPicture()
    {
        const std::unique_ptr<Drawing::DrawingOpt> option = newOption();
        option->draw(&m_cImage, m_pcStore.get());
        benchmark::ClobberMemory();
    }
    /// The window's part alone: an option that is there onto a canvas.
    void drawOption()
    {
        m_pcOption->draw(&m_cImage, m_pcStore.get());
        benchmark::ClobberMemory();
    }

private:
    std::unique_ptr<Drawing::DrawingOpt> newOption() const
    {
        return std::unique_ptr<Drawing::DrawingOpt>(Drawing::parseConfigString(m_strText, m_pcStore.get()));
    }

    Store m_pcStore = filledStore();
    QString m_strText;
    std::unique_ptr<Drawing::DrawingOpt> m_pcOption;
    QImage m_cImage{CanvasWidth, CanvasHeight, QImage::Format_RGB888};
};

/// The plain way: blue and red exchanged in place, then the painter.
void drawByPainter(unsigned char* pixels, QImage& canvas)
{
    PictureLayout::exchangeFirstAndThird(pixels, Width, Height);
    QPainter(&canvas).drawImage(QRectF(0, 0, CanvasWidth, CanvasHeight),
                                QImage(pixels, Width, Height, 3 * Width, QImage::Format_RGB888),
                                QRectF(0, 0, Width, Height));
    benchmark::ClobberMemory();
}

void drawing(benchmark::State& state)
{
    constexpr int Calls = 2;
    const Store store = filledStore();
    unsigned char* pixels = store->getParamDIB(1)->getDIB();
    QImage canvas(CanvasWidth, CanvasHeight, QImage::Format_RGB888);
    std::vector<Canvas> canvases;
    InTurns turns;
    for (int kind = 0; kind < KindNum; ++kind)
        canvases.emplace_back(kind);
    for (int kind = 0; kind < KindNum; ++kind) {
        Canvas& drawn = canvases[static_cast<std::size_t>(kind)];
        // A colour option exchanges blue and red in every second of its drawings, those that are measured.
        turns.add("option" + std::to_string(kind), [&drawn] {
            double time = 0;
            for (int i = 0; i < Calls; ++i) {
                time += timeOf(1, [&drawn] { drawn.drawOption(); });
                drawn.drawOption();
            }
            return time / Calls;
        });
        turns.add("picture" + std::to_string(kind),
                  [&drawn] { return timeOf(Calls, [&drawn] { drawn.drawPicture(); }) / Calls; });
    }
    turns.add("painter", [&] { return timeOf(Calls, [&] { drawByPainter(pixels, canvas); }) / Calls; });
#ifdef LUMIVANT_BENCH_OPENCV
    // Nearest neighbour without an exchange, one thread as everywhere here.
    cv::setNumThreads(1);
    const cv::Mat picture(Height, Width, CV_8UC3, pixels);
    cv::Mat resized(CanvasHeight, CanvasWidth, CV_8UC3);
    turns.add("openCv", [&] {
        return timeOf(Calls,
                      [&] {
                          cv::resize(picture, resized, resized.size(), 0, 0, cv::INTER_NEAREST);
                          benchmark::ClobberMemory();
                      }) /
               Calls;
    });
#endif
    turns.measure(state);
}

BENCHMARK(drawing)->Iterations(20);

}  // namespace
