// Thirty-two pixels at a time where there is enough to do for a register; taking pixels by a map is not.
#include "pixels/bytesAvx2.h"
#include "pixels/samplingKernels.h"

#if defined(HAS_AVX2)

namespace {

constexpr std::size_t Step = 32;  // pixels

AVX2_INLINE void overlayBytes(unsigned char* target, const unsigned char* rgb, __m256i taken)
{
    storeBytes(target, _mm256_blendv_epi8(loadBytes(target), loadBytes(rgb), taken));
}

AVX2 void overlay(const unsigned char* grey, const unsigned char* rgb, bool whereZero, unsigned char* target,
                  std::size_t count)
{
    const ThriceShuffles thrice = thriceShuffles();
    const __m256i inverted = _mm256_set1_epi8(whereZero ? 0 : -1);
    constexpr int LowerTwice = 0x44;  // the lower half of a register in both
    constexpr int UpperTwice = 0xEE;
    std::size_t i = 0;
    for (; i + Step <= count; i += Step) {
        const __m256i isZero = _mm256_cmpeq_epi8(loadBytes(grey + i), _mm256_setzero_si256());
        const __m256i taken = _mm256_xor_si256(isZero, inverted);
        const __m256i lower = _mm256_permute4x64_epi64(taken, LowerTwice);
        const __m256i upper = _mm256_permute4x64_epi64(taken, UpperTwice);
        overlayBytes(target + 3 * i, rgb + 3 * i, _mm256_shuffle_epi8(lower, thrice.m_cFirstSecond));
        overlayBytes(target + 3 * i + 32, rgb + 3 * i + 32, _mm256_shuffle_epi8(taken, thrice.m_cThirdFirst));
        overlayBytes(target + 3 * i + 64, rgb + 3 * i + 64, _mm256_shuffle_epi8(upper, thrice.m_cSecondThird));
    }
    SamplingKernels::ssse3()->m_pfnOverlay(grey + i, rgb + 3 * i, whereZero, target + 3 * i, count - i);
}

}  // namespace

const SamplingKernels* SamplingKernels::avx2()
{
    if (!__builtin_cpu_supports("avx2") || !ssse3())
        return nullptr;
    static const SamplingKernels kernels{"avx2", ssse3()->m_pfnColour, ssse3()->m_pfnGrey, overlay,
                                         plain().m_pfnLookUp};
    return &kernels;
}

#else

const SamplingKernels* SamplingKernels::avx2()
{
    return nullptr;
}

#endif
