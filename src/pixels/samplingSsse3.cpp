#include "pixels/samplingKernels.h"

#if defined(__x86_64__)

#include <tmmintrin.h>

#include <cstring>

#define SSSE3 __attribute__((target("ssse3")))
#define SSSE3_INLINE __attribute__((target("ssse3"), always_inline)) inline

namespace {

constexpr char Z = -1;  // as an index of a shuffle: gives a zero byte

SSSE3_INLINE __m128i load(const unsigned char* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

SSSE3_INLINE void store(unsigned char* bytes, __m128i value)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), value);
}

// ---- Colour ---------------------------------------------------------------------------------------------------------

/// The three bytes of a pixel and the one behind it.
SSSE3_INLINE __m128i loadPixel(const unsigned char* row, std::int32_t column)
{
    int bytes = 0;
    std::memcpy(&bytes, row + 3 * static_cast<std::size_t>(column), sizeof bytes);
    return _mm_cvtsi32_si128(bytes);
}

SSSE3_INLINE __m128i loadPixels(const unsigned char* row, const std::int32_t* columns)
{
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(loadPixel(row, columns[0]), loadPixel(row, columns[1])),
                              _mm_unpacklo_epi32(loadPixel(row, columns[2]), loadPixel(row, columns[3])));
}

SSSE3 void colour(const unsigned char* row, const ColumnMap& map, bool exchange, unsigned char* target)
{
    const __m128i pack = exchange ? _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, Z, Z, Z, Z)
                                  : _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, Z, Z, Z, Z);
    const std::int32_t* columns = map.columns();
    std::size_t i = 0;
    // Four pixels at a time; what is stored behind them is theirs who come next.
    for (; i + 4 <= map.innerCount() && i + 6 <= map.count(); i += 4)
        store(target + 3 * i, _mm_shuffle_epi8(loadPixels(row, columns + i), pack));
    SamplingKernels::plainColourFrom(i, row, map, exchange, target);
}

// ---- Grey -----------------------------------------------------------------------------------------------------------

SSSE3_INLINE __m128i loadWindow(const unsigned char* row, const ColumnMap::Window& window)
{
    const __m128i places = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(window.m_anPlaces.data()));
    return _mm_shuffle_epi8(load(row + window.m_nFirst), places);
}

SSSE3 void grey(const unsigned char* row, const ColumnMap& map, unsigned char* target)
{
    std::size_t done = 0;
    for (const ColumnMap::Window& window : map.windows()) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(target + done), loadWindow(row, window));
        done += ColumnMap::WindowColumns;
    }
    SamplingKernels::plainGreyFrom(done, row, map, target);
}

// ---- Overlay --------------------------------------------------------------------------------------------------------

SSSE3_INLINE void overlayBytes(unsigned char* target, const unsigned char* rgb, __m128i taken)
{
    store(target, _mm_or_si128(_mm_andnot_si128(taken, load(target)), _mm_and_si128(taken, load(rgb))));
}

SSSE3 void overlay(const unsigned char* grey, const unsigned char* rgb, bool whereZero, unsigned char* target,
                   std::size_t count)
{
    const __m128i thrice0 = _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5);
    const __m128i thrice1 = _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10);
    const __m128i thrice2 = _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15);
    const __m128i inverted = _mm_set1_epi8(whereZero ? 0 : -1);
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m128i isZero = _mm_cmpeq_epi8(load(grey + i), _mm_setzero_si128());
        const __m128i taken = _mm_xor_si128(isZero, inverted);
        overlayBytes(target + 3 * i, rgb + 3 * i, _mm_shuffle_epi8(taken, thrice0));
        overlayBytes(target + 3 * i + 16, rgb + 3 * i + 16, _mm_shuffle_epi8(taken, thrice1));
        overlayBytes(target + 3 * i + 32, rgb + 3 * i + 32, _mm_shuffle_epi8(taken, thrice2));
    }
    SamplingKernels::plain().m_pfnOverlay(grey + i, rgb + 3 * i, whereZero, target + 3 * i, count - i);
}

}  // namespace

const SamplingKernels* SamplingKernels::ssse3()
{
    static const SamplingKernels kernels{"ssse3", colour, grey, overlay, plain().m_pfnLookUp};
    return __builtin_cpu_supports("ssse3") ? &kernels : nullptr;
}

#else

const SamplingKernels* SamplingKernels::ssse3()
{
    return nullptr;
}

#endif
