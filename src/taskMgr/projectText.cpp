#include "projectText.h"

#include "memoryArenas.h"
#include "textScan.h"

#include <QStringRef>

#include <algorithm>
#include <climits>

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
    ++m_nSteps;
    --m_nStepsLeft;
    if (m_strText.length() > Long)
        takeOff(LineEndsThatMayGrow);
}

QByteArray ProjectText::Saved::finish()
{
    takeOff(0);
    return m_cUtf8;
}

void ProjectText::Saved::takeOff(int held)
{
    QString collapsed = collapseEmptyLines(m_strText);
    held = std::min(held, collapsed.length());
    const QByteArray piece = collapsed.leftRef(collapsed.length() - held).toUtf8();
    makeRoom(m_cUtf8.length() + piece.length());
    m_cUtf8 += piece;
    const QString rest = collapsed.right(held);
    collapsed.clear();  // It may be the text itself, whose memory is used again.
    m_strText.resize(0);
    m_strText += rest;
}

// Growing by doubling would copy all that is there again and again, and touch twice the memory.
void ProjectText::Saved::makeRoom(int length)
{
    constexpr qint64 Most = 64 << 20;  // One long step in front of many short ones is a bad guess.
    if (length <= m_cUtf8.capacity())
        return;
    qint64 behind = qint64(length) * std::max(m_nStepsLeft, 0) / std::max(m_nSteps, 1) * 17 / 16;
    if (m_nStepsLeft > 0)
        behind = std::max<qint64>(behind, length / 4);  // steps may become longer than those in front
    m_cUtf8.reserve(static_cast<int>(std::min<qint64>(length + std::min(behind, Most), INT_MAX - 64)));
    MemoryArenas::preferLargePages(m_cUtf8.data(), static_cast<std::size_t>(m_cUtf8.capacity()));
}

namespace {

/// The index behind the first character from index on that ends a tag name or begins another tag; the length if none.
int endOfName(const QString& text, int index)
{
    while (index < text.length() && text.at(index) != QLatin1Char('<') && text.at(index) != QLatin1Char('>'))
        ++index;
    return index;
}

}  // namespace

void ProjectText::forEachNamedID(const QString& text, const std::function<void(int)>& found)
{
    constexpr TextScan::OneOf Bracket{u'<', u'<'};
    const auto indexOfOne = TextScan::Forms::best().m_pfnIndexOfOne;
    for (int open = indexOfOne(text, 0, Bracket); open < text.length(); open = indexOfOne(text, open + 1, Bracket)) {
        const int nameEnd = endOfName(text, open + 1);
        const QStringRef name = text.midRef(open + 1, nameEnd - open - 1);
        if (nameEnd == text.length() || text.at(nameEnd) != QLatin1Char('>') ||
            !name.endsWith(QLatin1String("id"), Qt::CaseInsensitive) || name.startsWith(QLatin1Char('/')))
            continue;
        const int bodyEnd = endOfName(text, nameEnd + 1);
        const QStringRef closing = text.midRef(bodyEnd, name.length() + 3);
        if (closing.compare(QLatin1String("</") + name + QLatin1Char('>'), Qt::CaseInsensitive) != 0)
            continue;
        bool ok = false;
        const int id = text.midRef(nameEnd + 1, bodyEnd - nameEnd - 1).trimmed().toInt(&ok, 10);
        if (ok)
            found(id);
    }
}
