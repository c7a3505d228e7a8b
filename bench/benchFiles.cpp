// What do the loading and the saving step cost, beside QImage with the same file?
#include "loading/loading.h"
#include "paramStore/arithmParamMgr.h"
#include "saving/saving.h"

#include <QImage>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>

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

void saveByQt(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a." + suffix(state));
    const QImage image = picture();
    for (auto _ : state)
        image.save(path);
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
}

BENCHMARK(loadByQt)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(loadByStep)->ArgsProduct({{0, 1, 2}, {0, 1}})->Unit(benchmark::kMillisecond);
BENCHMARK(saveByQt)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(saveByStep)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

}  // namespace
