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
    if (!readHead(task) || !readSteps(task.m_lstSteps) || m_nPos < m_strText.size())
        return std::nullopt;
    return task;
}

std::optional<QList<TaskText>> LaidOutText::project()
{
    QList<TaskText> tasks;
    while (at(m_cTags.m_cTask.m_strOpen)) {
        tasks.append(TaskText());
        if (!readHead(tasks.last()) || !readSteps(tasks.last().m_lstSteps) || !at(m_cTags.m_cTask.m_strClose))
            return std::nullopt;
    }
    if (m_nPos < m_strText.size())
        return std::nullopt;
    return tasks;
}

bool LaidOutText::readHead(TaskText& task)
{
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
    return true;
}

bool LaidOutText::readSteps(QList<TaskItem>& steps)
{
    while (at(m_cTags.m_cStep.m_strOpen)) {
        steps.append(TaskItem());
        if (!readStep(steps.last()))
            return false;
    }
    return true;
}

bool LaidOutText::readStep(TaskItem& item)
{
    QStringView count;
    QStringView id;
    QStringView option;
    QStringView className;
    QStringView name;
    QStringView describe;
    if (!body(m_cTags.m_cCount, count) || !body(m_cTags.m_cArithmID, id) || !body(m_cTags.m_cOption, option) ||
        !body(m_cTags.m_cClassName, className) || !body(m_cTags.m_cArithmName, name) ||
        !body(m_cTags.m_cDescribe, describe) || !at(m_cTags.m_cStep.m_strClose))
        return false;
    item.m_nMaxExeTimes = m_cCount.of(count);
    item.m_strArithmID = m_cID.of(id);
    item.m_strOption = option.toString();
    item.m_strClassName = m_cClass.of(className);
    item.m_strArithmName = m_cName.of(name);
    item.m_strDescribe = m_cDescribe.of(describe);
    return true;
}

bool LaidOutText::body(const TaskTags::Tag& tag, QStringView& found)
{
    const int before = m_nPos;
    if (at(tag.m_strOpen)) {
        const int start = m_nPos;
        m_nPos = nextMarkerOrNul();
        found = m_strText.mid(start, m_nPos - start);
        if (startsHere(tag.m_strClose)) {
            m_nPos += tag.m_strClose.size();
            return true;
        }
    }
    m_nPos = before;
    return false;
}

bool LaidOutText::at(const QString& marker)
{
    skipBlanks();
    if (!startsHere(marker))
        return false;
    m_nPos += marker.size();
    return true;
}

bool LaidOutText::startsHere(const QString& marker) const
{
    return m_strText.size() - m_nPos >= marker.size() &&
           std::memcmp(m_strText.data() + m_nPos, marker.constData(), sizeof(QChar) * marker.size()) == 0;
}

// The signs of a task are rarely meant as such in a body ("a <= b"), so only its whole markers count.
bool LaidOutText::markerStandsHere(int index) const
{
    const auto sign = [this, index](int behind) {
        return index + behind < m_strText.size() ? m_strText[index + behind].unicode() : char16_t(0);
    };
    const char16_t c = sign(1) == u'/' ? sign(2) : sign(1);
    if (c != u'=')
        return c == u'-';
    const QStringView there = m_strText.mid(index);
    return there.startsWith(m_cTags.m_cTask.m_strOpen, Qt::CaseInsensitive) ||
           there.startsWith(m_cTags.m_cTask.m_strClose, Qt::CaseInsensitive);
}

int LaidOutText::nextMarkerOrNul() const
{
    const int length = static_cast<int>(m_strText.size());
    int i = m_cScan.m_pfnIndexOfOne(m_strText, m_nPos, {u'<', u'\0'});
    while (i < length && !m_strText[i].isNull() && !markerStandsHere(i))
        i = m_cScan.m_pfnIndexOfOne(m_strText, i + 1, {u'<', u'\0'});
    return i;
}

void LaidOutText::skipBlanks()
{
    const auto isBlank = [](QChar c) {
        return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QLatin1Char(' ');
    };
    while (m_nPos < m_strText.size() && isBlank(m_strText[m_nPos]))
        ++m_nPos;
}
