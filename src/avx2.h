#pragma once

// For sources with a form for AVX2: HAS_AVX2 where the compiler knows it, and before each of their functions AVX2, or
// AVX2_INLINE where it is a piece of others. Such a form is for processors that have it; whoever offers it asks.
#if defined(__x86_64__)

#include <immintrin.h>

#define HAS_AVX2
#define AVX2 __attribute__((target("avx2")))
#define AVX2_INLINE __attribute__((target("avx2"), always_inline)) inline

#endif
