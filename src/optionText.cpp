#include "optionText.h"

#include "globalFunction.h"

OptionReader::OptionReader(const QString& text) : m_strText(text) {}

QString OptionReader::text(const char* tag) const
{
    const QString name = QString::fromUtf8(tag);
    return GlobalFunction::getBody(m_strText, QLatin1Char('<') + name + QLatin1Char('>'),
                                   QLatin1String("</") + name + QLatin1Char('>'));
}

OptionReader OptionReader::nested(const char* tag) const
{
    return OptionReader(text(tag));
}

int OptionReader::numberOrZero(const char* tag) const
{
    return number(tag).value_or(0);
}

std::optional<int> OptionReader::number(const char* tag) const
{
    bool ok = false;
    const int value = text(tag).toInt(&ok, 10);
    return ok ? std::optional<int>(value) : std::nullopt;
}

void OptionReader::numberInto(int& value, const char* tag) const
{
    value = number(tag).value_or(value);
}

OptionWriter& OptionWriter::text(const char* tag, const QString& body)
{
    const QString name = QString::fromUtf8(tag);
    m_strText += QLatin1Char('<') + name + QLatin1Char('>') + body + QLatin1String("</") + name + QLatin1Char('>');
    return *this;
}

OptionWriter& OptionWriter::number(const char* tag, int value)
{
    return text(tag, QString::number(value));
}
