#include "taggedText.h"

#include <algorithm>
#include <cmath>

TaggedReader::TaggedReader(const QString& text) : m_strText(text) {}

QString TaggedReader::text(const QString& tag) const
{
    const QString open = QLatin1Char('<') + tag + QLatin1Char('>');
    const int start = m_strText.indexOf(open, 0, Qt::CaseInsensitive);
    if (start < 0)
        return QString();
    const int body = start + open.length();
    const int end = m_strText.indexOf(QStringLiteral("</") + tag + QLatin1Char('>'), body, Qt::CaseInsensitive);
    return end < 0 ? QString() : m_strText.mid(body, end - body);
}

int TaggedReader::number(const QString& tag, int fallback, int lowest, int highest) const
{
    bool ok = false;
    const int value = text(tag).trimmed().toInt(&ok);
    return ok ? std::clamp(value, lowest, highest) : fallback;
}

double TaggedReader::real(const QString& tag, double fallback, double lowest, double highest) const
{
    bool ok = false;
    const double value = text(tag).trimmed().toDouble(&ok);
    return ok && std::isfinite(value) ? std::clamp(value, lowest, highest) : fallback;
}

bool TaggedReader::flag(const QString& tag, bool fallback) const
{
    bool ok = false;
    const int value = text(tag).trimmed().toInt(&ok);
    return ok ? value != 0 : fallback;
}

TaggedWriter& TaggedWriter::text(const QString& tag, const QString& body)
{
    m_strText += QLatin1Char('<') + tag + QLatin1Char('>') + body + QStringLiteral("</") + tag + QLatin1Char('>');
    return *this;
}

TaggedWriter& TaggedWriter::number(const QString& tag, int value)
{
    return text(tag, QString::number(value));
}

TaggedWriter& TaggedWriter::real(const QString& tag, double value)
{
    return text(tag, QString::number(value, 'g', 10));
}

TaggedWriter& TaggedWriter::flag(const QString& tag, bool value)
{
    return number(tag, value ? 1 : 0);
}
