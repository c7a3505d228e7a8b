#include "guardedPage.h"
#include "pixelSupport.h"
#include "pixels/samplingKernels.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <numeric>

using namespace PixelSupport;

namespace {

using Columns = std::vector<std::int32_t>;

/// One row for each form that this processor has.
void addSamplers()
{
    QTest::addColumn<int>("form");
    int index = 0;
    for (const SamplingKernels* kernels : SamplingKernels::available())
        QTest::newRow(kernels->m_pchName) << index++;
}

const SamplingKernels& samplerOfRow()
{
    QFETCH(int, form);
    return *SamplingKernels::available().at(static_cast<std::size_t>(form));
}

/// Columns from first on, one every step / 16 pixels, as many as there are up to a limit.
Columns stepped(int first, int step, int rowWidth, std::size_t limit)
{
    Columns columns;
    for (int place = first * 16; place / 16 < rowWidth && columns.size() < limit; place += step)
        columns.push_back(place / 16);
    return columns;
}

Columns scattered(int rowWidth, std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    Columns columns(count);
    for (std::int32_t& column : columns)
        column = static_cast<std::int32_t>(random() % static_cast<unsigned>(rowWidth));
    std::sort(columns.begin(), columns.end());
    return columns;
}

/// How far buffers lie from an aligned place.
struct Offsets
{
    std::size_t m_nSource = 0;
    std::size_t m_nTarget = 0;
};

/// Ends with its content, so that a sanitizer sees the first byte behind it, and the one in front where nothing is
/// there.
class Exact
{
public:
    Exact(const Bytes& bytes, std::size_t offset)
        : m_nOffset(offset), m_nSize(bytes.size()), m_puchMemory(new unsigned char[offset + bytes.size()])
    {
        std::fill_n(m_puchMemory.get(), offset, Front);
        std::copy(bytes.begin(), bytes.end(), data());
    }
    unsigned char* data() const { return m_puchMemory.get() + m_nOffset; }
    Bytes bytes() const { return {data(), data() + m_nSize}; }
    bool frontIsUntouched() const
    {
        return std::all_of(m_puchMemory.get(), m_puchMemory.get() + m_nOffset,
                           [](unsigned char byte) { return byte == Front; });
    }

private:
    static constexpr unsigned char Front = 0x77;

