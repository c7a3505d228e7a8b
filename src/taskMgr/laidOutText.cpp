#include "taskMgr/laidOutText.h"

#include <cstring>

namespace {

/// What Qt says of two views, without telling which is less.
bool isSame(QStringView one, QStringView other)
{
    const auto bytes = sizeof(QChar) * static_cast<std::size_t>(one.size());
    return one.size() == other.size() && (bytes == 0 || std::memcmp(one.data(), other.data(), bytes) == 0);
}

}  // namespace

int LaidOutText::RepeatedNumber::of(QStringView text)
{
    if (!isSame(text, m_strText)) {
        m_strText = text.toString();
        m_nValue = m_strText.toInt(nullptr, 10);
    }
    return m_nValue;
}

const QString& LaidOutText::RecentTexts::of(QStringView text)
{
    const auto length = static_cast<std::size_t>(text.size());
    const std::size_t last = text.isEmpty() ? 0 : text.back().unicode();
    QString& recent = m_astrTexts[(length + last) % m_astrTexts.size()];
    if (!isSame(text, recent))
        recent = text.isEmpty() ? QString() : text.toString();
    return recent;
}

std::optional<TaskText> LaidOutText::task()
{
    TaskText task;
    if (!readHead(task) || !readSteps(task) || m_pcAt < m_pcEnd)
        return std::nullopt;
    return task;
}

std::optional<QList<TaskText>> LaidOutText::project()
{
    QList<TaskText> tasks;
    while (at(m_cTags.m_cTask.m_strOpen)) {
        tasks.append(TaskText());
        if (!readHead(tasks.last()) || !readSteps(tasks.last()) || !at(m_cTags.m_cTask.m_strClose))
            return std::nullopt;
    }
    if (m_pcAt < m_pcEnd)
        return std::nullopt;
    return tasks;
}

bool LaidOutText::readHead(TaskText& task)
{
    const QChar* const begin = m_pcAt;
    QStringView name;
    QStringView kernel;
    QStringView view;
    if (!body(m_cTags.m_cName, name) || !body(m_cTags.m_cKernel, kernel) || !body(m_cTags.m_cView, view))
        return false;
    task.m_strName = name.toString();
    task.m_nKernel = kernel.toString().toInt(nullptr, 10);
    task.m_nView = view.toString().toInt(nullptr, 10);
    QStringView source;
    if (body(m_cTags.m_cDataSource, source))
        task.m_strDataSource = source.toString();
    return !holdsNul(begin);
}

// Looked for in what has just been read, and lies near.
bool LaidOutText::holdsNul(const QChar* begin) const
{
    const QStringView read(begin, m_pcAt);
    return m_cScan.m_pfnIndexOfOne(read, 0, {u'\0', u'\0'}) < read.size();
}

bool LaidOutText::readSteps(TaskText& task)
{
    const TaskItem empty;
    for (StepBodies step;;) {
        const QChar* const begin = m_pcAt;
        if (!findFramed(step)) {
            if (!at(m_cTags.m_cStep.m_strOpen))
                return true;
            if (!findByElements(step))
                return false;
        }
        if (holdsNul(begin))
            return false;
        task.m_lstSteps.append(empty);
        fill(task.m_lstSteps.last(), step);
        task.noteNamedIDs(qAsConst(task.m_lstSteps).last());
    }
}

bool LaidOutText::findFramed(StepBodies& step)
{
    skipBlanks();
    const QChar* const before = m_pcAt;
    if (takes(m_cFrame.m_strCount) && bodyUpTo(m_cFrame.m_strID, step.m_strCount) &&
        bodyUpTo(m_cFrame.m_strOption, step.m_strID) && bodyUpTo(m_cFrame.m_strClass, step.m_strOption) &&
        bodyUpTo(m_cFrame.m_strName, step.m_strClass) && bodyUpTo(m_cFrame.m_strDescribe, step.m_strName) &&
        bodyUpTo(m_cFrame.m_strEnd, step.m_strDescribe))
        return true;
    m_pcAt = before;
    return false;
}

bool LaidOutText::findByElements(StepBodies& step)
{
    return body(m_cTags.m_cCount, step.m_strCount) && body(m_cTags.m_cArithmID, step.m_strID) &&
           body(m_cTags.m_cOption, step.m_strOption) && body(m_cTags.m_cClassName, step.m_strClass) &&
           body(m_cTags.m_cArithmName, step.m_strName) && body(m_cTags.m_cDescribe, step.m_strDescribe) &&
           at(m_cTags.m_cStep.m_strClose);
}

void LaidOutText::fill(TaskItem& item, const StepBodies& step)
{
    item.m_nMaxExeTimes = m_cCount.of(step.m_strCount);
    item.m_strArithmID = m_cID.of(step.m_strID);
    item.m_strOption = step.m_strOption.toString();
    item.m_strClassName = m_cClass.of(step.m_strClass);
    item.m_strArithmName = m_cName.of(step.m_strName);
    item.m_strDescribe = m_cDescribe.of(step.m_strDescribe);
}

bool LaidOutText::bodyUpTo(const QString& piece, QStringView& found)
{
    const QChar* const start = m_pcAt;
    toNextMarker();
    found = QStringView(start, m_pcAt);
    return takes(piece);
}

bool LaidOutText::body(const TaskTags::Tag& tag, QStringView& found)
{
    const QChar* const before = m_pcAt;
    if (at(tag.m_strOpen) && bodyUpTo(tag.m_strClose, found))
        return true;
    m_pcAt = before;
    return false;
}

bool LaidOutText::at(const QString& marker)
{
    skipBlanks();
    return takes(marker);
}

bool LaidOutText::takes(const QString& piece)
{
    const int length = piece.size();
    if (m_pcEnd - m_pcAt < length || std::memcmp(m_pcAt, piece.constData(), sizeof(QChar) * length) != 0)
        return false;
    m_pcAt += length;
    return true;
}

// The signs of a task are rarely meant as such in a body ("a <= b"), so only its whole markers count.
bool LaidOutText::taskMarkerStandsAt(const QChar* bracket) const
{
    const QStringView there(bracket, m_pcEnd);
    return there.startsWith(m_cTags.m_cTask.m_strOpen, Qt::CaseInsensitive) ||
           there.startsWith(m_cTags.m_cTask.m_strClose, Qt::CaseInsensitive);
}

// Tags of an option text begin with a bracket, too; the second sign of a marker, or its second and third, are rare.
void LaidOutText::toNextMarker()
{
    constexpr TextScan::OneOf Sign{u'<', u'/'};
    constexpr TextScan::OneOf SignBehind{u'-', u'='};
    const QStringView text(m_pcAt, m_pcEnd);
    const int length = static_cast<int>(text.size());
    int i = 0;
    for (;; ++i) {
        i = m_cScan.m_pfnIndexOfPair(text, i, Sign, SignBehind);
        if (i == length)
            break;
        const bool closes = text[i] == QLatin1Char('/');
        if (closes && (i == 0 || text[i - 1] != QLatin1Char('<')))
            continue;
        const int bracket = closes ? i - 1 : i;
        if (text[i + 1] == QLatin1Char('-') || taskMarkerStandsAt(m_pcAt + bracket)) {
            i = bracket;
            break;
        }
    }
    m_pcAt += i;
}

void LaidOutText::skipBlanks()
{
    const auto isBlank = [](QChar c) {
        return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QLatin1Char(' ');
    };
    while (m_pcAt < m_pcEnd && isBlank(*m_pcAt))
        ++m_pcAt;
}
