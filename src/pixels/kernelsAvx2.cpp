// Thirty-two pixels at a time: each half of a register holds what the sixteen-pixel form does. Compiled without
// contraction of floating point (see CMakeLists.txt).
#include "pixels/bytesAvx2.h"
#include "pixels/greyForm.h"
#include "pixels/kernels.h"

#if defined(HAS_AVX2)

#include <cstdint>

namespace {

using namespace GreyForm;

constexpr std::size_t Step = 32;  // pixels
constexpr std::size_t Half = 16;
constexpr char Z = -1;  // as an index of a shuffle: gives a zero byte

AVX2_INLINE __m256i halves(const unsigned char* lower, const unsigned char* upper)
{
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lower))),
                                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(upper)), 1);
}

/// Where the bytes of a register of exchanged pixels come from: those near the lower end of each half from the register
/// that starts two bytes before, the others from the one that starts two bytes behind it.
struct ExchangePlaces
{
    alignas(32) std::array<char, 32> m_achBefore{};
    alignas(32) std::array<char, 32> m_achBehind{};
};

constexpr ExchangePlaces exchangePlaces(int start)
{
    ExchangePlaces places;
    for (int i = 0; i < 32; ++i) {
        const int ofPixel = (start + i) % 3;
        const int from = i % 16 + (ofPixel == 0 ? 2 : ofPixel == 2 ? -2 : 0);
        places.m_achBefore[static_cast<std::size_t>(i)] = static_cast<char>(from < 14 ? from + 2 : Z);
        places.m_achBehind[static_cast<std::size_t>(i)] = static_cast<char>(from < 14 ? Z : from - 2);
    }
    return places;
}

template <int Start>
AVX2_INLINE __m256i exchanged(__m256i before, __m256i behind)
{
    static constexpr ExchangePlaces Places = exchangePlaces(Start);
    const auto* placesBefore = reinterpret_cast<const __m256i*>(Places.m_achBefore.data());
    const auto* placesBehind = reinterpret_cast<const __m256i*>(Places.m_achBehind.data());
    return _mm256_or_si256(_mm256_shuffle_epi8(before, _mm256_load_si256(placesBefore)),
                           _mm256_shuffle_epi8(behind, _mm256_load_si256(placesBehind)));
}

/// The register that starts two bytes before the source, whose first two bytes are not read.
AVX2_INLINE __m256i beforeFirst(const unsigned char* source)
{
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + 14));
    return _mm256_set_m128i(second, _mm_slli_si128(first, 2));
}

/// Exchanges a step's pixels, in place, too; returns what starts two bytes before the next step, as it was.
AVX2_INLINE __m256i exchangeStep(__m256i before, const unsigned char* source, unsigned char* target)
{
    const __m256i a = exchanged<0>(before, loadBytes(source + 2));
    const __m256i b = exchanged<32>(loadBytes(source + 30), loadBytes(source + 34));
    const __m256i c = exchanged<64>(loadBytes(source + 62), loadBytes(source + 66));
    const __m256i next = loadBytes(source + 3 * Step - 2);
    storeBytes(target, a);
    storeBytes(target + 32, b);
    storeBytes(target + 64, c);
    return next;
}

/// How many pixels are in front of the first that starts where a register of the target should, for stores that cross
/// no line of the cache. 11 times 3 is 1 modulo 32.
std::size_t pixelsToAligned(const unsigned char* target)
{
    return (32 - reinterpret_cast<std::uintptr_t>(target) % 32) * 11 % 32;
}

/// Has the processor fetch what will be read and written in a while: it does not look that far ahead by itself in a
/// loop as long as this one. In place, and for a row whose target is used again and again, there is only half as much
/// to fetch, and asking would cost more than it saves.
AVX2_INLINE void fetchAhead(const unsigned char* source, const unsigned char* target)
{
    constexpr std::uintptr_t Distance = 3072;  // bytes; what lies behind the buffers does no harm
    constexpr std::uintptr_t Line = 64;
    const std::uintptr_t read = reinterpret_cast<std::uintptr_t>(source) + Distance;
    const std::uintptr_t written = reinterpret_cast<std::uintptr_t>(target) + Distance;
    __builtin_prefetch(reinterpret_cast<const void*>(read));
    __builtin_prefetch(reinterpret_cast<const void*>(read + Line));
    __builtin_prefetch(reinterpret_cast<const void*>(written), 1);
    __builtin_prefetch(reinterpret_cast<const void*>(written + Line), 1);
}

