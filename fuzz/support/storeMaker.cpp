#include "storeMaker.h"

#include "paramStore/pictureLayout.h"

#include <algorithm>

namespace {

constexpr int MostPixels = 48;  // along a side
constexpr int MostEntries = 6;

void fill(void* pixels, std::int64_t bytes, int seed)
{
    auto* target = static_cast<unsigned char*>(pixels);
    for (std::int64_t i = 0; i < bytes; ++i)
        target[i] = static_cast<unsigned char>(seed == 0 ? 0 : i * seed);
}

void makePictures(FuzzInput& input, ArithmParamMgr& store)
{
    const int width = input.upTo(MostPixels);
    const int height = input.upTo(MostPixels);
    const int seed = input.byte();
    ParamDIB* const colour = store.getParamDIB(StoreMaker::Colour);
    colour->resize(width, height);
    fill(colour->getDIB(), PictureLayout::colourBytes(width, height), seed);
    ParamGray8* const gray8 = store.getParamGray8(StoreMaker::Gray8);
    gray8->resize(width, height);
    fill(gray8->getGray8(), PictureLayout::gray8Bytes(width, height), seed);
    ParamGray16* const gray16 = store.getParamGray16(StoreMaker::Gray16);
    gray16->resize(height, width);
    fill(gray16->getGray16(), PictureLayout::gray16Bytes(height, width), seed);
}

/// Any number of entries; each holds any numbers, drawn from the input in the order of its fields.
template <typename Entry>
QVector<Entry> entries(FuzzInput& input)
{
    QVector<Entry> result(input.upTo(MostEntries));
    for (Entry& entry : result) {
        int numbers[sizeof(Entry) / sizeof(int)];
        std::generate(std::begin(numbers), std::end(numbers), [&input] { return input.anyInt(); });
        static_assert(sizeof(numbers) == sizeof(Entry), "an entry is made of ints");
        entry = *reinterpret_cast<Entry*>(numbers);
    }
    return result;
}

void makeLists(FuzzInput& input, ArithmParamMgr& store)
{
    store.getParamPoints(StoreMaker::Points)->replaceAll(entries<ParamPoints::Point>(input));
    store.getParamLines(StoreMaker::Lines)->replaceAll(entries<ParamLines::Line>(input));
    store.getParamAreas(StoreMaker::Areas)->replaceAll(entries<ParamAreas::Area>(input));
    QVector<ParamPolys::Poly> polys(input.upTo(3));
    for (ParamPolys::Poly& poly : polys)
        poly = entries<ParamPolys::Point>(input);
    store.getParamPolys(StoreMaker::Polys)->replaceAll(polys);
    QVector<QByteArray> strings(input.upTo(3));
    for (QByteArray& string : strings)
        string = input.text();
    store.getParamStrings(StoreMaker::Strings)->replaceAll(strings);
    store.getParamAreas(StoreMaker::Areas)->setName(QString::fromUtf8(input.text()));
}

}  // namespace

ArithmParamMgr* StoreMaker::make(FuzzInput& input)
{
    ArithmParamMgr* const store = ArithmParamMgr::newInstance();
    makePictures(input, *store);
    makeLists(input, *store);
    return store;
}
