// Thirty-two pixels at a time where there is enough to do for a register; taking pixels by a map is not.
#include "pixels/samplingKernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#define AVX2 __attribute__((target("avx2")))
#define AVX2_INLINE __attribute__((target("avx2"), always_inline)) inline

namespace {

constexpr std::size_t Step = 32;  // pixels

AVX2_INLINE __m256i load(const unsigned char* bytes)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

AVX2_INLINE void overlayBytes(unsigned char* target, const unsigned char* rgb, __m256i taken)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), _mm256_blendv_epi8(load(target), load(rgb), taken));
}

AVX2 void overlay(const unsigned char* grey, const unsigned char* rgb, bool whereZero, unsigned char* target,
                  std::size_t count)
{
    // Where the bytes of three registers come from, each thrice: a half of one holds those of five pixels and a third.
    const __m128i first = _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5);
    const __m128i second = _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10);
    const __m128i third = _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15);
    const __m256i firstSecond = _mm256_set_m128i(second, first);
    const __m256i thirdFirst = _mm256_set_m128i(first, third);
    const __m256i secondThird = _mm256_set_m128i(third, second);
    const __m256i inverted = _mm256_set1_epi8(whereZero ? 0 : -1);
    constexpr int LowerTwice = 0x44;  // the lower half of a register in both
    constexpr int UpperTwice = 0xEE;
    std::size_t i = 0;
    for (; i + Step <= count; i += Step) {
        const __m256i isZero = _mm256_cmpeq_epi8(load(grey + i), _mm256_setzero_si256());
        const __m256i taken = _mm256_xor_si256(isZero, inverted);
        const __m256i lower = _mm256_permute4x64_epi64(taken, LowerTwice);
        const __m256i upper = _mm256_permute4x64_epi64(taken, UpperTwice);
        overlayBytes(target + 3 * i, rgb + 3 * i, _mm256_shuffle_epi8(lower, firstSecond));
        overlayBytes(target + 3 * i + 32, rgb + 3 * i + 32, _mm256_shuffle_epi8(taken, thirdFirst));
        overlayBytes(target + 3 * i + 64, rgb + 3 * i + 64, _mm256_shuffle_epi8(upper, secondThird));
    }
    SamplingKernels::ssse3()->m_pfnOverlay(grey + i, rgb + 3 * i, whereZero, target + 3 * i, count - i);
}

}  // namespace

const SamplingKernels* SamplingKernels::avx2()
{
    if (!__builtin_cpu_supports("avx2") || !ssse3())
        return nullptr;
    static const SamplingKernels kernels{"avx2", ssse3()->m_pfnColour, ssse3()->m_pfnGrey, overlay};
    return &kernels;
}

#else

const SamplingKernels* SamplingKernels::avx2()
{
    return nullptr;
}

#endif
