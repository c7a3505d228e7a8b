#pragma once

// For sources with a form for AVX-512: HAS_AVX512 where the compiler knows it, before each of their functions AVX512,
// or AVX512_INLINE where it is a piece of others, and whether this processor has what they use.
#if defined(__x86_64__)

#include <immintrin.h>

#define HAS_AVX512
#define AVX512 __attribute__((target("avx512f,avx512bw,avx512vbmi")))
#define AVX512_INLINE __attribute__((target("avx512f,avx512bw,avx512vbmi"), always_inline)) inline

inline bool processorHasAvx512()
{
    return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi");
}

#endif
