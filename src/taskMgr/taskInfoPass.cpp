#include "arithm/arithm.h"
#include "arithm/arithmMgr.h"
#include "drawing/drawing.h"
#include "taskMgr/resultCommand.h"
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMessages.h"

#include <QElapsedTimer>
#include <QLoggingCategory>

#include <algorithm>
#include <cstring>
#include <limits>

// Says after each run how many passes it made, where the user asks for it.
Q_LOGGING_CATEGORY(logRun, "lumivant.run", QtWarningMsg)

namespace {

constexpr int LastView = 3;
constexpr qint64 BeforeFirst = -1;  ///< The index of a step behind which the first one comes.

/// Resets the execution counters of a task on every way out of a pass, where asked to.
class CounterReset
{
public:
    CounterReset(TaskInfo& task, bool active) : m_cTask(task), m_bActive(active) {}
    ~CounterReset()
    {
        if (m_bActive)
            m_cTask.initTaskItemExeTimes();
    }
    CounterReset(const CounterReset&) = delete;
    CounterReset& operator=(const CounterReset&) = delete;

private:
    TaskInfo& m_cTask;
    bool m_bActive;
};

bool hasTurn(const TaskItem& item)
{
    return item.m_nMaxExeTimes < 0 || (item.m_nExeTimes < item.m_nMaxExeTimes && !item.runsAtTaskEnd());
}

void countExecution(TaskItem& item)
{
    if (item.m_nExeTimes < std::numeric_limits<int>::max())
        ++item.m_nExeTimes;
}

/// The index that makes the step n places on the next one to run, far within what 64 bits hold.
qint64 skippedTo(qint64 index, int n)
{
    constexpr qint64 Far = qint64{1} << 40;
    return std::clamp(index - 1 + n, -Far, Far);
}

// What a step needs once stands in functions of its own: then little is left of a step that has everything.

/// False when the algorithm does not exist. A miss is not kept: it is looked up again at the next pass.
Q_NEVER_INLINE bool lookUpArithm(TaskItem& item)
{
    TaskItem::Prepared& prepared = item.m_cPrepared;
    prepared.m_pcArithm = ArithmMgr::getInstance()->getArithm(item.m_strArithmID);
    if (!prepared.m_pcArithm)
        return false;
    prepared.m_strArithmID = item.m_strArithmID;
    prepared.m_bDrawing = prepared.m_pcArithm->getID() == QLatin1String(Drawing::getID());
    return true;
}

Q_NEVER_INLINE void makeOption(TaskItem& item, int view)
{
    TaskItem::Prepared& prepared = item.m_cPrepared;
    const QByteArray option = item.m_strOption.toUtf8();
    prepared.m_cUtf8 = view == TaskItem::NoView ? option : "<View>" + QByteArray::number(view) + "</View>" + option;
    prepared.m_strOption = item.m_strOption;
    prepared.m_nView = view;
}

Q_NEVER_INLINE void sayNotExisted(const TaskItem& item, QString& message)
{
    message = TaskMessages::arithmNotExisted(item.m_strArithmName);
}

}  // namespace

Q_ALWAYS_INLINE bool TaskInfo::prepareStep(TaskItem& item)
{
    if (!item.hasArithm() && !lookUpArithm(item))
        return false;
    const int view = item.m_cPrepared.m_bDrawing && !item.runsAtTaskEnd() ? clampedView() : TaskItem::NoView;
    if (!item.hasOption(view))
        makeOption(item, view);
    return true;
}

Q_ALWAYS_INLINE const char* TaskInfo::executeStep(const TaskItem& item)
{
    const QByteArray& option = item.m_cPrepared.m_cUtf8;
    const auto bytes = static_cast<std::size_t>(option.size()) + 1;
    if (m_vecScratch.size() * sizeof(CacheLine) < bytes)
        m_vecScratch.resize(bytes / sizeof(CacheLine) + 1);
    char* const scratch = reinterpret_cast<char*>(m_vecScratch.data());
    std::memcpy(scratch, option.constData(), bytes);
    return item.m_cPrepared.m_pcArithm->executeUtf8(scratch, m_pcStore);
}

Q_ALWAYS_INLINE bool TaskInfo::runStep(qint64& index, QString& message, bool showTime)
{
    TaskItem& item = m_lstItems[static_cast<int>(index)];
    if (!hasTurn(item))
        return true;
    if (!prepareStep(item)) {
        sayNotExisted(item, message);
        return false;
    }
    qint64 ms = 0;
    const char* text = showTime ? executeTimed(item, ms) : executeStep(item);
    if (text && *text != '\0') {
        qint64 next = index;  // a copy: the pass keeps its own index in a register
        if (!obeyResult(text, item, next, message))
            return false;
        index = std::max<qint64>(next, BeforeFirst);
    }
    if (showTime)
        showStepTime(index, ms);
    countExecution(item);
    return true;
}

