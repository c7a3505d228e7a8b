// Sixteen pixels at a time. Compiled without contraction of floating point (see CMakeLists.txt).
#include "pixels/greyForm.h"
#include "pixels/kernels.h"

#if defined(__x86_64__)

#include <tmmintrin.h>

#define SSSE3 __attribute__((target("ssse3")))
#define SSSE3_INLINE __attribute__((target("ssse3"), always_inline)) inline

namespace {

using namespace GreyForm;

constexpr std::size_t Step = 16;  // pixels
constexpr char Z = -1;            // as an index of a shuffle: gives a zero byte

SSSE3_INLINE __m128i load(const unsigned char* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

SSSE3_INLINE void store(unsigned char* bytes, __m128i value)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), value);
}

// ---- Bytes moved ----------------------------------------------------------------------------------------------------

SSSE3 void exchange(const unsigned char* source, unsigned char* target, std::size_t count)
{
    // Pixel 5 lies across the first two registers, pixel 10 across the last two.
    const __m128i own0 = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, Z);
    const __m128i own1 = _mm_setr_epi8(0, Z, 4, 3, 2, 7, 6, 5, 10, 9, 8, 13, 12, 11, Z, 15);
    const __m128i own2 = _mm_setr_epi8(Z, 3, 2, 1, 6, 5, 4, 9, 8, 7, 12, 11, 10, 15, 14, 13);
    const __m128i last0From1 = _mm_setr_epi8(Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, 1);
    const __m128i second1From0 = _mm_setr_epi8(Z, 15, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z);
    const __m128i last1From2 = _mm_setr_epi8(Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, 0, Z);
    const __m128i first2From1 = _mm_setr_epi8(14, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z);
    for (; count >= Step; count -= Step, source += 3 * Step, target += 3 * Step) {
        const __m128i a = load(source);
        const __m128i b = load(source + 16);
        const __m128i c = load(source + 32);
        store(target, _mm_or_si128(_mm_shuffle_epi8(a, own0), _mm_shuffle_epi8(b, last0From1)));
        store(target + 16, _mm_or_si128(_mm_shuffle_epi8(b, own1), _mm_or_si128(_mm_shuffle_epi8(a, second1From0),
                                                                                _mm_shuffle_epi8(c, last1From2))));
        store(target + 32, _mm_or_si128(_mm_shuffle_epi8(c, own2), _mm_shuffle_epi8(b, first2From1)));
    }
    PixelKernels::plain().m_pfnExchange(source, target, count);
}

SSSE3 void rgbOfBgrx(const unsigned char* bgrx, unsigned char* rgb, std::size_t count)
{
    const __m128i pack = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, Z, Z, Z, Z);
    for (; count >= Step; count -= Step, bgrx += 4 * Step, rgb += 3 * Step) {
        const __m128i a = _mm_shuffle_epi8(load(bgrx), pack);
        const __m128i b = _mm_shuffle_epi8(load(bgrx + 16), pack);
        const __m128i c = _mm_shuffle_epi8(load(bgrx + 32), pack);
        const __m128i d = _mm_shuffle_epi8(load(bgrx + 48), pack);
        store(rgb, _mm_or_si128(a, _mm_slli_si128(b, 12)));
        store(rgb + 16, _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
        store(rgb + 32, _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
    }
    PixelKernels::plain().m_pfnRgbOfBgrx(bgrx, rgb, count);
}

SSSE3 void rgbOfGrey(const unsigned char* grey, unsigned char* rgb, std::size_t count)
{
    const __m128i first = _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5);
    const __m128i second = _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10);
    const __m128i third = _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15);
    for (; count >= Step; count -= Step, grey += Step, rgb += 3 * Step) {
        const __m128i values = load(grey);
        store(rgb, _mm_shuffle_epi8(values, first));
        store(rgb + 16, _mm_shuffle_epi8(values, second));
        store(rgb + 32, _mm_shuffle_epi8(values, third));
    }
    PixelKernels::plain().m_pfnRgbOfGrey(grey, rgb, count);
}

// ---- Grey values ----------------------------------------------------------------------------------------------------

/// Four pixels as three registers of 32-bit numbers.
struct Bytes
{
    __m128i s0, s1, s2;
};

