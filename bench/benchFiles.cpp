// What do the loading and the saving step cost, beside QImage and OpenCV with the same file?
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
const char* const Suffixes[] = {"jpg", "png", "bmp"};  // in the order of the saving step's formats

/// Something between a flat area and noise.
QImage picture()
{
    QImage result(Width, Height, QImage::Format_RGB888);
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width * 3; ++x)
            result.scanLine(y)[x] = static_cast<unsigned char>((x / 12 + y / 3) ^ ((x * y) >> 12 & 3));
    }
    return result;
}

QString suffix(const benchmark::State& state)
{
    return QLatin1String(Suffixes[state.range(0)]);
}

void loadByQt(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a." + suffix(state));
    picture().save(path);
    for (auto _ : state)
        benchmark::DoNotOptimize(QImage(path).width());
}

/// The second argument is <BeGray>.
void loadByStep(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a." + suffix(state));
    picture().save(path);
    const Store store(ArithmParamMgr::newInstance());
    QByteArray option = QStringLiteral("<FilePath>%1</FilePath><BeGray>%2</BeGray><PicID>1</PicID>")
                            .arg(path)
                            .arg(state.range(1))
                            .toUtf8();
    for (auto _ : state)
        Loading::execute(option.data(), store.get());
}

/// The decoder by itself, into rows of its own format.
void loadPngByLibpng(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.png");
    picture().save(path);
    std::vector<unsigned char> pixels;
    for (auto _ : state) {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        if (png_image_begin_read_from_file(&image, path.toUtf8().constData()) == 0)
            state.SkipWithError("libpng refused the file");
        image.format = PNG_FORMAT_RGB;
        pixels.resize(PNG_IMAGE_SIZE(image));
        if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0)
            state.SkipWithError("libpng refused the file");
    }
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
    const QImage image = picture();
    for (auto _ : state)
        image.save(path);
    state.counters["bytes"] = bytesOfFileIn(folder);
}

void saveByStep(benchmark::State& state)
{
    const QTemporaryDir folder;
    const Store store(ArithmParamMgr::newInstance());
    ParamDIB* record = store->getParamDIB(1);
    record->resize(Width, Height);
    std::memcpy(record->getDIB(), picture().constBits(), std::size_t{Width} * 3 * Height);
    QByteArray option = QStringLiteral(
                            "<BasePath>%1</BasePath><StringID>a</StringID><Identity>2</Identity>"
                            "<Format>%2</Format><Wnd>4</Wnd><PicType>RGB</PicType><PicID>1</PicID>")
                            .arg(folder.path())
                            .arg(state.range(0))
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
    picture().save(path);
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
    QImage image = picture();
    const cv::Mat matrix(Height, Width, CV_8UC3, image.bits());
    std::vector<int> settings;
    if (state.range(0) == 0)
        settings = {cv::IMWRITE_JPEG_QUALITY, 75};  // as the saving step
    for (auto _ : state)
        cv::imwrite(path, matrix, settings);
}

BENCHMARK(loadByOpenCv)->ArgsProduct({{0, 1, 2}, {0, 1, 2}})->Unit(benchmark::kMillisecond);
BENCHMARK(saveByOpenCv)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

#endif

BENCHMARK(loadPngByLibpng)->Unit(benchmark::kMillisecond);
BENCHMARK(loadByQt)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(loadByStep)->ArgsProduct({{0, 1, 2}, {0, 1}})->Unit(benchmark::kMillisecond);
BENCHMARK(saveByQt)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(saveByStep)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

}  // namespace
