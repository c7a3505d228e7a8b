#include "projectText.h"

#include <QStringRef>

ElementReader::ElementReader(const QString& text, const QString& open, const QString& close)
    : m_strText(text), m_strOpen(open), m_strClose(close)
{
}

QString ElementReader::next()
{
    const int open = m_strText.indexOf(m_strOpen, m_nPos, Qt::CaseInsensitive);
    if (open < 0)
        return {};
    const int close = m_strText.indexOf(m_strClose, m_nPos, Qt::CaseInsensitive);
    if (open >= close)
        return {};
    const int bodyStart = open + m_strOpen.length();
    const QString body = m_strText.mid(bodyStart, close - bodyStart);
    m_strLeftOver += m_strText.midRef(m_nPos, open - m_nPos);
    m_nPos = close + m_strClose.length();
    if (markerAcrossSeam()) {
        m_strText = remaining();
        m_strLeftOver.clear();
        m_nPos = 0;
    }
    return body;
}

// Looks at so little on both sides that neither side alone can hold the marker.
bool ElementReader::markerAcrossSeam() const
{
    const auto across = [this](const QString& marker) {
        const int reach = marker.length() - 1;
        const QString seam = m_strLeftOver.right(reach) + m_strText.midRef(m_nPos, reach);
        return seam.contains(marker, Qt::CaseInsensitive);
    };
    return !m_strLeftOver.isEmpty() && (across(m_strOpen) || across(m_strClose));
}

QString ProjectText::upToNul(const QString& text)
{
    const int nul = text.indexOf(QChar(0));
    return nul < 0 ? text : text.left(nul);
}

QString ProjectText::collapseEmptyLines(const QString& text)
{
    QString result;
    result.reserve(text.length());
    for (const QChar c : text) {
        const bool lineEnd = c == QLatin1Char('\r') || c == QLatin1Char('\n');
        if (lineEnd && result.endsWith(c))
            continue;
        result += c;
        if (lineEnd && result.endsWith(QLatin1String("\r\n\r\n")))
            result.chop(2);
    }
    return result;
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
    for (int open = text.indexOf(QLatin1Char('<')); open >= 0; open = text.indexOf(QLatin1Char('<'), open + 1)) {
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
