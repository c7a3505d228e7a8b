#pragma once

#include "taskMgr/taskTags.h"
#include "taskMgr/taskText.h"
#include "textScan.h"

#include <QList>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>

/**
 * Reads texts of the layout that the program writes, in one pass: every element in its place, nothing but line ends and
 * spaces between them, no sign of a marker and no NUL within a body. Cutting such elements out one by one can neither
 * find another one first nor leave anything behind, so taking them in a row gives the same.
 */
class LaidOutText
{
public:
    /// text is not copied and outlives the reader.
    explicit LaidOutText(QStringView text) : m_strText(text) {}

    /// The task whose body the text is; nothing when it has another layout.
    std::optional<TaskText> task();

    /// The tasks whose elements the text consists of; nothing when it has another layout.
    std::optional<QList<TaskText>> project();

private:
    /// A number that is often the same as the one before; zero when it is none.
    class RepeatedNumber
    {
    public:
        int of(QStringView text);

    private:
        QString m_strText;
        int m_nValue = 0;
    };

    /// A project has few such texts, each in many steps: steps with equal texts share one, unless others push it out.
    class RecentTexts
    {
    public:
        const QString& of(QStringView text);

    private:
        std::array<QString, 16> m_astrTexts;  ///< Each in the place that its length and its last character give.
    };

    bool readHead(TaskText& task);
    bool readSteps(QList<TaskItem>& steps);                   ///< Until another element or the end comes next.
    bool readStep(TaskItem& item);                            ///< Behind its opening marker.
    bool body(const TaskTags::Tag& tag, QStringView& found);  ///< Takes the element that comes next.
    bool at(const QString& marker);                           ///< Whether it comes next; then goes behind it.
    bool startsHere(const QString& marker) const;
    bool markerStandsHere(int index) const;  ///< Whether the bracket there begins a marker.
    int nextMarkerOrNul() const;             ///< Its index; the length of the text when there is none.
    void skipBlanks();

    const TaskTags& m_cTags = TaskTags::get();
    const TextScan::Forms& m_cScan = TextScan::Forms::best();
    QStringView m_strText;
    int m_nPos = 0;
    RepeatedNumber m_cCount;
    RecentTexts m_cID;
    RecentTexts m_cClass;
    RecentTexts m_cName;
    RecentTexts m_cDescribe;
};
