#pragma once

#include <QString>
#include <QStringView>

/// Finds places in long texts at the speed of reading them. Pure functions, any thread.
namespace TextScan {

/// Two characters of which either counts; both the same where only one does.
struct OneOf
{
    char16_t m_cA;
    char16_t m_cB;
};

/// Index of the first character at or behind from that is one of first and is followed by one of second; the length of
/// the text when there is none.
int indexOfPair(QStringView text, int from, OneOf first, OneOf second);

/// What indexOfPair is defined to give, character by character.
int indexOfPairPlain(QStringView text, int from, OneOf first, OneOf second);

/// Index of the first character at or behind from that is one of wanted; the length of the text when there is none.
int indexOfOne(QStringView text, int from, OneOf wanted);

/// What indexOfOne is defined to give, character by character.
int indexOfOnePlain(QStringView text, int from, OneOf wanted);

/// Where marker stands first at or behind from, without regard to case; -1 when it does not: what QStringView::indexOf
/// gives, faster for the markers of a project ("<=…", "</=…", "<-…", "</-…").
int indexOfMarker(QStringView text, int from, const QString& marker);

}  // namespace TextScan
