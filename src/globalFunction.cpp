#include "globalFunction.h"

namespace {

/// Where an element lies in a text.
struct Element
{
    int m_nOpen = -1;   ///< Index of the opening marker; -1 when there is no element.
    int m_nClose = -1;  ///< Index of the closing marker.

    explicit operator bool() const { return m_nOpen >= 0; }
};

// The closing marker is searched from the start of the text too, so a stray one in front hides every element behind it.
Element findElement(const QString& text, QStringView open, QStringView close)
{
    const int openIndex = text.indexOf(open, 0, Qt::CaseInsensitive);
    if (openIndex < 0)
        return {};
    const int closeIndex = text.indexOf(close, 0, Qt::CaseInsensitive);
    if (openIndex >= closeIndex || closeIndex >= text.length())
        return {};
    return {openIndex, closeIndex};
}

// Kept on purpose: tabs and all other white space do not count as blank.
bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

}  // namespace

QString GlobalFunction::getBody(QString text, QString open, QString close)
{
    const BodyPlace place = findBody(text, open, close);
    return place.m_nStart < 0 ? QString() : text.mid(place.m_nStart, place.m_nLength);
}

GlobalFunction::BodyPlace GlobalFunction::findBody(const QString& text, QStringView open, QStringView close)
{
    const Element element = findElement(text, open, close);
    if (!element)
        return {};
    const int start = element.m_nOpen + static_cast<int>(open.length());
    return {start, element.m_nClose - start};
}

QString GlobalFunction::getAndRemoveBody(QString& text, QString open, QString close)
{
    const Element element = findElement(text, open, close);
    if (!element)
        return {};
    const int start = element.m_nOpen + open.length();
    const QString body = text.mid(start, element.m_nClose - start);
    text.remove(element.m_nOpen, close.length() + (element.m_nClose - element.m_nOpen));
    return body;
}

void GlobalFunction::trimString(QString& text)
{
    const QStringView left = trimmed(text);
    if (left.size() != text.size())
        text = left.toString();
}

QStringView GlobalFunction::trimmed(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.mid(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}
