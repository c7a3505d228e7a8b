#include "textScan.h"

namespace {

bool isOneOf(QChar c, TextScan::OneOf wanted)
{
    return c.unicode() == wanted.m_cA || c.unicode() == wanted.m_cB;
}

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

const TextScan::Forms& TextScan::Forms::plain()
{
    static constexpr Forms forms{"plain", indexOfPairPlain, indexOfOnePlain};
    return forms;
}

std::vector<const TextScan::Forms*> TextScan::Forms::available()
{
    std::vector<const Forms*> all{&plain()};
    for (const Forms* forms : {sse2(), avx2(), neon()}) {
        if (forms)
            all.push_back(forms);
    }
    return all;
}

const TextScan::Forms& TextScan::Forms::best()
{
    static const Forms& forms = *available().back();
    return forms;
}

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
    const auto indexOfPair = Forms::best().m_pfnIndexOfPair;
    for (int i = indexOfPair(text, from + rare, {a, a}, {b, b}); i < length;
         i = indexOfPair(text, i + 1, {a, a}, {b, b})) {
        if (standsAt(text, i - rare, marker))
            return i - rare;
    }
    return -1;
}
