#pragma once

#include <QString>

#include <optional>

/**
 * Reads the elements of a tagged text "<Tag>body</Tag>": the one place that knows the three ways to read a number.
 * The text is never changed; tags are found as GlobalFunction::getBody finds them.
 */
class OptionReader
{
public:
    explicit OptionReader(const QString& text);

    QString text(const char* tag) const;         ///< The body; empty when the element is absent.
    OptionReader nested(const char* tag) const;  ///< A reader on the body of an element.
    bool isEmpty() const { return m_strText.isEmpty(); }

    int numberOrZero(const char* tag) const;             ///< Zero when absent or malformed.
    std::optional<int> number(const char* tag) const;    ///< Nothing when absent or malformed.
    void numberInto(int& value, const char* tag) const;  ///< Leaves value alone when absent or malformed.

private:
    QStringRef body(const char* tag) const;  ///< Null when the element is absent. Takes no memory.

    QString m_strText;
};

/// Writes a tagged text, element by element, without separators.
class OptionWriter
{
public:
    OptionWriter& text(const char* tag, const QString& body);
    OptionWriter& number(const char* tag, int value);  ///< Decimal.
    const QString& result() const { return m_strText; }

private:
    QString m_strText;
};
