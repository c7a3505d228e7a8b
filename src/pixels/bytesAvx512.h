#pragma once

// Sixty-four bytes at a time, for the forms for AVX-512.
#include "avx512.h"

#if defined(HAS_AVX512)

#include <array>
#include <cstddef>

constexpr int RegisterBytes = 64;

/// What is loaded into a register.
using Bytes64 = std::array<unsigned char, RegisterBytes>;

AVX512_INLINE __m512i loadBytes(const Bytes64& bytes)
{
    return _mm512_loadu_si512(bytes.data());
}

/// The bytes of a register that belong to the first bytes of several registers.
AVX512_INLINE __mmask64 firstBytes(std::size_t bytes, std::size_t registersBefore)
{
    const std::size_t before = registersBefore * RegisterBytes;
    const std::size_t left = bytes > before ? bytes - before : 0;
    return left >= RegisterBytes ? ~__mmask64{0} : (__mmask64{1} << left) - 1;
}

#endif