SSSE3_INLINE __m128i doubleFormsOfTwo(const Bytes& of)
{
    const __m128d first = _mm_mul_pd(_mm_set1_pd(Weight1), _mm_cvtepi32_pd(of.s1));
    const __m128d second = _mm_mul_pd(_mm_set1_pd(Weight2), _mm_cvtepi32_pd(of.s2));
    const __m128d third = _mm_mul_pd(_mm_set1_pd(Weight0), _mm_cvtepi32_pd(of.s0));
    return _mm_cvttpd_epi32(_mm_add_pd(_mm_add_pd(first, second), third));
}

SSSE3_INLINE __m128i doubleForms(const Bytes& of)
{
    constexpr int Upper = 0x0E;  // moves the upper two numbers down
    const Bytes upper{_mm_shuffle_epi32(of.s0, Upper), _mm_shuffle_epi32(of.s1, Upper),
                      _mm_shuffle_epi32(of.s2, Upper)};
    return _mm_unpacklo_epi64(doubleFormsOfTwo(of), doubleFormsOfTwo(upper));
}

/// Four pixels of three bytes, from byte First of a register on.
template <int First>
struct FourRgb
{
    static constexpr char F = First;

    static SSSE3_INLINE __m128i sums(__m128i pixels)
    {
        const __m128i pairs = _mm_shuffle_epi8(
            pixels, _mm_setr_epi8(F, Z, F + 1, Z, F + 3, Z, F + 4, Z, F + 6, Z, F + 7, Z, F + 9, Z, F + 10, Z));
        return _mm_add_epi32(_mm_madd_epi16(pairs, _mm_set1_epi32(Integer1 * 65536 + Integer0)),
                             _mm_madd_epi16(bytes<2>(pixels), _mm_set1_epi32(Integer2)));
    }

    static SSSE3_INLINE __m128i exact(__m128i pixels)
    {
        return doubleForms({bytes<0>(pixels), bytes<1>(pixels), bytes<2>(pixels)});
    }

    /// All bits of each pixel whose first two bytes are equal.
    static SSSE3_INLINE __m128i paired(__m128i pixels) { return _mm_cmpeq_epi32(bytes<0>(pixels), bytes<1>(pixels)); }

private:
    /// Byte s0, s1 or s2 of each pixel.
    template <int Which>
    static SSSE3_INLINE __m128i bytes(__m128i pixels)
    {
        constexpr char W = First + Which;
        return _mm_shuffle_epi8(pixels, _mm_setr_epi8(W, Z, Z, Z, W + 3, Z, Z, Z, W + 6, Z, Z, Z, W + 9, Z, Z, Z));
    }
};

/// Four pixels of four bytes.
struct FourBgrx
{
    static SSSE3_INLINE __m128i sums(__m128i pixels)
    {
        const __m128i blueRed = _mm_and_si128(pixels, _mm_set1_epi32(0x00FF00FF));
        const __m128i green = _mm_srli_epi16(pixels, 8);  // the ignored byte beside it
        return _mm_add_epi32(_mm_madd_epi16(blueRed, _mm_set1_epi32(Integer0 * 65536 + Integer2)),
                             _mm_madd_epi16(green, _mm_set1_epi32(Integer1)));
    }

    static SSSE3_INLINE __m128i exact(__m128i pixels)
    {
        const __m128i byte = _mm_set1_epi32(0xFF);
        return doubleForms({_mm_and_si128(_mm_srli_epi32(pixels, 16), byte),
                            _mm_and_si128(_mm_srli_epi32(pixels, 8), byte), _mm_and_si128(pixels, byte)});
    }

    static SSSE3_INLINE __m128i paired(__m128i pixels)
    {
        const __m128i neighbours = _mm_xor_si128(pixels, _mm_srli_epi32(pixels, 8));
        return _mm_cmpeq_epi32(_mm_and_si128(neighbours, _mm_set1_epi32(0xFF)), _mm_setzero_si128());
    }
};