    std::size_t m_nOffset;
    std::size_t m_nSize;
    std::unique_ptr<unsigned char[]> m_puchMemory;
};

void checkColour(const SamplingKernels& form, const Columns& columns, int rowWidth, bool exchange, Offsets offsets)
{
    const Exact row(mixedBytes(3 * static_cast<std::size_t>(rowWidth), static_cast<unsigned>(rowWidth)),
                    offsets.m_nSource);
    const Bytes source = row.bytes();
    Bytes expected;
    for (const std::int32_t column : columns) {
        const std::size_t byte = 3 * static_cast<std::size_t>(column);
        expected.push_back(source[exchange ? byte + 2 : byte]);
        expected.push_back(source[byte + 1]);
        expected.push_back(source[exchange ? byte : byte + 2]);
    }
    const Exact target(Bytes(expected.size(), 0xEE), offsets.m_nTarget);
    form.m_pfnColour(row.data(), ColumnMap(columns, rowWidth), exchange, target.data());
    QCOMPARE(target.bytes(), expected);
    QVERIFY(target.frontIsUntouched());
}

void checkGrey(const SamplingKernels& form, const Columns& columns, int rowWidth, Offsets offsets)
{
    const Exact row(mixedBytes(static_cast<std::size_t>(rowWidth), static_cast<unsigned>(rowWidth)), offsets.m_nSource);
    const Bytes source = row.bytes();
    Bytes expected;
    for (const std::int32_t column : columns)
        expected.push_back(source[static_cast<std::size_t>(column)]);
    const Exact target(Bytes(expected.size(), 0xEE), offsets.m_nTarget);
    form.m_pfnGrey(row.data(), ColumnMap(columns, rowWidth), target.data());
    QCOMPARE(target.bytes(), expected);
    QVERIFY(target.frontIsUntouched());
}

void checkSampling(const SamplingKernels& form, const Columns& columns, int rowWidth, Offsets offsets = {})
{
    checkColour(form, columns, rowWidth, true, offsets);
    checkColour(form, columns, rowWidth, false, offsets);
    checkGrey(form, columns, rowWidth, offsets);
}

void checkOverlay(const SamplingKernels& form, std::size_t count, bool whereZero, Offsets offsets = {})
{
    const Exact grey(mixedBytes(count, static_cast<unsigned>(count)), offsets.m_nSource);
    const Exact rgb(mixedBytes(3 * count, static_cast<unsigned>(count + 1)), offsets.m_nSource);
    const Exact target(Bytes(3 * count, 0x5A), offsets.m_nTarget);
    Bytes expected = target.bytes();
    for (std::size_t i = 0; i < 3 * count; ++i) {
        if ((grey.data()[i / 3] == 0) == whereZero)
            expected[i] = rgb.data()[i];
    }
    form.m_pfnOverlay(grey.data(), rgb.data(), whereZero, target.data(), count);
    QCOMPARE(target.bytes(), expected);
    QVERIFY(target.frontIsUntouched());
}

using Colour = std::array<unsigned char, 3>;
using Colours = std::array<Colour, ColourTable::Values>;

/// A different colour for each of the 256 values.
Colours someColours()
{
    std::mt19937 random(5);
    Colours colours{};
    for (Colour& colour : colours) {
        for (unsigned char& byte : colour)
            byte = static_cast<unsigned char>(random());
    }
    return colours;
}

Bytes allValues()
{
    Bytes values(ColourTable::Values);
    std::iota(values.begin(), values.end(), static_cast<unsigned char>(0));
    return values;
}

Colours allGreys()
{
    Colours colours{};
    for (std::size_t value = 0; value < colours.size(); ++value)
        colours[value].fill(static_cast<unsigned char>(value));
    return colours;
}

ColourTable tableOf(const Colours& colours)
{
    ColourTable table;
    for (std::size_t value = 0; value < colours.size(); ++value)
        table.set(value, colours[value]);
    return table;
}

Bytes lookedUp(const Bytes& grey, const Colours& colours)
{
    Bytes bytes;
    for (const unsigned char value : grey)
        bytes.insert(bytes.end(), colours[value].begin(), colours[value].end());
    return bytes;
}

constexpr unsigned char Before = 0x5A;  ///< What a target holds at first.

/// The colours of values that are 0, or of the others, over what was there before.
Bytes overlaid(const Bytes& grey, const Bytes& rgb, bool whereZero)
{
    Bytes bytes(rgb.size(), Before);
    for (std::size_t i = 0; i < rgb.size(); ++i) {
        if ((grey[i / 3] == 0) == whereZero)
            bytes[i] = rgb[i];
    }
    return bytes;
}

/// Both ways that make colours and lay them over others at once, where the form has them.
void checkColoursOver(const SamplingKernels& form, const Bytes& values, bool whereZero, Offsets offsets = {})
{
    if (form.m_pfnOverlayColours == nullptr)
        return;
    const Exact grey(values, offsets.m_nSource);
    const Exact coloured(Bytes(3 * values.size(), Before), offsets.m_nTarget);
    form.m_pfnOverlayColours(grey.data(), tableOf(someColours()), whereZero, coloured.data(), values.size());
    QCOMPARE(coloured.bytes(), overlaid(values, lookedUp(values, someColours()), whereZero));
    QVERIFY(coloured.frontIsUntouched());

    const Exact greys(Bytes(3 * values.size(), Before), offsets.m_nTarget);
    form.m_pfnOverlayGreys(grey.data(), whereZero, greys.data(), values.size());
    QCOMPARE(greys.bytes(), overlaid(values, lookedUp(values, allGreys()), whereZero));
    QVERIFY(greys.frontIsUntouched());
}

void checkLookUp(const SamplingKernels& form, const Bytes& values, Offsets offsets = {})
{
    const Exact grey(values, offsets.m_nSource);
    const Exact target(Bytes(3 * values.size(), Before), offsets.m_nTarget);
    form.m_pfnLookUp(grey.data(), tableOf(someColours()), target.data(), values.size());
    QCOMPARE(target.bytes(), lookedUp(values, someColours()));
    QVERIFY(target.frontIsUntouched());
}

/// A source and a target at either end of pages whose neighbours nobody may touch.
template <typename Operation>
void checkBetweenPages(const Bytes& source, const Bytes& expected, const Operation& operation)
{
    static const GuardedPage sourcePage;
    static const GuardedPage targetPage;
    for (unsigned char* from : {sourcePage.first(), sourcePage.last(source.size())}) {
        for (unsigned char* to : {targetPage.first(), targetPage.last(expected.size())}) {
            std::copy(source.begin(), source.end(), from);
            std::fill_n(to, expected.size(), Before);
            operation(from, to);
            QCOMPARE(Bytes(to, to + expected.size()), expected);
        }
    }
}

void checkSamplingBetweenPages(const SamplingKernels& form, const ColumnMap& map, int rowWidth)
{
    const Bytes row = mixedBytes(3 * static_cast<std::size_t>(rowWidth), static_cast<unsigned>(rowWidth));
    for (const bool exchange : {false, true}) {
        Bytes colours(3 * map.count());
        SamplingKernels::plain().m_pfnColour(row.data(), map, exchange, colours.data());
        checkBetweenPages(row, colours, [&](const unsigned char* from, unsigned char* to) {
            form.m_pfnColour(from, map, exchange, to);
        });
    }
    const Bytes greyRow(row.begin(), row.begin() + rowWidth);
    Bytes greys(map.count());
    SamplingKernels::plain().m_pfnGrey(greyRow.data(), map, greys.data());
    checkBetweenPages(greyRow, greys,
                      [&](const unsigned char* from, unsigned char* to) { form.m_pfnGrey(from, map, to); });
}

/// The colours at either end of a page, too.
void checkLookUpBetweenPages(const SamplingKernels& form, const Bytes& values)
{
    static const GuardedPage page;
    const Bytes rgb = lookedUp(values, someColours());
    for (unsigned char* place : {page.first(), page.last(sizeof(ColourTable))}) {
        const ColourTable& table = *new (place) ColourTable(tableOf(someColours()));
        checkBetweenPages(values, rgb, [&](const unsigned char* from, unsigned char* to) {
            form.m_pfnLookUp(from, table, to, values.size());
        });
        if (form.m_pfnOverlayColours == nullptr)
            continue;
        checkBetweenPages(values, overlaid(values, rgb, false), [&](const unsigned char* from, unsigned char* to) {
            form.m_pfnOverlayColours(from, table, false, to, values.size());
        });
        checkBetweenPages(values, overlaid(values, lookedUp(values, allGreys()), false),
                          [&](const unsigned char* from, unsigned char* to) {
                              form.m_pfnOverlayGreys(from, false, to, values.size());
                          });
    }
}

void checkValuesBetweenPages(const SamplingKernels& form, std::size_t count)
{
    const Bytes values = mixedBytes(count, static_cast<unsigned>(count));
    const Bytes rgb = mixedBytes(3 * count, static_cast<unsigned>(count + 1));
    const Bytes expected = overlaid(values, rgb, true);
    checkLookUpBetweenPages(form, values);
    checkBetweenPages(values, expected, [&](const unsigned char* from, unsigned char* to) {
        form.m_pfnOverlay(from, rgb.data(), true, to, count);
    });
    checkBetweenPages(rgb, expected, [&](const unsigned char* from, unsigned char* to) {
        form.m_pfnOverlay(values.data(), from, true, to, count);
    });
}

}  // namespace

