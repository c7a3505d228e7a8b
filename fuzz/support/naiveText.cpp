// Compiled without checks and observation in the fuzz build: the model is not what is looked at, and it is slow enough.
#include "naiveText.h"

#include <QVector>

#include <vector>

namespace {

using Points = std::vector<uint>;

Points foldedPoints(const QString& text)
{
    Points points;
    for (const uint point : text.toUcs4())
        points.push_back(QChar::toCaseFolded(point));
    return points;
}

bool standsAt(const Points& text, std::size_t start, const Points& marker)
{
    for (std::size_t i = 0; i < marker.size(); ++i) {
        if (text[start + i] != marker[i])
            return false;
    }
    return true;
}

/// Where a marker stands first, in UTF-16 units; -1 when it is missing.
int indexOf(const QString& text, const QString& marker)
{
    const Points points = foldedPoints(text);
    const Points wanted = foldedPoints(marker);
    int unit = 0;
    for (std::size_t start = 0; start + wanted.size() <= points.size(); ++start) {
        if (standsAt(points, start, wanted))
            return unit;
        unit += text.at(unit).isHighSurrogate() ? 2 : 1;
    }
    return -1;
}

/// As QString::mid: a negative length means all that is left.
QString part(const QString& text, int start, int length)
{
    QString result;
    for (int i = start; i < text.size() && (length < 0 || i < start + length); ++i)
        result += text.at(i);
    return result;
}

bool isBlank(QChar c)
{
    return c.unicode() == 32 || c.unicode() == 13 || c.unicode() == 10;
}

}  // namespace

QString Naive::takeBody(QString& text, const QString& open, const QString& close)
{
    const int s = indexOf(text, open);
    const int e = indexOf(text, close);
    if (s < 0 || s >= e || e >= text.length())
        return {};
    const QString body = part(text, s + open.length(), e - s - open.length());
    text = part(text, 0, s) + part(text, s + close.length() + (e - s), -1);
    return body;
}

QString Naive::body(QString text, const QString& open, const QString& close)
{
    return takeBody(text, open, close);
}

QString Naive::element(const QString& text, const QString& name)
{
    return body(text, '<' + name + '>', "</" + name + '>');
}

QString Naive::trimmed(QString text)
{
    while (!text.isEmpty() && isBlank(text.at(0)))
        text.remove(0, 1);
    while (!text.isEmpty() && isBlank(text.at(text.size() - 1)))
        text.remove(text.size() - 1, 1);
    return text;
}

QString Naive::withoutEmptyLines(QString text)
{
    const auto collapse = [&text](const char* pair, const char* single) {
        while (text.contains(QLatin1String(pair)))
            text.replace(QLatin1String(pair), QLatin1String(single));
    };
    while (text.contains(QLatin1String("\r\r")) || text.contains(QLatin1String("\n\n")) ||
           text.contains(QLatin1String("\r\n\r\n"))) {
        collapse("\r\r", "\r");
        collapse("\n\n", "\n");
        collapse("\r\n\r\n", "\r\n");
    }
    return text;
}