bool TaskInfo::runOnce(QString& message, bool resetAfter, int lastStep, int timeoutMs)
{
    if (!m_pcDataSource) {
        message = TaskMessages::noDataSource();
        return false;
    }
    const CounterReset reset(*this, resetAfter);
    QElapsedTimer passTime;  // read only where it is asked for: reading it costs more than the rest of a step
    if (timeoutMs >= 0)
        passTime.start();
    if (!m_pcDataSource->execute())
        return true;
    const int last = lastStep < 0 ? m_lstItems.size() - 1 : lastStep;
    for (qint64 index = 0; index <= last; ++index) {
        if (timeoutMs >= 0 && passTime.elapsed() > timeoutMs) {
            message = TaskMessages::timeOut();
            return false;
        }
        if (m_bStopRequested.load())
            return true;
        if (index >= m_lstItems.size())
            break;
        if (!runStep(index, message, resetAfter))
            return false;
    }
    if (!resetAfter)
        m_nPassNum.fetch_add(1, std::memory_order_relaxed);
    return true;
}

bool TaskInfo::obeyResult(const char* text, const TaskItem& item, qint64& index, QString& message)
{
    QString result = QString::fromUtf8(text);
    if (result.length() >= ResultCommand::MinResultLength) {
        message.clear();
        if (!obeyCommands(result, index))
            return false;
    }
    if (result.isEmpty())
        return true;
    message = TaskMessages::stepError(item.m_strArithmName, result);
    qWarning().noquote() << message;
    return false;
}

Q_NEVER_INLINE const char* TaskInfo::executeTimed(const TaskItem& item, qint64& ms)
{
    QElapsedTimer time;
    time.start();
    const char* text = executeStep(item);
    ms = time.elapsed();
    return text;
}

bool TaskInfo::obeyCommands(QString& result, qint64& index)
{
    for (;;) {
        const ResultCommand command = ResultCommand::takeFrom(result);
        switch (command.m_eKind) {
        case ResultCommand::Kind::None:
            return true;
        case ResultCommand::Kind::Skip:
            index = skippedTo(index, command.m_nSkip);
            break;
        case ResultCommand::Kind::Print:
            print(command.m_strText);
            break;
        case ResultCommand::Kind::Stop:
            print(command.m_strText);
            return false;
        }
    }
}

void TaskInfo::obeyPrints(QString& result)
{
    for (;;) {
        const ResultCommand command = ResultCommand::takeFrom(result);
        if (command.m_eKind != ResultCommand::Kind::Print)
            return;
        print(command.m_strText);
    }
}

void TaskInfo::runTaskEndSteps(QString& message, ErrorWording wording)
{
    message.clear();
    for (TaskItem& item : m_lstItems) {
        if (!item.runsAtTaskEnd())
            continue;
        if (!prepareStep(item)) {
            sayNotExisted(item, message);
            return;
        }
        QString result = QString::fromUtf8(executeStep(item));
        if (result.length() >= ResultCommand::MinResultLength)
            obeyPrints(result);
        if (!result.isEmpty()) {
            message = wording(item.m_strArithmName, result);
            return;
        }
    }
}

void TaskInfo::initTaskItemExeTimes()
{
    for (TaskItem& item : m_lstItems)
        item.m_nExeTimes = 0;
}

void TaskInfo::runTaskOnce()
{
    QString message;
    const auto report = [this, &message] {
        const CallBack callBack = m_pfnMessage.load();
        if (callBack && !message.isEmpty())
            callBack(message);
    };
    m_nPassNum.store(0);
    initTaskItemExeTimes();
    if (m_pcDataSource)
        m_pcDataSource->start();
    if (!runOnce(message, false, -1, -1))
        report();
    runTaskEndSteps(message, TaskMessages::singleRunError);
    if (m_pcDataSource)
        m_pcDataSource->stop();
    logPasses();
    report();
}

int TaskInfo::clampedView()
{
    int view = m_nView.load();
    const int clamped = std::clamp(view, 0, LastView);
    if (clamped != view)
        m_nView.compare_exchange_strong(view, clamped);  // a view chosen meanwhile stays
    return clamped;
}

void TaskInfo::print(const QString& text) const
{
    if (const CallBack callBack = m_pfnPrint.load())
        callBack(text);
}

void TaskInfo::logPasses() const
{
    qCInfo(logRun).noquote() << "task \"" + m_strName + "\": " + QString::number(getPassNum()) + " passes";
}
