#include "projectText.h"

#include "textScan.h"

#include <algorithm>
#include <numeric>
#include <optional>

ElementReader::ElementReader(QStringView text, const QString& open, const QString& close)
    : m_strText(text), m_strOpen(open), m_strClose(close)
{
}

QStringView ElementReader::next()
{
    const int open = TextScan::indexOfMarker(m_strText, m_nPos, m_strOpen);
    if (open < 0)
        return {};
    const int close = TextScan::indexOfMarker(m_strText, m_nPos, m_strClose);
    if (open >= close)
        return {};
    const int bodyStart = open + m_strOpen.length();
    // Where the markers overlap, the body is all that follows.
    const QStringView body = close < bodyStart ? m_strText.mid(bodyStart) : m_strText.mid(bodyStart, close - bodyStart);
    m_strLeftOver.append(m_strText.data() + m_nPos, open - m_nPos);
    m_nPos = close + m_strClose.length();
    if (!markerAcrossSeam())
        return body;
    m_strBody = body.toString();
    m_strJoined = remaining();
    m_strText = m_strJoined;
    m_strLeftOver.clear();
    m_nPos = 0;
    return m_strBody;
}

// Looks at so little on both sides that neither side alone can hold the marker.
bool ElementReader::markerAcrossSeam() const
{
    const auto across = [this](const QString& marker) {
        const int reach = marker.length() - 1;
        const QString seam = m_strLeftOver.right(reach) + m_strText.mid(m_nPos, reach).toString();
        return seam.contains(marker, Qt::CaseInsensitive);
    };
    return !m_strLeftOver.isEmpty() && (across(m_strOpen) || across(m_strClose));
}

QString ProjectText::upToNul(const QString& text)
{
    const int nul = text.indexOf(QChar(0));
    return nul < 0 ? text : text.left(nul);
}

// Only a line end right behind another can go; all up to the next such place is copied at once.
QString ProjectText::collapseEmptyLines(const QString& text)
{
    constexpr TextScan::OneOf LineEnd{u'\r', u'\n'};
    const auto indexOfPair = TextScan::Forms::best().m_pfnIndexOfPair;
    if (indexOfPair(text, 0, LineEnd, LineEnd) == text.length())
        return text;
    QString result;
    result.reserve(text.length());
    for (int copied = 0; copied < text.length();) {
        const int next =
            std::min(indexOfPair(text, std::max(copied - 1, 0), LineEnd, LineEnd) + 1, static_cast<int>(text.length()));
        result.append(text.constData() + copied, next - copied);
        if (next == text.length())
            break;
        const QChar c = text.at(next);
        copied = next + 1;
        if (result.endsWith(c))
            continue;
        result += c;
        if (result.endsWith(QLatin1String("\r\n\r\n")))
            result.chop(2);
    }
    return result;
}

void ProjectText::Saved::keepShort()
{
    constexpr int Long = 32 * 1024;
    constexpr int LineEndsThatMayGrow = 3;  // of "\r\n\r\n"
    if (m_strText.length() > Long)
        takeOff(LineEndsThatMayGrow);
}

bool ProjectText::Saved::finish()
{
    takeOff(0);
    return m_bTaken;
}

void ProjectText::Saved::takeOff(int held)
{
    QString collapsed = collapseEmptyLines(m_strText);
    held = std::min(held, collapsed.length());
    m_bTaken = m_bTaken && m_fnSink(collapsed.leftRef(collapsed.length() - held).toUtf8());
    const QString rest = collapsed.right(held);
    collapsed.clear();  // It may be the text itself, whose memory is used again.
    m_strText.resize(0);
    m_strText += rest;
}

namespace {

bool isBracket(QChar c)
{
    return c == QLatin1Char('<') || c == QLatin1Char('>');
}

bool isLetterI(QChar c)
{
    return c == QLatin1Char('i') || c == QLatin1Char('I');
}

/// The number that a text is, blanks around it allowed; nothing when it is none that an int holds.
std::optional<int> numberOf(QStringView text)
{
    constexpr int FewDigits = 9;  // any number of them fits
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    if (!text.isEmpty() && text.size() <= FewDigits && std::all_of(text.begin(), text.end(), isDigit))
        return std::accumulate(text.begin(), text.end(), 0,
                               [](int number, QChar c) { return 10 * number + c.unicode() - u'0'; });
    bool ok = false;
    const int number = text.trimmed().toString().toInt(&ok, 10);
    return ok ? std::optional<int>(number) : std::nullopt;
}

/// Whether the closing tag of a name begins a text.
bool beginsWithClosingTag(QStringView text, QStringView name)
{
    const auto length = name.size() + 3;
    if (text.size() < length || text[0] != QLatin1Char('<') || text[1] != QLatin1Char('/') ||
        text[length - 1] != QLatin1Char('>'))
        return false;
    const QStringView other = text.mid(2, name.size());
    return other == name || other.compare(name, Qt::CaseInsensitive) == 0;  // mostly the same, which is quick to see
}

}  // namespace

// The end of such a name is rare; the tag around it is looked for only there, back and forth to the next brackets. An
// element that was found is left behind as a whole: what its closing tag ends with is no name.
void ProjectText::forEachNamedID(const QString& text, const std::function<void(int)>& found)
{
    constexpr TextScan::OneOf LastLetter{u'd', u'D'};
    constexpr TextScan::OneOf TagEnd{u'>', u'>'};
    const auto indexOfPair = TextScan::Forms::best().m_pfnIndexOfPair;
    const QStringView view(text);
    const QChar* const begin = view.begin();
    const QChar* const end = view.end();
    for (int last = indexOfPair(view, 0, LastLetter, TagEnd); last < text.length();
         last = indexOfPair(view, last + 1, LastLetter, TagEnd)) {
        if (last == 0 || !isLetterI(begin[last - 1]))
            continue;
        const QChar* const nameEnd = begin + last + 1;
        const QChar* nameBegin = nameEnd;
        while (nameBegin > begin && !isBracket(nameBegin[-1]))
            --nameBegin;
        const QStringView name(nameBegin, nameEnd);
        if (nameBegin == begin || nameBegin[-1] == QLatin1Char('>') || nameBegin[0] == QLatin1Char('/'))
            continue;
        const QChar* const bodyEnd = std::find_if(nameEnd + 1, end, isBracket);
        if (!beginsWithClosingTag(QStringView(bodyEnd, end), name))
            continue;
        if (const std::optional<int> id = numberOf(QStringView(nameEnd + 1, bodyEnd)))
            found(*id);
        last = static_cast<int>(bodyEnd - begin + name.size()) + 1;
    }
}