/// Eight thousandths as words; multiples gets all bits of each word whose sum is a multiple of 1000.
SSSE3_INLINE __m128i thousandths(__m128i sums0, __m128i sums1, __m128i& multiples)
{
    const __m128i eighths = _mm_packs_epi32(_mm_srli_epi32(sums0, 3), _mm_srli_epi32(sums1, 3));
    const __m128i factor = _mm_set1_epi16(static_cast<short>(ThousandthFactor));
    const __m128i values = _mm_srli_epi16(_mm_mulhi_epu16(eighths, factor), ThousandthShift - 16);
    // A sum and 1000 times its thousandth differ by less than 1000: they are equal when their low words are.
    const __m128i lowWords =
        _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(sums0, 16), 16), _mm_srai_epi32(_mm_slli_epi32(sums1, 16), 16));
    multiples = _mm_cmpeq_epi16(_mm_mullo_epi16(values, _mm_set1_epi16(1000)), lowWords);
    return values;
}

/// All bits of each byte that is a pure grey whose result is one less.
SSSE3_INLINE __m128i belowOf(__m128i values)
{
    static constexpr PureGreys Bits = pureGreysBelow();
    const __m128i row = _mm_and_si128(_mm_srli_epi16(values, 3), _mm_set1_epi8(31));
    const __m128i isUpper = _mm_cmpgt_epi8(row, _mm_set1_epi8(15));
    const __m128i lower = _mm_andnot_si128(isUpper, _mm_shuffle_epi8(load(Bits[0].data()), row));
    const __m128i upper = _mm_and_si128(isUpper, _mm_shuffle_epi8(load(Bits[1].data()), row));
    const __m128i bit = _mm_shuffle_epi8(_mm_set1_epi64x(PowersOfTwo), _mm_and_si128(values, _mm_set1_epi8(7)));
    return _mm_cmpeq_epi8(_mm_and_si128(_mm_or_si128(lower, upper), bit), bit);
}

SSSE3_INLINE __m128i packed(__m128i a, __m128i b, __m128i c, __m128i d)
{
    return _mm_packs_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
}

/// Sixteen grey values; Last is the form of the last four pixels.
template <typename Four, typename Last>
SSSE3_INLINE __m128i greyOf(__m128i a, __m128i b, __m128i c, __m128i d)
{
    __m128i multiples0;
    __m128i multiples1;
    const __m128i values0 = thousandths(Four::sums(a), Four::sums(b), multiples0);
    const __m128i values1 = thousandths(Four::sums(c), Last::sums(d), multiples1);
    const __m128i values = _mm_packus_epi16(values0, values1);
    const __m128i multiples = _mm_packs_epi16(multiples0, multiples1);
    if (__builtin_expect(_mm_movemask_epi8(multiples) == 0, 1))
        return values;
    const __m128i paired = packed(Four::paired(a), Four::paired(b), Four::paired(c), Last::paired(d));
    if (_mm_movemask_epi8(_mm_andnot_si128(paired, multiples)) == 0)  // each is a pure grey
        return _mm_add_epi8(values, _mm_and_si128(belowOf(values), multiples));
    return _mm_packus_epi16(_mm_packs_epi32(Four::exact(a), Four::exact(b)),
                            _mm_packs_epi32(Four::exact(c), Last::exact(d)));
}

SSSE3 void greyOfRgb(const unsigned char* rgb, unsigned char* grey, std::size_t count)
{
    for (; count >= Step; count -= Step, rgb += 3 * Step, grey += Step) {
        // The last register ends with the sixteenth pixel: its pixels start at its byte 4.
        store(grey, greyOf<FourRgb<0>, FourRgb<4>>(load(rgb), load(rgb + 12), load(rgb + 24), load(rgb + 32)));
    }
    PixelKernels::plain().m_pfnGreyOfRgb(rgb, grey, count);
}

SSSE3 void greyOfBgrx(const unsigned char* bgrx, unsigned char* grey, std::size_t count)
{
    for (; count >= Step; count -= Step, bgrx += 4 * Step, grey += Step)
        store(grey, greyOf<FourBgrx, FourBgrx>(load(bgrx), load(bgrx + 16), load(bgrx + 32), load(bgrx + 48)));
    PixelKernels::plain().m_pfnGreyOfBgrx(bgrx, grey, count);
}

}  // namespace

const PixelKernels* PixelKernels::ssse3()
{
    static constexpr PixelKernels kernels{"ssse3", exchange, greyOfRgb, greyOfBgrx, rgbOfBgrx, rgbOfGrey};
    return __builtin_cpu_supports("ssse3") ? &kernels : nullptr;
}

#else

const PixelKernels* PixelKernels::ssse3()
{
    return nullptr;
}

#endif
