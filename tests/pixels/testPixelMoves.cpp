#include "guardedPage.h"
#include "pixelSupport.h"
#include "pixels/pixels.h"
#include "pixels/samplingKernels.h"

#include <algorithm>
#include <cstring>

#if defined(__arm__)
#include <sys/auxv.h>
#endif

using namespace PixelSupport;

namespace {

// What each operation does to one pixel, spelled out.
const std::vector<std::size_t> ExchangedBytes{2, 1, 0};
const std::vector<std::size_t> RgbOfBgrxBytes{2, 1, 0};
const std::vector<std::size_t> RgbOfGreyBytes{0, 0, 0};

struct Move
{
    PixelKernels::Operation PixelKernels::*m_pOperation;
    std::size_t m_nSourceBytes;                        ///< A pixel.
    const std::vector<std::size_t>* m_pcSourceOfByte;  ///< For each byte of a target pixel.
};

const Move Moves[] = {{&PixelKernels::m_pfnExchange, 3, &ExchangedBytes},
                      {&PixelKernels::m_pfnRgbOfBgrx, 4, &RgbOfBgrxBytes},
                      {&PixelKernels::m_pfnRgbOfGrey, 1, &RgbOfGreyBytes}};

Bytes moved(const Bytes& source, const Move& move)
{
    Bytes target;
    for (std::size_t pixel = 0; pixel < source.size(); pixel += move.m_nSourceBytes) {
        for (const std::size_t byte : *move.m_pcSourceOfByte)
            target.push_back(source[pixel + byte]);
    }
    return target;
}

/// From buffers with nothing behind them, at an offset from their alignment.
void checkMove(const PixelKernels& form, const Move& move, std::size_t count, std::size_t offset)
{
    Bytes source = mixedBytes(count * move.m_nSourceBytes, static_cast<unsigned>(count + offset));
    Bytes expected = moved(source, move);
    expected.insert(expected.begin(), offset, 0xEE);
    expected.push_back(0xDD);
    source.insert(source.begin(), offset, 0);
    Bytes target(offset, 0xEE);
    target.resize(expected.size(), 0xDD);
    const Bytes before = source;
    (form.*move.m_pOperation)(source.data() + offset, target.data() + offset, count);
    QCOMPARE(target, expected);
    QCOMPARE(source, before);
}

/// Rows that begin or end with a page whose neighbours nobody may touch.
void checkBetweenPages(const PixelKernels& form, const Move& move, std::size_t count, const GuardedPage& source,
                       const GuardedPage& target)
{
    const Bytes pixels = mixedBytes(count * move.m_nSourceBytes, static_cast<unsigned>(count));
    const Bytes expected = moved(pixels, move);
    for (unsigned char* from : {source.first(), source.last(pixels.size())}) {
        for (unsigned char* to : {target.first(), target.last(expected.size())}) {
            std::copy(pixels.begin(), pixels.end(), from);
            (form.*move.m_pOperation)(from, to, count);
            QCOMPARE(Bytes(to, to + expected.size()), expected);
        }
    }
}

void checkExchangeInPlace(const PixelKernels& form, std::size_t count, std::size_t offset)
{
    const Bytes before = mixedBytes(3 * count, static_cast<unsigned>(count));
    const Bytes exchanged = moved(before, Moves[0]);
    const Bytes front(offset, 0xEE);
    Bytes pixels = front;
    pixels.insert(pixels.end(), before.begin(), before.end());
    const auto first = pixels.begin() + static_cast<std::ptrdiff_t>(offset);
    form.m_pfnExchange(pixels.data() + offset, pixels.data() + offset, count);
    QCOMPARE(Bytes(first, pixels.end()), exchanged);
    form.m_pfnExchange(pixels.data() + offset, pixels.data() + offset, count);
    QCOMPARE(Bytes(first, pixels.end()), before);
    QCOMPARE(Bytes(pixels.begin(), first), front);
}

/// What the benchmarks print.
template <typename Kernels>
QStringList namesOf(const std::vector<const Kernels*>& forms)
{
    QStringList names;
    for (const Kernels* kernels : forms)
        names.append(kernels->m_pchName);
    return names;
}

#if defined(__x86_64__)
/// Of these forms, from the slowest to the fastest, those that the processor has.
QStringList expectedNames(QStringList names)
{
    if (!__builtin_cpu_supports("avx512bw") || !__builtin_cpu_supports("avx512vbmi"))
        names.removeAll("avx512");
    if (!__builtin_cpu_supports("avx2"))
        names.removeAll("avx2");
    if (!__builtin_cpu_supports("ssse3"))
        names = QStringList{"plain"};
    return names;
}
#endif

}  // namespace