class TestRowSampling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void steadyStepsThroughRowsOfEveryWidth_data() { addSamplers(); }
    void steadyStepsThroughRowsOfEveryWidth();
    void scatteredColumns_data() { addSamplers(); }
    void scatteredColumns();
    void overlayTakesZerosOrOthers_data() { addSamplers(); }
    void overlayTakesZerosOrOthers();
    void greyValuesAreShownInTheirColours_data() { addSamplers(); }
    void greyValuesAreShownInTheirColours();
    void coloursAreLaidOverAtOnceAsInTwoSteps();
    void nothingAroundARowIsReadOrWritten_data() { addSamplers(); }
    void nothingAroundARowIsReadOrWritten();
    void buffersNeedNoAlignment_data() { addSamplers(); }
    void buffersNeedNoAlignment();
    void mapKnowsNeighboursWindowsAndTheLastPixel();
};

void TestRowSampling::steadyStepsThroughRowsOfEveryWidth()
{
    for (const int step : {1, 5, 8, 16, 17, 24, 32, 35, 40, 64, 200}) {
        for (int rowWidth = 1; rowWidth < 70; ++rowWidth)
            checkSampling(samplerOfRow(), stepped(rowWidth % 5 < rowWidth ? rowWidth % 5 : 0, step, rowWidth, 60),
                          rowWidth);
        checkSampling(samplerOfRow(), stepped(0, step, 3001, 5000), 3001);
    }
    checkSampling(samplerOfRow(), {}, 1);
}

