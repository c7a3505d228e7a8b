#include "../taskMgr/taskTestSupport.h"
#include "taskMgr/taskMgr.h"

#include <QFile>
#include <QtTest>

#include <sys/syscall.h>
#include <unistd.h>

#include <thread>

Q_DECLARE_METATYPE(TaskItem)

/// A stop request may come at every point of a run: the pass goes no step further, the end is made all the same.
class tstStopPoints : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void stopIsSeenAtThePointWhereItComes_data();
    void stopIsSeenAtThePointWhereItComes();

private:
    std::unique_ptr<TaskInfo> makeHeldTask(const QList<TaskItem>& steps) const;
    void letGoOnceWaitedFor(long waiter) const;

    QString m_strHolding;  ///< The library of the source.
};

namespace {

/// Whether a thread of this process sleeps.
bool sleeps(long thread)
{
    QFile file(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray stat = file.readAll();
    return stat.mid(stat.lastIndexOf(')') + 2, 1) == "S";
}

}  // namespace

void tstStopPoints::initTestCase()
{
    Probes::install();
    m_strHolding = PluginFolders::addSource(QStringLiteral("sourceHolding"));
    TaskMgr::getInstance();  // loads the algorithms
}

std::unique_ptr<TaskInfo> tstStopPoints::makeHeldTask(const QList<TaskItem>& steps) const
{
    auto task = makeSourcelessTask();
    task->fromString(
        QStringLiteral("<-DataSource-><DSName>Test Holding</DSName><OutputName>p</OutputName><OutputDescribe>"
                       "</OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID><Config></Config>"
                       "</-DataSource->"));
    task->getTaskItem() = steps;
    return task;
}

/// Lets the run go on once the window's thread has asked it to stop and waits for it.
void tstStopPoints::letGoOnceWaitedFor(long waiter) const
{
    waitWithoutEvents([waiter] { return sleeps(waiter); });
    PluginFolders::function<void (*)()>(m_strHolding, "testLetGo")();
    Probes::openGate();
}

void tstStopPoints::stopIsSeenAtThePointWhereItComes_data()
{
    const auto last = [](const char* name) { return step(name, "", 999999999); };
    const QList<TaskItem> plain{step("a"), step("b"), last("x"), last("y")};
    const QList<TaskItem> ending{step("a", "<CMD>stop:</CMD>"), step("b"), last("x"), last("gate"), last("y")};
    QTest::addColumn<QString>("holdAt");
    QTest::addColumn<QList<TaskItem>>("steps");
    QTest::addColumn<QString>("trace");
    QTest::newRow("before the first pass") << "start" << plain << "x,y";
    QTest::newRow("while the source is asked") << "request" << plain << "x,y";
    QTest::newRow("once the picture is copied") << "release" << plain << "x,y";
    QTest::newRow("in the first step") << "" << QList<TaskItem>{step("gate"), step("b"), last("x")} << "gate,x";
    QTest::newRow("in a later step") << "" << QList<TaskItem>{step("a"), step("gate"), step("c"), last("x")}
                                     << "a,gate,x";
    QTest::newRow("in the last step") << "" << QList<TaskItem>{step("a"), step("gate"), last("x")} << "a,gate,x";
    QTest::newRow("in a step that repeats itself")
        << "" << QList<TaskItem>{step("gate", "<CMD>skip:0</CMD>"), last("x")} << "gate,x";
    QTest::newRow("in a step that fails") << "" << QList<TaskItem>{step("gate", "failed"), last("x")} << "gate,x";
    QTest::newRow("in a step at the end") << "" << ending << "a,x,gate,y";
    QTest::newRow("while the source stops") << "stop" << QList<TaskItem>{step("a", "failed"), last("x")} << "a,x";
}

void tstStopPoints::stopIsSeenAtThePointWhereItComes()
{
    QFETCH(QString, holdAt);
    QFETCH(QList<TaskItem>, steps);
    QFETCH(QString, trace);
    Probes::reset();
    Reports::clear();
    const auto task = makeHeldTask(steps);
    const Tab tab(*task);
    PluginFolders::function<void (*)(const char*)>(m_strHolding, "testHoldAt")(holdAt.toUtf8().constData());
    const auto held = PluginFolders::function<int (*)()>(m_strHolding, "testHeld");
    task->startTask();
    QVERIFY(waitWithoutEvents([held] { return held() == 1 || Probes::atGate() == 1; }));

    task->requestStop();
    std::thread opener([this, waiter = syscall(SYS_gettid)] { letGoOnceWaitedFor(waiter); });
    task->stopTask();
    opener.join();

    QVERIFY(!task->IsRunning());
    QVERIFY(tab.allEnabled());
    QCOMPARE(tab.m_cRun.text(), QStringLiteral("执行任务"));
    QCOMPARE(Probes::trace(), trace);
    const QString calls = QString::fromUtf8(PluginFolders::function<const char* (*)()>(m_strHolding, "testTrace")());
    QVERIFY2(calls.startsWith(QStringLiteral("start")) && calls.endsWith(QStringLiteral("stop")), qPrintable(calls));
    QCOMPARE(calls.count(QStringLiteral("stop")), 1);
    QCOMPARE(calls.count(QStringLiteral("request")), calls.count(QStringLiteral("release")));
    // The task can run again, from the beginning.
    PluginFolders::function<void (*)(const char*)>(m_strHolding, "testHoldAt")("");
    task->getTaskItem() = {step("again")};
    task->startTask();
    QTRY_VERIFY(task->getPassNum() > 1);
    task->stopTask();
}

QTEST_MAIN(tstStopPoints)
#include "tstStopPoints.moc"
