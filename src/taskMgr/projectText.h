#pragma once

#include "safeFile.h"

#include <QString>
#include <QStringView>

#include <functional>
#include <utility>

/**
 * Takes the repeated elements of a text off it, one after the other.
 *
 * Gives what repeated GlobalFunction::getAndRemoveBody on the whole text gives, but in a time that grows linearly with
 * the text: elements are read through a window that moves over the unchanged text, and what stands between them is kept
 * apart. What is kept apart holds no marker; one that forms where an element was cut out is looked for there.
 */
class ElementReader
{
public:
    /// text is not copied and outlives the reader.
    ElementReader(QStringView text, const QString& open, const QString& close);

    /// The body of the next element, valid until the next call; empty when there is none, or when it is empty itself.
    QStringView next();

    /// The text without the elements taken so far.
    QString remaining() const { return m_strLeftOver + m_strText.mid(m_nPos).toString(); }

private:
    bool markerAcrossSeam() const;

    QStringView m_strText;
    QString m_strJoined;  ///< What m_strText shows once a marker formed across a seam.
    QString m_strBody;    ///< The body given last, where the text it stood in is gone.
    QString m_strOpen;
    QString m_strClose;
    QString m_strLeftOver;  ///< What stood in front of the window and was not part of an element.
    int m_nPos = 0;         ///< Where the window starts.
};

namespace ProjectText {

/// What is read of a project text: all in front of the first NUL.
QString upToNul(const QString& text);

/**
 * Removes empty lines: what is left when repeated carriage returns, line feeds and pairs of both are replaced by one
 * until none of the three is left. Used on the whole project text before it is saved.
 */
QString collapseEmptyLines(const QString& text);

/**
 * Makes the bytes of a project file out of a text that is written into it piece by piece: empty lines removed, UTF-8.
 *
 * Only the last pieces wait as text, so saving a long project costs no memory to speak of.
 */
class Saved
{
public:
    explicit Saved(SafeFile::Sink sink) : m_fnSink(std::move(sink)) {}

    QString& text() { return m_strText; }  ///< To append to.
    void keepShort();                      ///< Called behind each step; gives most of a long text to the sink.
    bool finish();                         ///< Gives the rest; whether the sink took all. It gets nothing behind a no.

private:
    void takeOff(int held);

    SafeFile::Sink m_fnSink;
    bool m_bTaken = true;
    QString m_strText;
};

/**
 * Calls found for each identifier that an option text names: the decimal number, blanks around it allowed, in each
 * element whose name ends in "ID" in any case.
 */
void forEachNamedID(const QString& text, const std::function<void(int)>& found);

}  // namespace ProjectText