AVX2 void exchange(const unsigned char* source, unsigned char* target, std::size_t count)
{
    constexpr std::size_t Read = Step + 11;  // pixels that a step reads
    const bool copies = source != target;
    if (copies && count >= Step + Read) {
        exchangeStep(beforeFirst(source), source, target);  // some of them once more below
        const std::size_t done = pixelsToAligned(target);
        source += 3 * done;
        target += 3 * done;
        count -= done;
    }
    if (count >= Read) {
        constexpr std::size_t LongRow = 8192;  // pixels
        const bool isPicture = copies && count > LongRow;
        __m256i before = beforeFirst(source);
        for (; count >= Read; count -= Step, source += 3 * Step, target += 3 * Step) {
            if (isPicture)
                fetchAhead(source, target);
            before = exchangeStep(before, source, target);
        }
    }
    PixelKernels::ssse3()->m_pfnExchange(source, target, count);
}

AVX2 void rgbOfGrey(const unsigned char* grey, unsigned char* rgb, std::size_t count)
{
    const ThriceShuffles thrice = thriceShuffles();
    for (; count >= Step; count -= Step, grey += Step, rgb += 3 * Step) {
        storeBytes(rgb, _mm256_shuffle_epi8(halves(grey, grey), thrice.m_cFirstSecond));
        storeBytes(rgb + 32, _mm256_shuffle_epi8(halves(grey, grey + Half), thrice.m_cThirdFirst));
        storeBytes(rgb + 64, _mm256_shuffle_epi8(halves(grey + Half, grey + Half), thrice.m_cSecondThird));
    }
    PixelKernels::plain().m_pfnRgbOfGrey(grey, rgb, count);
}

/// Four pixels of three bytes in each half, from byte First of the half on.
template <int First>
struct FourRgb
{
    static constexpr char F = First;

    static AVX2_INLINE __m256i sums(__m256i pixels)
    {
        const __m128i pairing =
            _mm_setr_epi8(F, Z, F + 1, Z, F + 3, Z, F + 4, Z, F + 6, Z, F + 7, Z, F + 9, Z, F + 10, Z);
        const __m256i pairs = _mm256_shuffle_epi8(pixels, _mm256_set_m128i(pairing, pairing));
        return _mm256_add_epi32(_mm256_madd_epi16(pairs, _mm256_set1_epi32(Integer1 * 65536 + Integer0)),
                                _mm256_madd_epi16(bytes<2>(pixels), _mm256_set1_epi32(Integer2)));
    }

    /// All bits of each pixel whose first two bytes are equal.
    static AVX2_INLINE __m256i paired(__m256i pixels) { return _mm256_cmpeq_epi32(bytes<0>(pixels), bytes<1>(pixels)); }

private:
    /// Byte s0, s1 or s2 of each pixel.
    template <int Which>
    static AVX2_INLINE __m256i bytes(__m256i pixels)
    {
        constexpr char W = First + Which;
        const __m128i places = _mm_setr_epi8(W, Z, Z, Z, W + 3, Z, Z, Z, W + 6, Z, Z, Z, W + 9, Z, Z, Z);
        return _mm256_shuffle_epi8(pixels, _mm256_set_m128i(places, places));
    }
};

/// Four pixels of four bytes in each half.
struct FourBgrx
{
    static AVX2_INLINE __m256i sums(__m256i pixels)
    {
        const __m256i blueRed = _mm256_and_si256(pixels, _mm256_set1_epi32(0x00FF00FF));
        const __m256i green = _mm256_srli_epi16(pixels, 8);  // the ignored byte beside it
        return _mm256_add_epi32(_mm256_madd_epi16(blueRed, _mm256_set1_epi32(Integer0 * 65536 + Integer2)),
                                _mm256_madd_epi16(green, _mm256_set1_epi32(Integer1)));
    }

    static AVX2_INLINE __m256i paired(__m256i pixels)
    {
        const __m256i neighbours = _mm256_xor_si256(pixels, _mm256_srli_epi32(pixels, 8));
        return _mm256_cmpeq_epi32(_mm256_and_si256(neighbours, _mm256_set1_epi32(0xFF)), _mm256_setzero_si256());
    }
};

