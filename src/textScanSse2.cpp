#include "textScan.h"

// Where the compiler may use it for everything, every processor that the program starts on has it.
#if defined(__SSE2__)

#include <emmintrin.h>

namespace {

using TextScan::OneOf;

constexpr int Lanes = 8;  ///< Characters in one register.

/// All bits of the lanes that hold one of two characters.
class LaneFilter
{
public:
    explicit LaneFilter(OneOf wanted)
        : m_cA(_mm_set1_epi16(static_cast<short>(wanted.m_cA))), m_cB(_mm_set1_epi16(static_cast<short>(wanted.m_cB)))
    {
    }
    __m128i of(const QChar* characters) const
    {
        const __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(characters));
        return _mm_or_si128(_mm_cmpeq_epi16(lanes, m_cA), _mm_cmpeq_epi16(lanes, m_cB));
    }

private:
    __m128i m_cA;
    __m128i m_cB;
};

int indexOfPair(QStringView text, int from, OneOf first, OneOf second)
{
    const int length = static_cast<int>(text.size());
    const LaneFilter isFirst(first);
    const LaneFilter isSecond(second);
    int i = from;
    for (; i + Lanes < length; i += Lanes) {
        const __m128i pairs = _mm_and_si128(isFirst.of(text.data() + i), isSecond.of(text.data() + i + 1));
        if (const int bytes = _mm_movemask_epi8(pairs))
            return i + __builtin_ctz(static_cast<unsigned>(bytes)) / 2;
    }
    return TextScan::indexOfPairPlain(text, i, first, second);
}

int indexOfOne(QStringView text, int from, OneOf wanted)
{
    const int length = static_cast<int>(text.size());
    const LaneFilter isWanted(wanted);
    int i = from;
    for (; i + 2 * Lanes <= length; i += 2 * Lanes) {
        const __m128i bytes = _mm_packs_epi16(isWanted.of(text.data() + i), isWanted.of(text.data() + i + Lanes));
        if (const int found = _mm_movemask_epi8(bytes))
            return i + __builtin_ctz(static_cast<unsigned>(found));
    }
    return TextScan::indexOfOnePlain(text, i, wanted);
}

}  // namespace

const TextScan::Forms* TextScan::Forms::sse2()
{
    static constexpr Forms forms{"sse2", indexOfPair, indexOfOne};
    return &forms;
}

#else

const TextScan::Forms* TextScan::Forms::sse2()
{
    return nullptr;
}

#endif
