// Compiled without contraction of floating point (see CMakeLists.txt): a fused multiply-add changes the results.
#include "loading/pictureConvert.h"

#include <cstdint>

#if defined(__x86_64__)
#include <tmmintrin.h>
#define LUMIVANT_SSSE3 __attribute__((target("ssse3"), always_inline)) inline
#endif

// The integer part of the double sum is the integer sum divided by 1000, unless the integer sum is a multiple of 1000:
// there rounding may leave the double sum just below the whole number, depending on the colour and not on the sum. So
// the integer form does the work, and the double form is evaluated only where the integer sum is such a multiple.
namespace {

constexpr double Weight0 = 0.114;
constexpr double Weight1 = 0.587;
constexpr double Weight2 = 0.299;

constexpr int Integer0 = 114;
constexpr int Integer1 = 587;
constexpr int Integer2 = 299;

// A thousandth of a sum up to 255000: an eighth of it is below 2^15, and 33555 / 2^22 is just above 1 / 125.
constexpr int ThousandthFactor = 33555;
constexpr int ThousandthShift = 22;

/// The result as it is defined; the order of the terms matters.
int doubleForm(int s0, int s1, int s2)
{
    return static_cast<int>(Weight1 * s1 + Weight2 * s2 + Weight0 * s0);
}

int greyOfPixel(int s0, int s1, int s2)
{
    const int sum = Integer1 * s1 + Integer2 * s2 + Integer0 * s0;
    const int value = ((sum >> 3) * ThousandthFactor) >> ThousandthShift;
    if (__builtin_expect(value * 1000 == sum, 0))  // a hint: otherwise compilers evaluate both forms always
        return doubleForm(s0, s1, s2);
    return value;
}

void greyPlain(const unsigned char* rgb, unsigned char* grey, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, rgb += 3)
        grey[i] = static_cast<unsigned char>(greyOfPixel(rgb[0], rgb[1], rgb[2]));
}

#if defined(LUMIVANT_SSSE3)

/// The twelve bytes of four pixels, from byte First of a register on.
template <int First>
struct FourPixels
{
    static constexpr char F = First;
    static constexpr char Z = -1;  // gives a zero byte

    /// Byte s0, s1 or s2 of each pixel as a 32-bit number.
    template <int Which>
    static LUMIVANT_SSSE3 __m128i bytesOf(__m128i pixels)
    {
        constexpr char W = First + Which;
        return _mm_shuffle_epi8(pixels, _mm_setr_epi8(W, Z, Z, Z, W + 3, Z, Z, Z, W + 6, Z, Z, Z, W + 9, Z, Z, Z));
    }

    static LUMIVANT_SSSE3 __m128i integerSums(__m128i pixels)
    {
        const __m128i pairs = _mm_shuffle_epi8(
            pixels, _mm_setr_epi8(F, Z, F + 1, Z, F + 3, Z, F + 4, Z, F + 6, Z, F + 7, Z, F + 9, Z, F + 10, Z));
        return _mm_add_epi32(_mm_madd_epi16(pairs, _mm_set1_epi32(Integer1 * 65536 + Integer0)),
                             _mm_madd_epi16(bytesOf<2>(pixels), _mm_set1_epi32(Integer2)));
    }

    static LUMIVANT_SSSE3 __m128i doubleForms(__m128i pixels)
    {
        const __m128i s0 = bytesOf<0>(pixels);
        const __m128i s1 = bytesOf<1>(pixels);
        const __m128i s2 = bytesOf<2>(pixels);
        constexpr int Upper = 0x0E;  // moves the upper two numbers down
        const __m128i upper =
            doubleFormsOfTwo(_mm_shuffle_epi32(s0, Upper), _mm_shuffle_epi32(s1, Upper), _mm_shuffle_epi32(s2, Upper));
        return _mm_unpacklo_epi64(doubleFormsOfTwo(s0, s1, s2), upper);
    }

    static LUMIVANT_SSSE3 __m128i doubleFormsOfTwo(__m128i s0, __m128i s1, __m128i s2)
    {
        const __m128d first = _mm_mul_pd(_mm_set1_pd(Weight1), _mm_cvtepi32_pd(s1));
        const __m128d second = _mm_mul_pd(_mm_set1_pd(Weight2), _mm_cvtepi32_pd(s2));
        const __m128d third = _mm_mul_pd(_mm_set1_pd(Weight0), _mm_cvtepi32_pd(s0));
        return _mm_cvttpd_epi32(_mm_add_pd(_mm_add_pd(first, second), third));
    }
};

/// Eight thousandths as words; multiples gets all bits of each word whose sum is a multiple of 1000.
LUMIVANT_SSSE3 __m128i thousandths(__m128i sums0, __m128i sums1, __m128i& multiples)
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

__attribute__((target("ssse3"))) void greySsse3(const unsigned char* rgb, unsigned char* grey, std::size_t count)
{
    constexpr std::size_t Step = 16;  // pixels
    for (; count >= Step; count -= Step, rgb += 3 * Step, grey += Step) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rgb));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rgb + 12));
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rgb + 24));
        const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rgb + 32));  // its pixels start at byte 4
        __m128i multiples0;
        __m128i multiples1;
        __m128i values0 = thousandths(FourPixels<0>::integerSums(a), FourPixels<0>::integerSums(b), multiples0);
        __m128i values1 = thousandths(FourPixels<0>::integerSums(c), FourPixels<4>::integerSums(d), multiples1);
        if (_mm_movemask_epi8(_mm_or_si128(multiples0, multiples1)) != 0) {
            values0 = _mm_packs_epi32(FourPixels<0>::doubleForms(a), FourPixels<0>::doubleForms(b));
            values1 = _mm_packs_epi32(FourPixels<0>::doubleForms(c), FourPixels<4>::doubleForms(d));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(grey), _mm_packus_epi16(values0, values1));
    }
    greyPlain(rgb, grey, count);
}

#endif

using GreyFunction = void (*)(const unsigned char*, unsigned char*, std::size_t);

GreyFunction bestGreyFunction()
{
#if defined(LUMIVANT_SSSE3)
    if (__builtin_cpu_supports("ssse3"))
        return &greySsse3;
#endif
    return &greyPlain;
}

}  // namespace

void PictureConvert::greyOfRgb(const unsigned char* rgb, unsigned char* grey, std::size_t count)
{
    static const GreyFunction greyFunction = bestGreyFunction();
    greyFunction(rgb, grey, count);
}
