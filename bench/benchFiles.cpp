// What do the loading and the saving step cost, beside QImage and OpenCV with the same file?
#include "inTurns.h"
#include "loading/loading.h"
#include "paramStore/arithmParamMgr.h"
#include "saving/saving.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <png.h>

#ifdef LUMIVANT_BENCH_OPENCV
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

struct StoreDeleter
{
    void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
};
using Store = std::unique_ptr<ArithmParamMgr, StoreDeleter>;

constexpr int Width = 1920;
constexpr int Height = 1080;
// In the order of the saving step's formats, and once more a bitmap for a grey picture.
const char* const Suffixes[] = {"jpg", "png", "bmp", "bmp"};
constexpr int GreyBitmap = 3;

/// Something between a flat area and noise; grey for the grey bitmap.
QImage picture(const benchmark::State& state)
{
    QImage result(Width, Height, QImage::Format_RGB888);
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width * 3; ++x)
            result.scanLine(y)[x] = static_cast<unsigned char>((x / 12 + y / 3) ^ ((x * y) >> 12 & 3));
    }
    return state.range(0) == GreyBitmap ? result.convertToFormat(QImage::Format_Grayscale8) : result;
}

QString suffix(const benchmark::State& state)
{
    return QLatin1String(Suffixes[state.range(0)]);
}

void loadByQt(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a." + suffix(state));
    picture(state).save(path);
    for (auto _ : state)
        benchmark::DoNotOptimize(QImage(path).width());
}

QByteArray loadingOption(const QString& path, int beGray)
{
    return QStringLiteral("<FilePath>%1</FilePath><BeGray>%2</BeGray><PicID>1</PicID>").arg(path).arg(beGray).toUtf8();
}

/// The second argument is <BeGray>.
void loadByStep(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a." + suffix(state));
    picture(state).save(path);
    const Store store(ArithmParamMgr::newInstance());
    QByteArray option = loadingOption(path, static_cast<int>(state.range(1)));
    for (auto _ : state)
        Loading::execute(option.data(), store.get());
}

/// The decoder by itself, into rows of its own format; false when it refuses the file.
bool decodePng(const QByteArray& path, std::vector<unsigned char>& pixels)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.constData()) == 0)
        return false;
    image.format = PNG_FORMAT_RGB;
    pixels.resize(PNG_IMAGE_SIZE(image));
    return png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) != 0;
}

/// Both need nearly the same, so they are measured in turns.
void loadPng(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.png");
    picture(state).save(path);
    const QByteArray name = path.toUtf8();
    const Store store(ArithmParamMgr::newInstance());
    QByteArray option = loadingOption(path, 0);
    std::vector<unsigned char> pixels;
    InTurns turns;
    turns.add("step", [&] { return timeOf(1, [&] { Loading::execute(option.data(), store.get()); }); });
    turns.add("libpng", [&] {
        return timeOf(1, [&] {
            if (!decodePng(name, pixels))
                state.SkipWithError("libpng refused the file");
        });
    });
    turns.measure(state);
}

double bytesOfFileIn(const QTemporaryDir& folder)
{
    const QFileInfoList files = QDir(folder.path()).entryInfoList(QDir::Files);
    return files.isEmpty() ? 0 : static_cast<double>(files.first().size());
}

void saveByQt(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a." + suffix(state));
    const QImage image = picture(state);
    for (auto _ : state)
        image.save(path);
    state.counters["bytes"] = bytesOfFileIn(folder);
}

void saveByStep(benchmark::State& state)
{
    const QTemporaryDir folder;
    const Store store(ArithmParamMgr::newInstance());
    const QImage image = picture(state);
    const bool isGrey = state.range(0) == GreyBitmap;
    if (isGrey) {
        store->getParamGray8(1)->resize(Width, Height);
        std::memcpy(store->getParamGray8(1)->getGray8(), image.constBits(), std::size_t{Width} * Height);
    } else {
        store->getParamDIB(1)->resize(Width, Height);
        std::memcpy(store->getParamDIB(1)->getDIB(), image.constBits(), std::size_t{Width} * 3 * Height);
    }
    QByteArray option = QStringLiteral(
                            "<BasePath>%1</BasePath><StringID>a</StringID><Identity>2</Identity>"
                            "<Format>%2</Format><Wnd>4</Wnd><PicType>%3</PicType><PicID>1</PicID>")
                            .arg(folder.path())
                            .arg(isGrey ? 2 : state.range(0))
                            .arg(isGrey ? "Gray" : "RGB")
                            .toUtf8();
    for (auto _ : state)
        Saving::execute(option.data(), store.get());
    state.counters["bytes"] = bytesOfFileIn(folder);
}

#ifdef LUMIVANT_BENCH_OPENCV

/// The second argument: colours, the grey that the decoder gives (of a JPG its luma alone), colours that are made grey.
void loadByOpenCv(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a." + suffix(state));
    picture(state).save(path);
    const int mode = state.range(1) == 1 ? cv::IMREAD_GRAYSCALE : cv::IMREAD_COLOR;
    for (auto _ : state) {
        cv::Mat matrix = cv::imread(path.toStdString(), mode);
        if (state.range(1) == 2)
            cv::cvtColor(matrix, matrix, cv::COLOR_BGR2GRAY);
        benchmark::DoNotOptimize(matrix.cols);
    }
}

void saveByOpenCv(benchmark::State& state)
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath("a." + suffix(state)).toStdString();
    QImage image = picture(state);
    const cv::Mat matrix(Height, Width, state.range(0) == GreyBitmap ? CV_8UC1 : CV_8UC3, image.bits());
    std::vector<int> settings;
    if (state.range(0) == 0)
        settings = {cv::IMWRITE_JPEG_QUALITY, 75};  // as the saving step
    for (auto _ : state)
        cv::imwrite(path, matrix, settings);
}

BENCHMARK(loadByOpenCv)->ArgsProduct({{0, 1, 2, GreyBitmap}, {0, 1, 2}})->Unit(benchmark::kMillisecond);
BENCHMARK(saveByOpenCv)->DenseRange(0, GreyBitmap)->Unit(benchmark::kMillisecond);

#endif

BENCHMARK(loadPng)->Arg(1)->Iterations(7);
BENCHMARK(loadByQt)->DenseRange(0, GreyBitmap)->Unit(benchmark::kMillisecond);
BENCHMARK(loadByStep)->ArgsProduct({{0, 1, 2, GreyBitmap}, {0, 1}})->Unit(benchmark::kMillisecond);
BENCHMARK(saveByQt)->DenseRange(0, GreyBitmap)->Unit(benchmark::kMillisecond);
BENCHMARK(saveByStep)->DenseRange(0, GreyBitmap)->Unit(benchmark::kMillisecond);

}  // namespace
