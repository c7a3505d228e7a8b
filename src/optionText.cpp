#include "optionText.h"

#include "globalFunction.h"

#include <QVarLengthArray>

namespace {

/// A tag between its brackets, on the stack: options are read in every pass.
class Marker
{
public:
    Marker(QLatin1String before, QLatin1String tag)
    {
        append(before);
        append(tag);
        append(QLatin1String(">"));
    }
    operator QStringView() const { return QStringView(m_vecText.constData(), m_vecText.size()); }

private:
    void append(QLatin1String text)
    {
        for (const char c : text)
            m_vecText.append(QLatin1Char(c));
    }

    QVarLengthArray<QChar, 32> m_vecText;
};

}  // namespace

OptionReader::OptionReader(const QString& text) : m_strText(text) {}

QStringRef OptionReader::body(const char* tag) const
{
    const QLatin1String name(tag);
    const GlobalFunction::BodyPlace place =
        GlobalFunction::findBody(m_strText, Marker(QLatin1String("<"), name), Marker(QLatin1String("</"), name));
    return place.m_nStart < 0 ? QStringRef() : m_strText.midRef(place.m_nStart, place.m_nLength);
}

QString OptionReader::text(const char* tag) const
{
    return body(tag).toString();
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
    const int value = body(tag).toInt(&ok, 10);
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
