// The configuration text of a data source: the source that it makes, and one picture through it. Input: the text up to
// a zero byte, then the size of the picture.
#include "dataSource/dataSource.h"
#include "dataSource/dataSourceInstance.h"
#include "fuzzInput.h"
#include "fuzzSupport.h"
#include "memoryDisk/memoryDisk.h"
#include "naiveText.h"
#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"

#include <memory>
#include <vector>

namespace {

using Instance = std::unique_ptr<DataSource::DataSourceInstance>;

struct Store
{
    ArithmParamMgr* const m_pcStore = ArithmParamMgr::newInstance();
    Store() = default;
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    ~Store() { ArithmParamMgr::deleteInstance(m_pcStore); }
    ArithmParamMgr* operator->() const { return m_pcStore; }
};

struct Wanted
{
    int disk = -1;  ///< -1: no such source.
    QString name, describe, type, config;
    int id = 0;  ///< 0: half configured.
};

Wanted wantedOf(const QString& text)
{
    Wanted wanted;
    const QString kind = Naive::element(text, QStringLiteral("DSName"));
    for (int disk = 0; disk < MemoryDisk::DiskNum; ++disk) {
        if (kind == "Memory Disk " + QString::number(disk))
            wanted.disk = disk;
    }
    wanted.name = Naive::element(text, QStringLiteral("OutputName"));
    wanted.describe = Naive::element(text, QStringLiteral("OutputDescribe"));
    wanted.config = Naive::element(text, QStringLiteral("Config"));
    bool ok = false;
    const int id = Naive::element(text, QStringLiteral("OutputID")).toInt(&ok, 10);
    if (!ok || id < 1)
        return wanted;
    wanted.id = id;
    wanted.type = Naive::element(text, QStringLiteral("OutputType"));
    return wanted;
}

const ArithmParam* recordOf(const Store& store, const Wanted& wanted)
{
    if (wanted.type == QLatin1String("RGB"))
        return store->findParamDIB(wanted.id);
    if (wanted.type == QLatin1String("Gray8"))
        return store->findParamGray8(wanted.id);
    if (wanted.type == QLatin1String("Gray16"))
        return store->findParamGray16(wanted.id);
    return nullptr;
}

void expectRecord(const Store& store, const Wanted& wanted)
{
    const bool hasRecord = wanted.type == QLatin1String("RGB") || wanted.type == QLatin1String("Gray8") ||
                           wanted.type == QLatin1String("Gray16");
    const int records = store->requestParamDIBMap()->size() + store->requestParamGray8Map()->size() +
                        store->requestParamGray16Map()->size();
    Fuzz::expect(records == (hasRecord ? 1 : 0), "the output record and no other is made");
    if (!hasRecord)
        return;
    const ArithmParam* record = recordOf(store, wanted);
    Fuzz::expect(record != nullptr, "the output record has the identifier and the type of the text");
    Fuzz::expectEqual(record->getName(), wanted.name, "the name of the output record");
    Fuzz::expectEqual(record->getDescribe(), wanted.describe, "the description of the output record");
}

/// Lets a picture through; the disk must hold one, for a source would wait for it.
void expectPicture(DataSource::DataSourceInstance& instance, const Store& store, const Wanted& wanted, int width,
                   int height)
{
    std::vector<unsigned char> pixels(static_cast<std::size_t>(PictureLayout::colourBytes(width, height)), 0x5A);
    if (wanted.type == QLatin1String("RGB")) {
        MemoryDisk::getInstance(wanted.disk)->addDIB(pixels.data(), width, height);
        Fuzz::expect(instance.execute(), "a picture is delivered");
        const ParamDIB* record = store->findParamDIB(wanted.id);
        Fuzz::expect(record->getWidth() == width && record->getHeight() == height, "the size of a colour picture");
        Fuzz::expect(std::equal(pixels.begin(), pixels.end(), record->getDIB()), "the bytes of a colour picture");
    } else if (wanted.type == QLatin1String("Gray8")) {
        MemoryDisk::getInstance(wanted.disk)->addGray8(pixels.data(), width, height);
        Fuzz::expect(instance.execute(), "a picture is delivered");
        const ParamGray8* record = store->findParamGray8(wanted.id);
        Fuzz::expect(record->getWidth() == width && record->getHeight() == height, "the size of a grey picture");
    } else {
        Fuzz::expect(!instance.execute(), "another type delivers nothing");
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    Fuzz::startProgram();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const QString text = QString::fromUtf8(input.text());
    const int width = 1 + input.upTo(15);
    const int height = 1 + input.upTo(15);

    const Store store;
    const Wanted wanted = wantedOf(text);
    const Instance instance(DataSource::getInstance()->createDataSourceFromConfigString(store.m_pcStore, text));
    Fuzz::expect((instance != nullptr) == (wanted.disk >= 0), "a source is made when its kind is known");
    if (!instance) {
        expectRecord(store, Wanted());
        return 0;
    }
    Fuzz::expectEqual(instance->getConfigString(), wanted.config, "the configuration of the kind");
    Fuzz::expectEqual(instance->getDataType(), wanted.type, "the type of the output");
    Fuzz::expect(instance->getDataID() == wanted.id, "the identifier of the output");
    expectRecord(store, wanted);
    instance->start();
    expectPicture(*instance, store, wanted, width, height);
    expectRecord(store, wanted);
    instance->stop();
    return 0;
}
