#include "taskMgr/taskText.h"

#include "globalFunction.h"
#include "taskMgr/projectText.h"
#include "taskMgr/taskTags.h"
#include "textScan.h"

#include <optional>

namespace {

const TaskTags& tags()
{
    return TaskTags::get();
}

/// A number that is often the same as the one before; zero when it is none.
class RepeatedNumber
{
public:
    int of(QStringView text)
    {
        if (text != m_strText) {
            m_strText = text.toString();
            m_nValue = m_strText.toInt(nullptr, 10);
        }
        return m_nValue;
    }

private:
    QString m_strText;
    int m_nValue = 0;
};

/// A text that is often the same as the one before: they then share their memory.
class RepeatedText
{
public:
    const QString& of(QStringView text)
    {
        if (text != m_strText)
            m_strText = text.isEmpty() ? QString() : text.toString();
        return m_strText;
    }

private:
    QString m_strText;
};

/**
 * Reads a task text of the layout that the program writes: every element in its place, nothing but line ends and spaces
 * between them, no sign of a marker within a body. Cutting such elements out one by one can neither find another one
 * first nor leave anything behind, so taking them in a row gives the same.
 */
class LaidOutTask
{
public:
    explicit LaidOutTask(QStringView text) : m_strText(text) {}

    /// Nothing when the text has another layout.
    std::optional<TaskText> read();

private:
    bool readHead(TaskText& task);
    bool readStep(TaskItem& item);
    bool body(const TaskTags::Tag& tag, QStringView& found);  ///< Takes the element that comes next.
    bool at(const QString& marker);                           ///< Whether it comes next; then goes behind it.
    int nextMarker() const;                                   ///< Index of the next "<-" or "</-".
    void skipBlanks();

    QStringView m_strText;
    int m_nPos = 0;
    RepeatedNumber m_cCount;
    RepeatedText m_cID;
    RepeatedText m_cClass;
    RepeatedText m_cName;
    RepeatedText m_cDescribe;
};

std::optional<TaskText> LaidOutTask::read()
{
    TaskText task;
    if (!readHead(task))
        return std::nullopt;
    for (skipBlanks(); m_nPos < m_strText.size(); skipBlanks()) {
        task.m_lstSteps.append(TaskItem());
        if (!readStep(task.m_lstSteps.last()))
            return std::nullopt;
    }
    return task;
}

bool LaidOutTask::readHead(TaskText& task)
{
    QStringView name;
    QStringView kernel;
    QStringView view;
    if (!body(tags().m_cName, name) || !body(tags().m_cKernel, kernel) || !body(tags().m_cView, view))
        return false;
    task.m_strName = name.toString();
    task.m_nKernel = kernel.toString().toInt(nullptr, 10);
    task.m_nView = view.toString().toInt(nullptr, 10);
    QStringView source;
    if (body(tags().m_cDataSource, source))
        task.m_strDataSource = source.toString();
    return true;
}

bool LaidOutTask::readStep(TaskItem& item)
{
    QStringView count;
    QStringView id;
    QStringView option;
    QStringView className;
    QStringView name;
    QStringView describe;
    if (!at(tags().m_cStep.m_strOpen) || !body(tags().m_cCount, count) || !body(tags().m_cArithmID, id) ||
        !body(tags().m_cOption, option) || !body(tags().m_cClassName, className) || !body(tags().m_cArithmName, name) ||
        !body(tags().m_cDescribe, describe) || !at(tags().m_cStep.m_strClose))
        return false;
    item.m_nMaxExeTimes = m_cCount.of(count);
    item.m_strArithmID = m_cID.of(id);
    item.m_strOption = option.toString();
    item.m_strClassName = m_cClass.of(className);
    item.m_strArithmName = m_cName.of(name);
    item.m_strDescribe = m_cDescribe.of(describe);
    return true;
}

bool LaidOutTask::body(const TaskTags::Tag& tag, QStringView& found)
{
    const int before = m_nPos;
    if (at(tag.m_strOpen)) {
        const int start = m_nPos;
        m_nPos = nextMarker();
        found = m_strText.mid(start, m_nPos - start);
        if (m_strText.mid(m_nPos).startsWith(tag.m_strClose)) {
            m_nPos += tag.m_strClose.size();
            return true;
        }
    }
    m_nPos = before;
    return false;
}

bool LaidOutTask::at(const QString& marker)
{
    skipBlanks();
    if (!m_strText.mid(m_nPos).startsWith(marker))
        return false;
    m_nPos += marker.size();
    return true;
}

int LaidOutTask::nextMarker() const
{
    constexpr TextScan::OneOf Bracket{u'<', u'/'};
    constexpr TextScan::OneOf Dash{u'-', u'-'};
    const int length = static_cast<int>(m_strText.size());
    for (int i = m_nPos; i < length; ++i) {
        i = TextScan::indexOfPair(m_strText, i, Bracket, Dash);
        if (i == length || m_strText[i] == QLatin1Char('<'))
            return i;
        if (i > m_nPos && m_strText[i - 1] == QLatin1Char('<'))
            return i - 1;
    }
    return length;
}

void LaidOutTask::skipBlanks()
{
    const auto isBlank = [](QChar c) {
        return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QLatin1Char(' ');
    };
    while (m_nPos < m_strText.size() && isBlank(m_strText[m_nPos]))
        ++m_nPos;
}

QString take(QString& text, const TaskTags::Tag& tag)
{
    return GlobalFunction::getAndRemoveBody(text, tag.m_strOpen, tag.m_strClose);
}

TaskItem stepOf(QString body)
{
    TaskItem item;
    item.m_nMaxExeTimes = take(body, tags().m_cCount).toInt(nullptr, 10);  // a missing count is 0: never runs
    item.m_strArithmID = take(body, tags().m_cArithmID);
    item.m_strOption = take(body, tags().m_cOption);
    item.m_strClassName = take(body, tags().m_cClassName);
    item.m_strArithmName = take(body, tags().m_cArithmName);
    item.m_strDescribe = take(body, tags().m_cDescribe);
    return item;
}

}  // namespace

TaskText TaskText::read(QStringView body)
{
    if (std::optional<TaskText> task = LaidOutTask(body).read())
        return *std::move(task);
    return readByElements(body.toString());
}

TaskText TaskText::readByElements(QString body)
{
    TaskText task;
    task.m_strName = take(body, tags().m_cName);
    task.m_nKernel = take(body, tags().m_cKernel).toInt(nullptr, 10);
    task.m_nView = take(body, tags().m_cView).toInt(nullptr, 10);
    task.m_strDataSource = take(body, tags().m_cDataSource);
    ElementReader steps(body, tags().m_cStep.m_strOpen, tags().m_cStep.m_strClose);
    for (QStringView step = steps.next(); !step.isEmpty(); step = steps.next())
        task.m_lstSteps.append(stepOf(step.toString()));
    return task;
}
