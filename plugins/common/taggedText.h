#pragma once

#include <QString>

/**
 * Reads the elements of a tagged text "<Tag>body</Tag>". Tags are found without regard to case, the first one counts;
 * text around the elements, line feeds above all, does not matter.
 */
class TaggedReader
{
public:
    explicit TaggedReader(const QString& text);

    QString text(const QString& tag) const;  ///< The body; empty when the element is absent.

    /// The number in an element, moved into [lowest, highest]; fallback when absent or malformed.
    int number(const QString& tag, int fallback, int lowest, int highest) const;
    double real(const QString& tag, double fallback, double lowest, double highest) const;
    bool flag(const QString& tag, bool fallback) const;  ///< True for any number but 0.

private:
    QString m_strText;
};

/// Writes a tagged text element by element, without separators.
class TaggedWriter
{
public:
    TaggedWriter& text(const QString& tag, const QString& body);
    TaggedWriter& number(const QString& tag, int value);
    TaggedWriter& real(const QString& tag, double value);
    TaggedWriter& flag(const QString& tag, bool value);
    const QString& result() const { return m_strText; }

private:
    QString m_strText;
};