/// Eight thousandths in each half; multiples gets all bits of each word whose sum is a multiple of 1000.
AVX2_INLINE __m256i thousandths(__m256i sums0, __m256i sums1, __m256i& multiples)
{
    const __m256i eighths = _mm256_packs_epi32(_mm256_srli_epi32(sums0, 3), _mm256_srli_epi32(sums1, 3));
    const __m256i factor = _mm256_set1_epi16(static_cast<short>(ThousandthFactor));
    const __m256i values = _mm256_srli_epi16(_mm256_mulhi_epu16(eighths, factor), ThousandthShift - 16);
    // A sum and 1000 times its thousandth differ by less than 1000: they are equal when their low words are.
    const __m256i lowWord = _mm256_set1_epi32(0xFFFF);
    const __m256i lowWords = _mm256_packus_epi32(_mm256_and_si256(sums0, lowWord), _mm256_and_si256(sums1, lowWord));
    multiples = _mm256_cmpeq_epi16(_mm256_mullo_epi16(values, _mm256_set1_epi16(1000)), lowWords);
    return values;
}

/// All bits of each byte that is a pure grey whose result is one less.
AVX2_INLINE __m256i belowOf(__m256i values)
{
    static constexpr PureGreys Bits = pureGreysBelow();
    const __m256i row = _mm256_and_si256(_mm256_srli_epi16(values, 3), _mm256_set1_epi8(31));
    const __m256i isUpper = _mm256_cmpgt_epi8(row, _mm256_set1_epi8(15));
    const __m256i bits = _mm256_blendv_epi8(_mm256_shuffle_epi8(halves(Bits[0].data(), Bits[0].data()), row),
                                            _mm256_shuffle_epi8(halves(Bits[1].data(), Bits[1].data()), row), isUpper);
    const __m256i bit =
        _mm256_shuffle_epi8(_mm256_set1_epi64x(PowersOfTwo), _mm256_and_si256(values, _mm256_set1_epi8(7)));
    return _mm256_cmpeq_epi8(_mm256_and_si256(bits, bit), bit);
}

/// Thirty-two grey values; false when some of them need the double form. Last is the form of the last four pixels.
template <typename Four, typename Last>
AVX2_INLINE bool greyOf(__m256i a, __m256i b, __m256i c, __m256i d, unsigned char* grey)
{
    __m256i multiples0;
    __m256i multiples1;
    const __m256i values0 = thousandths(Four::sums(a), Four::sums(b), multiples0);
    const __m256i values1 = thousandths(Four::sums(c), Last::sums(d), multiples1);
    const __m256i values = _mm256_packus_epi16(values0, values1);
    const __m256i multiples = _mm256_packs_epi16(multiples0, multiples1);
    if (__builtin_expect(_mm256_testz_si256(multiples, multiples), 1)) {
        storeBytes(grey, values);
        return true;
    }
    const __m256i paired = _mm256_packs_epi16(_mm256_packs_epi32(Four::paired(a), Four::paired(b)),
                                              _mm256_packs_epi32(Four::paired(c), Last::paired(d)));
    if (!_mm256_testc_si256(paired, multiples))  // not every one is a pure grey
        return false;
    storeBytes(grey, _mm256_add_epi8(values, _mm256_and_si256(belowOf(values), multiples)));
    return true;
}

using ThreeRegisters = std::array<std::array<unsigned char, 32>, 3>;

/// All bits where a byte and the next must agree for pure greys; the last register starts one byte earlier, because
/// nothing behind the last pixel may be read.
constexpr ThreeRegisters comparedBytes()
{
    ThreeRegisters bytes{};
    for (std::size_t i = 0; i < 32; ++i) {
        bytes[0][i] = i % 3 == 2 ? 0 : 0xFF;
        bytes[1][i] = (32 + i) % 3 == 2 ? 0 : 0xFF;
        bytes[2][i] = (63 + i) % 3 == 2 ? 0 : 0xFF;
    }
    return bytes;
}