class TestPixelMoves : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsOfEveryLengthAtEveryOffset_data() { addForms(); }
    void rowsOfEveryLengthAtEveryOffset()
    {
        const PixelKernels& form = formOfRow();
        for (const Move& move : Moves) {
            for (std::size_t offset = 0; offset < 65; ++offset) {
                for (std::size_t count = 0; count <= 210; ++count) {
                    checkMove(form, move, count, offset);
                    if (QTest::currentTestFailed())
                        return;
                }
                checkMove(form, move, 1921, offset);
                checkMove(form, move, 8192 + 1921, offset);  // so long that it asks for memory ahead
            }
        }
    }

    void nothingAroundARowIsReadOrWritten_data() { addForms(); }
    void nothingAroundARowIsReadOrWritten()
    {
        const PixelKernels& form = formOfRow();
        const GuardedPage source;
        const GuardedPage target;
        for (const Move& move : Moves) {
            for (std::size_t count = 0; count <= 210; ++count) {
                checkBetweenPages(form, move, count, source, target);
                if (QTest::currentTestFailed())
                    return;
            }
        }
    }

    void everyByteReachesEveryPlace_data() { addForms(); }
    void everyByteReachesEveryPlace()
    {
        const PixelKernels& form = formOfRow();
        constexpr std::size_t Count = 192;
        for (const Move& move : Moves) {
            for (std::size_t byte = 0; byte < Count * move.m_nSourceBytes; ++byte) {
                Bytes source(Count * move.m_nSourceBytes, 0);
                source[byte] = 0xFF;
                Bytes target(Count * 3, 0x55);
                (form.*move.m_pOperation)(source.data(), target.data(), Count);
                QCOMPARE(target, moved(source, move));
            }
        }
    }

    void exchangeWorksInPlaceAndTwiceIsNothing_data() { addForms(); }
    void exchangeWorksInPlaceAndTwiceIsNothing()
    {
        const PixelKernels& form = formOfRow();
        for (std::size_t offset = 0; offset <= 64; ++offset) {
            for (std::size_t count = 0; count <= 210; ++count) {
                checkExchangeInPlace(form, count, offset);
                if (QTest::currentTestFailed())
                    return;
            }
        }
    }

    void whatTheProgramCallsIsOneOfTheForms()
    {
        const Bytes source = mixedBytes(4 * 57, 3);
        Bytes expected(3 * 57);
        Bytes target(3 * 57);
        const PixelKernels& plain = PixelKernels::plain();
        Pixels::exchangeFirstAndThird(source.data(), target.data(), 57);
        plain.m_pfnExchange(source.data(), expected.data(), 57);
        QCOMPARE(target, expected);
        Pixels::rgbOfBgrx(source.data(), target.data(), 57);
        plain.m_pfnRgbOfBgrx(source.data(), expected.data(), 57);
        QCOMPARE(target, expected);
        Pixels::rgbOfGrey(source.data(), target.data(), 57);
        plain.m_pfnRgbOfGrey(source.data(), expected.data(), 57);
        QCOMPARE(target, expected);
    }

    void plainFormIsAlwaysThereAndFirst()
    {
        QCOMPARE(PixelKernels::available().front(), &PixelKernels::plain());
#if defined(__x86_64__)
        QCOMPARE(PixelKernels::ssse3() != nullptr, bool(__builtin_cpu_supports("ssse3")));
        QCOMPARE(PixelKernels::avx2() != nullptr, bool(__builtin_cpu_supports("avx2")));
        QCOMPARE(SamplingKernels::ssse3() != nullptr, bool(__builtin_cpu_supports("ssse3")));
        QCOMPARE(SamplingKernels::avx2() != nullptr, bool(__builtin_cpu_supports("avx2")));
        QCOMPARE(namesOf(PixelKernels::available()), expectedNames({"plain", "ssse3", "avx2", "avx512"}));
        QCOMPARE(namesOf(SamplingKernels::available()), expectedNames({"plain", "ssse3", "avx2", "avx512"}));
#elif defined(__arm__)
        constexpr unsigned long Neon = 1UL << 12;  // of AT_HWCAP
        QCOMPARE(PixelKernels::neon() != nullptr, (::getauxval(AT_HWCAP) & Neon) != 0);
        QCOMPARE(SamplingKernels::neon() != nullptr, (::getauxval(AT_HWCAP) & Neon) != 0);
#endif
    }
};

QTEST_APPLESS_MAIN(TestPixelMoves)
#include "testPixelMoves.moc"
