// Sixty-four pixels at a time where AVX-512 has something that AVX2 has not: a byte of the target from any byte of one
// or two registers. The other operations are those of AVX2.
#include "pixels/bytesAvx512.h"
#include "pixels/kernels.h"

#if defined(HAS_AVX512)

#include <array>
#include <cstdint>

namespace {

constexpr std::size_t Step = 64;  // pixels

/// Where the bytes of a register of exchanged pixels come from, counted from a register of the source on. Start is the
/// first of them among the bytes of a step.
constexpr Bytes64 exchangePlaces(int start, int from)
{
    Bytes64 places{};
    for (int i = 0; i < RegisterBytes; ++i) {
        const int ofPixel = (start + i) % 3;
        const int place = start + i + (ofPixel == 0 ? 2 : ofPixel == 2 ? -2 : 0);
        places[static_cast<std::size_t>(i)] = static_cast<unsigned char>((place - from) & 0x7F);
    }
    return places;
}

/// The three registers of a step.
struct Pixels64
{
    __m512i m_cFirst;
    __m512i m_cSecond;
    __m512i m_cThird;
};

AVX512_INLINE Pixels64 exchanged(Pixels64 pixels)
{
    // Otherwise the compiler reads each register from memory wherever it is used, over the ends of two lines of the
    // cache each time.
    asm("" : "+v"(pixels.m_cFirst), "+v"(pixels.m_cSecond), "+v"(pixels.m_cThird));
    static constexpr Bytes64 First = exchangePlaces(0, 0);
    static constexpr Bytes64 Second = exchangePlaces(RegisterBytes, RegisterBytes);
    static constexpr Bytes64 Third = exchangePlaces(2 * RegisterBytes, RegisterBytes);
    constexpr __mmask64 BeforeSecond = 2;  // The last byte of the first register is exchanged into the second.
    const __m512i second = _mm512_permutex2var_epi8(pixels.m_cSecond, loadBytes(Second), pixels.m_cThird);
    return {_mm512_permutex2var_epi8(pixels.m_cFirst, loadBytes(First), pixels.m_cSecond),
            _mm512_mask_permutexvar_epi8(second, BeforeSecond, _mm512_set1_epi8(RegisterBytes - 1), pixels.m_cFirst),
            _mm512_permutex2var_epi8(pixels.m_cSecond, loadBytes(Third), pixels.m_cThird)};
}

AVX512_INLINE void exchangeStep(const unsigned char* source, unsigned char* target)
{
    const Pixels64 result = exchanged({_mm512_loadu_si512(source), _mm512_loadu_si512(source + RegisterBytes),
                                       _mm512_loadu_si512(source + 2 * RegisterBytes)});
    _mm512_storeu_si512(target, result.m_cFirst);
    _mm512_storeu_si512(target + RegisterBytes, result.m_cSecond);
    _mm512_storeu_si512(target + 2 * RegisterBytes, result.m_cThird);
}

/// Less than a step, but something; nothing else is read or written.
AVX512_INLINE void exchangePart(const unsigned char* source, unsigned char* target, std::size_t count)
{
    const __mmask64 first = firstBytes(3 * count, 0);
    if (3 * count <= RegisterBytes) {  // So little, mostly, is in front of a row's first line of the cache.
        const __m512i none = _mm512_setzero_si512();
        const Pixels64 result = exchanged({_mm512_maskz_loadu_epi8(first, source), none, none});
        _mm512_mask_storeu_epi8(target, first, result.m_cFirst);
        return;
    }
    const __mmask64 second = firstBytes(3 * count, 1);
    const __mmask64 third = firstBytes(3 * count, 2);
    const Pixels64 result =
        exchanged({_mm512_maskz_loadu_epi8(first, source), _mm512_maskz_loadu_epi8(second, source + RegisterBytes),
                   _mm512_maskz_loadu_epi8(third, source + 2 * RegisterBytes)});
    _mm512_mask_storeu_epi8(target, first, result.m_cFirst);
    _mm512_mask_storeu_epi8(target + RegisterBytes, second, result.m_cSecond);
    _mm512_mask_storeu_epi8(target + 2 * RegisterBytes, third, result.m_cThird);
}

/// How many pixels are in front of the first that starts with a line of the cache, for stores that cross none. 43 times
/// 3 is 1 modulo 64.
std::size_t pixelsToAligned(const unsigned char* target)
{
    return (Step - reinterpret_cast<std::uintptr_t>(target) % Step) * 43 % Step;
}

AVX512 void exchange(const unsigned char* source, unsigned char* target, std::size_t count)
{
    if (count > 2 * Step) {
        const std::size_t before = pixelsToAligned(target);
        if (before > 0)
            exchangePart(source, target, before);
        source += 3 * before;
        target += 3 * before;
        count -= before;
    }
    for (; count >= Step; count -= Step, source += 3 * Step, target += 3 * Step)
        exchangeStep(source, target);
    if (count > 0)
        exchangePart(source, target, count);
}

AVX512 void rgbOfGrey(const unsigned char* grey, unsigned char* rgb, std::size_t count)
{
    for (; count >= Step; count -= Step, grey += Step, rgb += 3 * Step) {
        const __m512i values = _mm512_loadu_si512(grey);
        for (std::size_t part = 0; part < 3; ++part)
            _mm512_storeu_si512(rgb + part * RegisterBytes, thrice(values, part));
    }
    if (count == 0)
        return;
    const __m512i values = _mm512_maskz_loadu_epi8(firstBytes(count, 0), grey);
    for (std::size_t part = 0; part < 3; ++part)
        _mm512_mask_storeu_epi8(rgb + part * RegisterBytes, firstBytes(3 * count, part), thrice(values, part));
}

}  // namespace

const PixelKernels* PixelKernels::avx512()
{
    if (!processorHasAvx512() || !avx2())
        return nullptr;
    static const PixelKernels kernels{
        "avx512", exchange, avx2()->m_pfnGreyOfRgb, avx2()->m_pfnGreyOfBgrx, avx2()->m_pfnRgbOfBgrx, rgbOfGrey};
    return &kernels;
}

#else

const PixelKernels* PixelKernels::avx512()
{
    return nullptr;
}

#endif
