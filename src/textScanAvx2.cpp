#include "avx2.h"
#include "textScan.h"

#if defined(HAS_AVX2)

#include <cstdint>

namespace {

using TextScan::OneOf;

constexpr int Lanes = 16;  ///< Characters in one register.

/// All bits of the lanes that hold one of two characters.
struct LaneFilter
{
    __m256i m_cA;
    __m256i m_cB;

    AVX2_INLINE explicit LaneFilter(OneOf wanted)
        : m_cA(_mm256_set1_epi16(static_cast<short>(wanted.m_cA))),
          m_cB(_mm256_set1_epi16(static_cast<short>(wanted.m_cB)))
    {
    }
    AVX2_INLINE __m256i of(const QChar* characters) const
    {
        const __m256i lanes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(characters));
        return _mm256_or_si256(_mm256_cmpeq_epi16(lanes, m_cA), _mm256_cmpeq_epi16(lanes, m_cB));
    }
};

/// Two bits for each lane.
AVX2_INLINE std::uint64_t bitsOf(__m256i lanes)
{
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(lanes));
}

/// The lane of the lowest bit, which there is.
AVX2_INLINE int firstOf(std::uint64_t bits)
{
    return __builtin_ctzll(bits) / 2;
}

AVX2 int indexOfPair(QStringView text, int from, OneOf first, OneOf second)
{
    const int length = static_cast<int>(text.size());
    const LaneFilter isFirst(first);
    const LaneFilter isSecond(second);
    int i = from;
    for (; i + Lanes < length; i += Lanes) {
        const QChar* characters = text.data() + i;
        if (const auto bits = bitsOf(_mm256_and_si256(isFirst.of(characters), isSecond.of(characters + 1))))
            return i + firstOf(bits);
    }
    return TextScan::indexOfPairPlain(text, i, first, second);
}

AVX2 int indexOfOne(QStringView text, int from, OneOf wanted)
{
    const int length = static_cast<int>(text.size());
    const LaneFilter isWanted(wanted);
    int i = from;
    for (; i + 2 * Lanes <= length; i += 2 * Lanes) {
        const __m256i lower = isWanted.of(text.data() + i);
        const __m256i upper = isWanted.of(text.data() + i + Lanes);
        if (_mm256_movemask_epi8(_mm256_or_si256(lower, upper)) != 0)
            return i + firstOf(bitsOf(lower) | bitsOf(upper) << 32U);
    }
    for (; i + Lanes <= length; i += Lanes) {
        if (const auto bits = bitsOf(isWanted.of(text.data() + i)))
            return i + firstOf(bits);
    }
    if (const int last = length - Lanes; last >= 0 && i < length) {
        const auto bits = bitsOf(isWanted.of(text.data() + last)) >> static_cast<unsigned>(2 * (i - last));
        return bits ? i + firstOf(bits) : length;
    }
    return TextScan::indexOfOnePlain(text, i, wanted);
}

}  // namespace

const TextScan::Forms* TextScan::Forms::avx2()
{
    static constexpr Forms forms{"avx2", indexOfPair, indexOfOne};
    return __builtin_cpu_supports("avx2") ? &forms : nullptr;
}

#else

const TextScan::Forms* TextScan::Forms::avx2()
{
    return nullptr;
}

#endif
