#pragma once

#include <QString>
#include <QStringView>

#include <vector>

/// Finds places in long texts at the speed of reading them. Pure functions, any thread.
namespace TextScan {

/// Two characters of which either counts; both the same where only one does.
struct OneOf
{
    char16_t m_cA;
    char16_t m_cB;
};

/// Index of the first character at or behind from that is one of first and is followed by one of second; the length of
/// the text when there is none. Character by character: the definition, and for the ends of texts.
int indexOfPairPlain(QStringView text, int from, OneOf first, OneOf second);

/// Index of the first character at or behind from that is one of wanted; the length of the text when there is none.
/// Character by character: the definition, and for the ends of texts.
int indexOfOnePlain(QStringView text, int from, OneOf wanted);

/// The forms of the two searches, one table for each kind of processor. All give what the plain one gives and read
/// nothing outside of the text.
struct Forms
{
    const char* m_pchName;
    int (*m_pfnIndexOfPair)(QStringView text, int from, OneOf first, OneOf second);
    int (*m_pfnIndexOfOne)(QStringView text, int from, OneOf wanted);

    static const Forms& plain();

    // Null where this build or this processor does not have them.
    static const Forms* sse2();
    static const Forms* avx2();
    static const Forms* neon();

    /// All that this processor has, the plain one first and the fastest last.
    static std::vector<const Forms*> available();

    /// The fastest. Whoever goes through a text in short hops asks once for all of them.
    static const Forms& best();
};

/// Where marker stands first at or behind from, without regard to case; -1 when it does not: what QStringView::indexOf
/// gives, faster for the markers of a project ("<=…", "</=…", "<-…", "</-…").
int indexOfMarker(QStringView text, int from, const QString& marker);

}  // namespace TextScan
