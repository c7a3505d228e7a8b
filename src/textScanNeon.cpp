#include "neon.h"
#include "textScan.h"

#if defined(HAS_NEON)

namespace {

using TextScan::OneOf;

constexpr int Lanes = 8;  ///< Characters in one register.

/// All bits of the lanes that hold one of two characters.
NEON uint16x8_t lanesOf(const QChar* characters, uint16x8_t a, uint16x8_t b)
{
    const uint16x8_t lanes = vld1q_u16(reinterpret_cast<const std::uint16_t*>(characters));
    return vorrq_u16(vceqq_u16(lanes, a), vceqq_u16(lanes, b));
}

/// The first lane that is not zero; Lanes when there is none.
NEON int firstOf(uint16x8_t lanes)
{
    const std::uint64_t bytes = vget_lane_u64(vreinterpret_u64_u8(vmovn_u16(lanes)), 0);
    return bytes ? __builtin_ctzll(bytes) / 8 : Lanes;
}

NEON int indexOfPair(QStringView text, int from, OneOf first, OneOf second)
{
    const int length = static_cast<int>(text.size());
    const uint16x8_t firstA = vdupq_n_u16(first.m_cA);
    const uint16x8_t firstB = vdupq_n_u16(first.m_cB);
    const uint16x8_t secondA = vdupq_n_u16(second.m_cA);
    const uint16x8_t secondB = vdupq_n_u16(second.m_cB);
    int i = from;
    for (; i + Lanes < length; i += Lanes) {
        const QChar* characters = text.data() + i;
        const uint16x8_t pairs =
            vandq_u16(lanesOf(characters, firstA, firstB), lanesOf(characters + 1, secondA, secondB));
        if (const int lane = firstOf(pairs); lane < Lanes)
            return i + lane;
    }
    return TextScan::indexOfPairPlain(text, i, first, second);
}

NEON int indexOfOne(QStringView text, int from, OneOf wanted)
{
    const int length = static_cast<int>(text.size());
    const uint16x8_t a = vdupq_n_u16(wanted.m_cA);
    const uint16x8_t b = vdupq_n_u16(wanted.m_cB);
    int i = from;
    for (; i + Lanes <= length; i += Lanes) {
        if (const int lane = firstOf(lanesOf(text.data() + i, a, b)); lane < Lanes)
            return i + lane;
    }
    return TextScan::indexOfOnePlain(text, i, wanted);
}

}  // namespace

const TextScan::Forms* TextScan::Forms::neon()
{
    static constexpr Forms forms{"neon", indexOfPair, indexOfOne};
    return processorHasNeon() ? &forms : nullptr;
}

#else

const TextScan::Forms* TextScan::Forms::neon()
{
    return nullptr;
}

#endif
