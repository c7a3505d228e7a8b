#include "textScan.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

bool isOneOf(QChar c, TextScan::OneOf wanted)
{
    return c.unicode() == wanted.m_cA || c.unicode() == wanted.m_cB;
}

#ifdef __SSE2__
constexpr int Lanes = 8;  ///< Characters in one register.

/// All bits of the lanes that hold one of two characters.
class LaneFilter
{
public:
    explicit LaneFilter(TextScan::OneOf wanted)
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
#endif

/// No character folds to one of these but itself.
bool isWithoutCase(QChar c)
{
    return c.unicode() < u'A';
}

bool standsAt(QStringView text, int index, const QString& marker)
{
    const QStringView there = text.mid(index, marker.size());
    return there == marker || there.compare(marker, Qt::CaseInsensitive) == 0;
}

}  // namespace

int TextScan::indexOfPairPlain(QStringView text, int from, OneOf first, OneOf second)
{
    const int length = static_cast<int>(text.size());
    for (int i = from; i + 1 < length; ++i) {
        if (isOneOf(text[i], first) && isOneOf(text[i + 1], second))
            return i;
    }
    return length;
}

int TextScan::indexOfOnePlain(QStringView text, int from, OneOf wanted)
{
    const int length = static_cast<int>(text.size());
    for (int i = from; i < length; ++i) {
        if (isOneOf(text[i], wanted))
            return i;
    }
    return length;
}

#ifdef __SSE2__
int TextScan::indexOfPair(QStringView text, int from, OneOf first, OneOf second)
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
    return indexOfPairPlain(text, i, first, second);
}

int TextScan::indexOfOne(QStringView text, int from, OneOf wanted)
{
    const int length = static_cast<int>(text.size());
    const LaneFilter isWanted(wanted);
    int i = from;
    for (; i + 2 * Lanes <= length; i += 2 * Lanes) {
        const __m128i bytes = _mm_packs_epi16(isWanted.of(text.data() + i), isWanted.of(text.data() + i + Lanes));
        if (const int found = _mm_movemask_epi8(bytes))
            return i + __builtin_ctz(static_cast<unsigned>(found));
    }
    return indexOfOnePlain(text, i, wanted);
}
#else
int TextScan::indexOfPair(QStringView text, int from, OneOf first, OneOf second)
{
    return indexOfPairPlain(text, from, first, second);
}

int TextScan::indexOfOne(QStringView text, int from, OneOf wanted)
{
    return indexOfOnePlain(text, from, wanted);
}
#endif

// The two signs behind the opening bracket, or the bracket and the sign behind it, are rare in what stands between
// markers; only where they stand is the marker compared.
int TextScan::indexOfMarker(QStringView text, int from, const QString& marker)
{
    const int rare = marker.size() > 1 && marker.at(1) == QLatin1Char('/') ? 1 : 0;
    if (marker.size() < rare + 2 || !isWithoutCase(marker.at(rare)) || !isWithoutCase(marker.at(rare + 1)))
        return static_cast<int>(text.indexOf(marker, from, Qt::CaseInsensitive));
    const char16_t a = marker.at(rare).unicode();
    const char16_t b = marker.at(rare + 1).unicode();
    const int length = static_cast<int>(text.size());
    for (int i = indexOfPair(text, from + rare, {a, a}, {b, b}); i < length;
         i = indexOfPair(text, i + 1, {a, a}, {b, b})) {
        if (standsAt(text, i - rare, marker))
            return i - rare;
    }
    return -1;
}
