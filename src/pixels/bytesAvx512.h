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

/// Where the bytes of one of the three registers come from that hold each of 64 bytes three times.
constexpr Bytes64 thricePlaces(int part)
{
    Bytes64 places{};
    for (int i = 0; i < RegisterBytes; ++i)
        places[static_cast<std::size_t>(i)] = static_cast<unsigned char>((part * RegisterBytes + i) / 3);
    return places;
}

/// One of the three registers that hold each of 64 bytes three times.
AVX512_INLINE __m512i thrice(__m512i bytes, std::size_t part)
{
    static constexpr std::array<Bytes64, 3> Places{thricePlaces(0), thricePlaces(1), thricePlaces(2)};
    constexpr __mmask64 All = ~__mmask64{0};  // The form without a mask has the compiler warn of its own header.
    return _mm512_maskz_permutexvar_epi8(All, loadBytes(Places[part]), bytes);
}

/// The bytes of a register that belong to the first bytes of several registers.
AVX512_INLINE __mmask64 firstBytes(std::size_t bytes, std::size_t registersBefore)
{
    const std::size_t before = registersBefore * RegisterBytes;
    const std::size_t left = bytes > before ? bytes - before : 0;
    return left >= RegisterBytes ? ~__mmask64{0} : (__mmask64{1} << left) - 1;
}

#endif
