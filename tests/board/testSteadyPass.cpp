// What a pass asks malloc for once everything has found its size, and how often it looks at the clock. On a small board
// the one is time, and holes in the memory, and the other more time than the rest of a short step.
#include "../soak/soakMemory.h"
#include "pluginFolders.h"
#include "taskMgr/taskInfo.h"

#include <QtTest>

#include <memory>

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

thread_local int s_nClockReads = 0;

}  // namespace

// In front of the C library's: every library asks the time here.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    ++s_nClockReads;
    return static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
}

namespace {

constexpr int WarmPasses = 20;  // every queue has met its length, every buffer its size
constexpr int CountedPasses = 100;

QString source(const char* kind, const char* type, const char* config)
{
    return QStringLiteral(
               "<-DataSource-><DSName>%1</DSName><OutputName>p</OutputName><OutputDescribe></OutputDescribe>"
               "<OutputType>%2</OutputType><OutputID>1</OutputID><Config>%3</Config></-DataSource->")
        .arg(QLatin1String(kind), QLatin1String(type), QLatin1String(config));
}

QString step(const char* algorithm, const char* option)
{
    return QStringLiteral(
               "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->%1</-ArithmID->"
               "<-OptionStr->%2</-OptionStr-></-TaskItem->")
        .arg(QLatin1String(algorithm), QLatin1String(option));
}

std::unique_ptr<TaskInfo> makeTask(const QString& text)
{
    auto task = std::make_unique<TaskInfo>(QStringLiteral("task"), nullptr);
    task->fromString(text);
    return task;
}

void makePass(TaskInfo& task)
{
    QString message;
    if (!task.runOnce(message, false, -1, -1))
        qFatal("a pass failed: %s", qPrintable(message));
}

/// How often the calling thread reads the clock in some passes over all steps.
int clockReads(TaskInfo& task, bool showsTimes, int timeoutMs)
{
    const int before = s_nClockReads;
    QString message;
    for (int i = 0; i < CountedPasses; ++i) {
        if (!task.runOnce(message, showsTimes, -1, timeoutMs))
            qFatal("a pass failed: %s", qPrintable(message));
    }
    return s_nClockReads - before;
}

void makePasses(TaskInfo& first, TaskInfo& second, int count)
{
    for (int i = 0; i < count; ++i) {
        makePass(first);
        makePass(second);
    }
}

}  // namespace

class testSteadyPass : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void steadyPassAsksForNoMemoryItNeedNotHave_data();
    void steadyPassAsksForNoMemoryItNeedNotHave();
    void clockIsReadOnlyWhereTimesAreShownOrLimited_data();
    void clockIsReadOnlyWhereTimesAreShownOrLimited();
};

void testSteadyPass::initTestCase()
{
    PluginFolders::clear();
    PluginFolders::addBase(QStringLiteral("algorithmQuiet"));
    PluginFolders::addSource(QStringLiteral("sourceQuiet"));
}

void testSteadyPass::steadyPassAsksForNoMemoryItNeedNotHave_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<int>("allowed");
    const QString colour = source("Bench Still", "RGB", "640x480");
    const QString grey = source("Bench Still", "Gray8", "640x480");
    const QString silent = step("BENCH_Noop", "<Value>1</Value>");

    QTest::newRow("steps that say nothing: nothing") << colour + silent + silent << grey + silent << 0;
    // The option's text, and the name of the records' type.
    QTest::newRow("memory disk, colour")
        << colour + step("KW_MemoryDisk", "<MemDisk>0</MemDisk><InputID>1</InputID><InputType>RGB</InputType>")
        << source("Memory Disk 0", "RGB", "") + silent << 2;
    QTest::newRow("memory disk, grey")
        << grey + step("KW_MemoryDisk", "<MemDisk>1</MemDisk><InputID>1</InputID><InputType>Gray8</InputType>")
        << source("Memory Disk 1", "Gray8", "") + silent << 2;
    // The option's text, and what is handed to the view, whose pixels come from those before.
    QTest::newRow("picture onto a view, colour and grey")
        << colour + step("KW_Drawing", "<DataType>0</DataType><DataID>1</DataID>")
        << grey + step("KW_Drawing", "<DataType>1</DataType><DataID>1</DataID>") << 2 + 2;
    // And the text of its looks.
    QTest::newRow("shapes onto a view")
        << colour + step("KW_Drawing", "<DataType>6</DataType><DataID>4</DataID><Config><DspArea>0</DspArea></Config>")
        << grey + step("KW_Drawing", "<DataType>3</DataType><DataID>4</DataID><Config><Size>2</Size></Config>")
        << 3 + 3;
}

void testSteadyPass::steadyPassAsksForNoMemoryItNeedNotHave()
{
    if (!SoakMemory::isResidentTelling())
        QSKIP("A sanitizer has a malloc of its own.");
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(int, allowed);
    const auto firstTask = makeTask(first);
    const auto secondTask = makeTask(second);
    makePasses(*firstTask, *secondTask, WarmPasses);

    const SoakMemory::Requests before = SoakMemory::requestsOfThisThread();
    makePasses(*firstTask, *secondTask, CountedPasses);
    const SoakMemory::Requests after = SoakMemory::requestsOfThisThread();

    QCOMPARE(after.m_nLarge - before.m_nLarge, std::int64_t{0});
    QVERIFY2(after.m_nAll - before.m_nAll <= std::int64_t{allowed} * CountedPasses,
             qPrintable(QString::number(after.m_nAll - before.m_nAll)));
}

void testSteadyPass::clockIsReadOnlyWhereTimesAreShownOrLimited_data()
{
    QTest::addColumn<QString>("text");
    const QString colour = source("Bench Still", "RGB", "64x48");
    const QString silent = step("BENCH_Noop", "<Value>1</Value>");

    QTest::newRow("steps that say nothing") << colour + silent + silent;
    QTest::newRow("picture onto a view") << colour + step("KW_Drawing", "<DataType>0</DataType><DataID>1</DataID>");
}

void testSteadyPass::clockIsReadOnlyWhereTimesAreShownOrLimited()
{
    QFETCH(QString, text);
    const auto task = makeTask(text);
    clockReads(*task, false, -1);

    QCOMPARE(clockReads(*task, false, -1), 0);
    const int steps = task->getTaskItem().size();
    QVERIFY(clockReads(*task, true, -1) >= 2 * steps * CountedPasses);
    QVERIFY(clockReads(*task, false, 100000) >= (1 + steps) * CountedPasses);
}

QTEST_GUILESS_MAIN(testSteadyPass)
#include "testSteadyPass.moc"
