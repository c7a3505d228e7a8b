#pragma once

// Thirty-two bytes at a time, for the forms for AVX2.
#include "avx2.h"

#if defined(HAS_AVX2)

AVX2_INLINE __m256i loadBytes(const unsigned char* bytes)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

AVX2_INLINE void storeBytes(unsigned char* bytes, __m256i value)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), value);
}

/// Where the bytes of three registers come from when thirty-two bytes are written thrice each: a half of a register
/// holds those of five and a third.
struct ThriceShuffles
{
    __m256i m_cFirstSecond;
    __m256i m_cThirdFirst;
    __m256i m_cSecondThird;
};

AVX2_INLINE ThriceShuffles thriceShuffles()
{
    const __m128i first = _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5);
    const __m128i second = _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10);
    const __m128i third = _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15);
    return {_mm256_set_m128i(second, first), _mm256_set_m128i(first, third), _mm256_set_m128i(third, second)};
}

#endif
