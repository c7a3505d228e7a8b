#pragma once

#include "taskMgr/stepFrame.h"
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
    explicit LaidOutText(QStringView text) : m_pcAt(text.data()), m_pcEnd(text.data() + text.size()) {}

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

    /// The texts of a step as they stand in the project.
    struct StepBodies
    {
        QStringView m_strCount;
        QStringView m_strID;
        QStringView m_strOption;
        QStringView m_strClass;
        QStringView m_strName;
        QStringView m_strDescribe;
    };

    bool readHead(TaskText& task);
    bool readSteps(TaskText& task);         ///< Until another element or the end comes next.
    bool findFramed(StepBodies& step);      ///< Takes a step that stands just as the program writes it.
    bool findByElements(StepBodies& step);  ///< Takes one with any blanks between, behind its opening marker.
    void fill(TaskItem& item, const StepBodies& step);

    bool body(const TaskTags::Tag& tag, QStringView& found);  ///< Takes the element that comes next.
    bool bodyUpTo(const QString& piece, QStringView& found);  ///< Takes all up to the next marker, and the piece there.
    bool at(const QString& marker);                           ///< Whether it comes next; then goes behind it.
    bool takes(const QString& piece);                         ///< Whether it stands right here; then goes behind it.
    void toNextMarker();                                      ///< To the end when there is none.
    bool holdsNul(const QChar* begin) const;  ///< From there to where reading is; then another reader finds the end.
    bool taskMarkerStandsAt(const QChar* bracket) const;
    void skipBlanks();

    const TaskTags& m_cTags = TaskTags::get();
    const StepFrame& m_cFrame = StepFrame::get();
    const TextScan::Forms& m_cScan = TextScan::Forms::best();
    const QChar* m_pcAt;  ///< What was not read yet.
    const QChar* const m_pcEnd;
    RepeatedNumber m_cCount;
    RecentTexts m_cID;
    RecentTexts m_cClass;
    RecentTexts m_cName;
    RecentTexts m_cDescribe;
};
