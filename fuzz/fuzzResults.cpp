// Passes over steps whose results the fuzzer chooses, against a model of a pass. Input: the run, the steps, then the
// results in the order in which they are given, each ended by a zero byte.
#include "arithm/arithmMgr.h"
#include "fuzzInput.h"
#include "fuzzSupport.h"
#include "memoryDisk/memoryDisk.h"
#include "naiveText.h"
#include "taskMgr/taskMgr.h"

#include <QStringList>

namespace {

constexpr int MostSteps = 6;
constexpr int MostCalls = 48;  // then every result is a stop
constexpr int TaskEnd = 999999999;

enum class Kind
{
    Results,
    Drawing,
    Missing
};

struct Step
{
    Kind kind = Kind::Results;
    int maxExeTimes = -1;
    int exeTimes = 0;
    QString name;
};

struct Scenario
{
    bool whole = false;  ///< A whole run; a single pass otherwise.
    bool reset = false;
    bool hasPicture = true;
    int lastStep = -1;
    int view = 0;
    QList<Step> steps;
    QList<QByteArray> results;
};

/// What can be seen of a run.
struct Seen
{
    bool returned = true;
    QString message;
    QStringList calls;
    QStringList prints;
    QStringList messages;
    int view = 0;
    QList<int> exeTimes;
};

const Scenario* s_pcScenario = nullptr;  ///< The one that runs.
Seen* s_pcSeen = nullptr;

/// The result of a call; a text of one byte 1 stands for null.
const char* resultOf(const Scenario& scenario, int call)
{
    if (call >= MostCalls)
        return "<CMD>stop:enough</CMD>";
    const QList<QByteArray>& results = scenario.results;
    if (results.isEmpty())
        return "";
    const QByteArray& result = results.at(call % results.size());
    return result == "\x01" ? nullptr : result.constData();
}

// ---- The model --------------------------------------------------------------------------------------------------

class Model
{
public:
    explicit Model(const Scenario& scenario) : m_cScenario(scenario), m_lstSteps(scenario.steps)
    {
        m_cSeen.view = scenario.view;
    }

    Seen run()
    {
        if (m_cScenario.whole)
            runWhole();
        else
            m_cSeen.returned = pass(m_cSeen.message, m_cScenario.reset, m_cScenario.lastStep);
        for (const Step& step : m_lstSteps)
            m_cSeen.exeTimes.append(step.exeTimes);
        return m_cSeen;
    }

private:
    void runWhole()
    {
        resetCounters();
        QString message;
        if (!pass(message, false, -1) && !message.isEmpty())
            m_cSeen.messages.append(message);
        message.clear();
        taskEnd(message);
        if (!message.isEmpty())
            m_cSeen.messages.append(message);
    }

    bool pass(QString& message, bool reset, int lastStep)
    {
        const bool result = passSteps(message, lastStep);
        if (reset)
            resetCounters();
        return result;
    }

    bool passSteps(QString& message, int lastStep)
    {
        if (!m_cScenario.hasPicture)
            return true;
        if (lastStep < 0)
            lastStep = m_lstSteps.size() - 1;
        for (long long i = 0; i <= lastStep; ++i) {
            if (i < 0)
                i = 0;
            if (i >= m_lstSteps.size())
                return true;
            Step& step = m_lstSteps[static_cast<int>(i)];
            if (step.maxExeTimes == TaskEnd || (step.maxExeTimes >= 0 && step.exeTimes >= step.maxExeTimes))
                continue;
            if (!passStep(step, i, message))
                return false;
            step.exeTimes += 1;
        }
        return true;
    }

    bool passStep(const Step& step, long long& i, QString& message)
    {
        QString result;
        if (!execute(step, true, result, message))
            return false;
        if (result.length() >= 5) {
            message.clear();
            if (!obey(result, i))
                return false;
        }
        if (result.isEmpty())
            return true;
        message = QStringLiteral("算法\"") + step.name + QStringLiteral("\"出错, 错误信息:") + result;
        return false;
    }

    bool execute(const Step& step, bool inPass, QString& result, QString& message)
    {
        if (step.kind == Kind::Missing) {
            message = QStringLiteral("Arithm\"") + step.name + QStringLiteral("\"is not existed.");
            return false;
        }
        if (step.kind == Kind::Drawing) {
            if (inPass)
                m_cSeen.view = qBound(0, m_cSeen.view, 3);
            return true;
        }
        result = QString::fromUtf8(resultOf(m_cScenario, m_cSeen.calls.size()));
        m_cSeen.calls.append("option of " + step.name);
        return true;
    }

    bool obey(QString& result, long long& i)
    {
        for (;;) {
            const QString body = takeCommand(result);
            if (body.startsWith(QLatin1String("skip:"))) {
                bool ok = false;
                const int n = body.mid(5).toInt(&ok, 10);
                if (ok)
                    i = i - 1 + n;
            } else if (body.startsWith(QLatin1String("stop:"))) {
                m_cSeen.prints.append(body.mid(5));
                return false;
            } else if (body.startsWith(QLatin1String("print:"))) {
                m_cSeen.prints.append(body.mid(6));
            } else {
                return true;
            }
        }
    }