/// Where the first bytes of sixteen pixels are in three times sixteen bytes, for each half alike.
constexpr ThreeRegisters firstBytes()
{
    ThreeRegisters places{};
    for (std::size_t third = 0; third < 3; ++third) {
        for (std::size_t i = 0; i < 32; ++i) {
            const std::size_t from = i % Half * 3;
            places[third][i] = static_cast<unsigned char>(from / 16 == third ? from % 16 : 0x80);
        }
    }
    return places;
}

/**
 * Grey values of steps that hold pure greys only, up to the first that does not: how many pixels these are.
 *
 * A function of its own, which leaves the registers of the other colours' loop alone.
 */
AVX2 __attribute__((noinline)) std::size_t greyOfPureGreys(const unsigned char* rgb, unsigned char* grey,
                                                           std::size_t count)
{
    alignas(32) static constexpr ThreeRegisters Compared = comparedBytes();
    alignas(32) static constexpr ThreeRegisters First = firstBytes();
    const auto different = [&](std::size_t third, const unsigned char* bytes)
        __attribute__((always_inline, target("avx2")))
    {
        return _mm256_and_si256(_mm256_xor_si256(loadBytes(bytes), loadBytes(bytes + 1)),
                                loadBytes(Compared[third].data()));
    };
    const auto gathered = [&](std::size_t third, const unsigned char* bytes)
        __attribute__((always_inline, target("avx2")))
    {
        return _mm256_shuffle_epi8(halves(bytes, bytes + 3 * Half), loadBytes(First[third].data()));
    };
    std::size_t done = 0;
    for (; count - done >= Step; done += Step, rgb += 3 * Step) {
        const __m256i any =
            _mm256_or_si256(_mm256_or_si256(different(0, rgb), different(1, rgb + 32)), different(2, rgb + 63));
        if (!_mm256_testz_si256(any, any))
            break;
        const __m256i values =
            _mm256_or_si256(_mm256_or_si256(gathered(0, rgb), gathered(1, rgb + 16)), gathered(2, rgb + 32));
        storeBytes(grey + done, _mm256_add_epi8(values, belowOf(values)));
    }
    return done;
}

bool isPureGrey(const unsigned char* rgb)
{
    return rgb[0] == rgb[1] && rgb[1] == rgb[2];
}

AVX2 void greyOfRgb(const unsigned char* rgb, unsigned char* grey, std::size_t count)
{
    const PixelKernels::Operation exact = PixelKernels::ssse3()->m_pfnGreyOfRgb;
    const auto from = [&](std::size_t byte) __attribute__((always_inline, target("avx2")))
    {
        return halves(rgb + byte, rgb + 3 * Half + byte);
    };
    for (; count >= Step; count -= Step, rgb += 3 * Step, grey += Step) {
        if (isPureGrey(rgb)) {
            const std::size_t done = greyOfPureGreys(rgb, grey, count);
            rgb += 3 * done;
            grey += done;
            count -= done;
            if (count < Step)
                break;
        }
        // The last register ends with the sixteenth pixel: its pixels start at its byte 4.
        if (!greyOf<FourRgb<0>, FourRgb<4>>(from(0), from(12), from(24), from(32), grey))
            exact(rgb, grey, Step);
    }
    exact(rgb, grey, count);
}

AVX2 void greyOfBgrx(const unsigned char* bgrx, unsigned char* grey, std::size_t count)
{
    const PixelKernels::Operation exact = PixelKernels::ssse3()->m_pfnGreyOfBgrx;
    const auto from = [&](std::size_t byte) __attribute__((always_inline, target("avx2")))
    {
        return halves(bgrx + byte, bgrx + 4 * Half + byte);
    };
    for (; count >= Step; count -= Step, bgrx += 4 * Step, grey += Step) {
        if (!greyOf<FourBgrx, FourBgrx>(from(0), from(16), from(32), from(48), grey))
            exact(bgrx, grey, Step);
    }
    exact(bgrx, grey, count);
}

}  // namespace

const PixelKernels* PixelKernels::avx2()
{
    if (!__builtin_cpu_supports("avx2") || !ssse3())
        return nullptr;
    // Dropping of the fourth byte waits for memory already.
    static const PixelKernels kernels{"avx2", exchange, greyOfRgb, greyOfBgrx, ssse3()->m_pfnRgbOfBgrx, rgbOfGrey};
    return &kernels;
}

#else

const PixelKernels* PixelKernels::avx2()
{
    return nullptr;
}

#endif