void TestRowSampling::scatteredColumns()
{
    for (unsigned seed = 1; seed < 300; ++seed) {
        const int rowWidth = 1 + static_cast<int>(seed * 7 % 90);
        checkSampling(samplerOfRow(), scattered(rowWidth, seed % 83, seed), rowWidth);
    }
}

void TestRowSampling::overlayTakesZerosOrOthers()
{
    for (std::size_t count = 0; count < 200; ++count) {
        for (const bool whereZero : {true, false})
            checkOverlay(samplerOfRow(), count, whereZero);
    }
}

void TestRowSampling::greyValuesAreShownInTheirColours()
{
    checkLookUp(samplerOfRow(), allValues());
    for (std::size_t count = 0; count < 200; ++count)
        checkLookUp(samplerOfRow(), mixedBytes(count, static_cast<unsigned>(count)));
}

void TestRowSampling::coloursAreLaidOverAtOnceAsInTwoSteps()
{
    if (SamplingKernels::best().m_pfnOverlayColours == nullptr)
        QSKIP("All forms of this processor take the two steps.");
    for (const SamplingKernels* form : SamplingKernels::available()) {
        QCOMPARE(form->m_pfnOverlayColours == nullptr, form->m_pfnOverlayGreys == nullptr);
        for (const bool whereZero : {true, false}) {
            checkColoursOver(*form, allValues(), whereZero);
            for (std::size_t count = 0; count < 200; ++count)
                checkColoursOver(*form, mixedBytes(count, static_cast<unsigned>(count)), whereZero);
        }
    }
}

void TestRowSampling::nothingAroundARowIsReadOrWritten()
{
    const SamplingKernels& form = samplerOfRow();
    for (int rowWidth = 1; rowWidth < 150; ++rowWidth) {
        for (const int step : {8, 16, 25, 32})
            checkSamplingBetweenPages(form, ColumnMap(stepped(0, step, rowWidth, 300), rowWidth), rowWidth);
        checkValuesBetweenPages(form, static_cast<std::size_t>(rowWidth));
        if (QTest::currentTestFailed())
            return;
    }
}

void TestRowSampling::buffersNeedNoAlignment()
{
    constexpr int RowWidth = 75;
    const SamplingKernels& form = samplerOfRow();
    for (std::size_t source = 0; source <= 16; ++source) {
        for (std::size_t target = 0; target <= 16; ++target) {
            for (const int step : {8, 16, 17})
                checkSampling(form, stepped(0, step, RowWidth, 60), RowWidth, {source, target});
            for (const bool whereZero : {true, false}) {
                checkOverlay(form, 75, whereZero, {source, target});
                checkColoursOver(form, mixedBytes(75, 3), whereZero, {source, target});
            }
            checkLookUp(form, mixedBytes(75, 3), {source, target});
            if (QTest::currentTestFailed())
                return;
        }
    }
}

void TestRowSampling::mapKnowsNeighboursWindowsAndTheLastPixel()
{
    const ColumnMap neighbours({3, 4, 5, 6, 7, 8, 9, 10, 11}, 12);
    QVERIFY(neighbours.isContiguous());
    QCOMPARE(neighbours.count(), std::size_t{9});
    QCOMPARE(neighbours.innerCount(), std::size_t{8});
    QVERIFY(neighbours.windows().empty());  // the row has no sixteen pixels

    const ColumnMap halved({1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31, 31}, 32);
    QVERIFY(!halved.isContiguous());
    QCOMPARE(halved.innerCount(), std::size_t{15});
    QCOMPARE(halved.windows().size(), std::size_t{2});
    QCOMPARE(halved.windows()[0].m_nFirst, 1);
    QCOMPARE(halved.windows()[1].m_nFirst, 16);
    QCOMPARE(static_cast<int>(halved.windows()[1].m_anPlaces[7]), 15);

    const ColumnMap far({0, 1, 2, 3, 4, 5, 6, 16}, 40);
    QVERIFY(far.windows().empty());
    const ColumnMap narrow({0, 1, 2, 3, 4, 5, 6, 15}, 16);  // just the sixteen
    QCOMPARE(narrow.windows().size(), std::size_t{1});
    QCOMPARE(narrow.windows()[0].m_nFirst, 0);

    for (const ColumnMap& none : {ColumnMap(), ColumnMap({}, 40)}) {
        QVERIFY(none.windows().empty());
        QVERIFY(!none.isContiguous());
        QCOMPARE(none.innerCount(), std::size_t{0});
    }
}

QTEST_APPLESS_MAIN(TestRowSampling)
#include "testRowSampling.moc"