    void taskEnd(QString& message)
    {
        for (const Step& step : m_lstSteps) {
            QString result;
            if (step.maxExeTimes != TaskEnd)
                continue;
            if (!execute(step, false, result, message))
                return;
            if (result.length() >= 5) {
                QString body = takeCommand(result);
                for (; body.startsWith(QLatin1String("print:")); body = takeCommand(result))
                    m_cSeen.prints.append(body.mid(6));
            }
            if (!result.isEmpty()) {
                message = QStringLiteral("Arithm \"") + step.name + QStringLiteral("\" error, message:") + result;
                return;
            }
        }
    }

    static QString takeCommand(QString& result)
    {
        return Naive::takeBody(result, QStringLiteral("<CMD>"), QStringLiteral("</CMD>"));
    }

    void resetCounters()
    {
        for (Step& step : m_lstSteps)
            step.exeTimes = 0;
    }

    const Scenario& m_cScenario;
    QList<Step> m_lstSteps;
    Seen m_cSeen;
};

// ---- The program ------------------------------------------------------------------------------------------------

TaskItem itemOf(const Step& step)
{
    TaskItem item;
    item.m_nMaxExeTimes = step.maxExeTimes;
    item.m_nExeTimes = step.exeTimes;
    item.m_strArithmName = step.name;
    item.m_strArithmID = step.kind == Kind::Drawing   ? QStringLiteral("KW_Drawing")
                         : step.kind == Kind::Results ? QStringLiteral("Fuzz.Results")
                                                      : QStringLiteral("Fuzz.Missing");
    item.m_strOption = "option of " + step.name;
    return item;
}

void addPicture()
{
    unsigned char pixel = 7;
    MemoryDisk* const disk = MemoryDisk::getInstance(0);
    if (disk->getGray8PreparedNum() == 0)
        disk->addGray8(&pixel, 1, 1);
}

Seen seenOf(const Scenario& scenario)
{
    Seen seen;
    s_pcScenario = &scenario;
    s_pcSeen = &seen;
    const auto keepMessage = [](QString text) { s_pcSeen->messages.append(text); };
    const auto keepPrint = [](QString text) { s_pcSeen->prints.append(text); };
    TaskInfo task(QStringLiteral("task"), keepMessage);
    task.setPrintCallBack(keepPrint);
    task.fromString(QStringLiteral("<-View->%1</-View-><-DataSource-><DSName>Memory Disk 0</DSName>"
                                   "<OutputType>Gray8</OutputType><OutputID>%2</OutputID></-DataSource->")
                        .arg(scenario.view)
                        .arg(scenario.hasPicture ? 1 : 0));
    for (const Step& step : scenario.steps)
        task.getTaskItem().append(itemOf(step));
    addPicture();
    if (scenario.whole)
        task.runTaskOnce();
    else
        seen.returned = task.runOnce(seen.message, scenario.reset, scenario.lastStep, -1);
    seen.view = task.getView();
    for (const TaskItem& item : task.getTaskItem())
        seen.exeTimes.append(item.m_nExeTimes);
    return seen;
}

void expectSame(const Seen& seen, const Seen& wanted)
{
    const QString separator = QStringLiteral(" | ");
    Fuzz::expectEqual(seen.calls.join(separator), wanted.calls.join(separator), "the steps that ran");
    Fuzz::expectEqual(seen.prints.join(separator), wanted.prints.join(separator), "the texts printed");
    Fuzz::expectEqual(seen.messages.join(separator), wanted.messages.join(separator), "the messages sent");
    Fuzz::expectEqual(seen.message, wanted.message, "the message of the pass");
    Fuzz::expect(seen.returned == wanted.returned, "whether the task goes on");
    Fuzz::expect(seen.view == wanted.view, "the view of the task");
    Fuzz::expect(seen.exeTimes == wanted.exeTimes, "the execution counters");
}

Scenario scenarioOf(FuzzInput& input)
{
    Scenario scenario;
    const int run = input.byte();
    scenario.whole = (run & 1) != 0;
    scenario.reset = (run & 2) != 0;
    scenario.hasPicture = (run & 12) != 12;
    scenario.lastStep = input.upTo(MostSteps + 2) - 2;
    scenario.view = input.anyInt();
    const int steps = input.upTo(MostSteps);
    for (int i = 0; i < steps; ++i) {
        Step step;
        const int kind = input.upTo(15);
        step.kind = kind == 15 ? Kind::Missing : kind == 14 ? Kind::Drawing : Kind::Results;
        step.maxExeTimes = input.anyInt();
        step.exeTimes = input.upTo(3);
        step.name = QString::number(i);
        scenario.steps.append(step);
    }
    while (!input.isEmpty())
        scenario.results.append(input.text());
    return scenario;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) const char* fuzzResultOf(const char* option)
{
    s_pcSeen->calls.append(QString::fromUtf8(option));
    return resultOf(*s_pcScenario, s_pcSeen->calls.size() - 1);
}

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    Fuzz::startProgram();
    Fuzz::expect(ArithmMgr::getInstance()->getArithm(QStringLiteral("Fuzz.Results")) != nullptr,
                 "the library with the results is found");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const Scenario scenario = scenarioOf(input);
    expectSame(seenOf(scenario), Model(scenario).run());
    return 0;
}
