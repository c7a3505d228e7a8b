#include "pluginFolders.h"
#include "processMemory.h"
#include "windowFixture.h"

#include <QElapsedTimer>
#include <QEventLoop>

#include <atomic>
#include <thread>
#include <vector>

/// What tasks print, from any thread.
class TestOutputLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void whatAStepOfARunningTaskPrintsIsShown();
    void printFromTheWindowsThreadShowsAtOnce();
    void printFromAnotherThreadArrivesWithTheEventLoop();
    void newestOfManyIsShownAtLast();
    void floodIsShownOnceAFrameAndStarvesNothing();
    void floodGrowsNoMemory();
    void messagePrintedBeforeAClearStaysCleared();
    void printingWhileWindowsComeAndGoIsHarmless();
};

namespace {

/// Counts how often a label gets a text, by the tip that is set with it.
class ChangeCounter : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        m_nCount += event->type() == QEvent::ToolTipChange ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
    int m_nCount = 0;
};

void printInThread(const QString& message)
{
    std::thread([message] { MainWindow::HavePrintMessage(message); }).join();
}

}  // namespace

void TestOutputLine::initTestCase()
{
    PluginFolders::clear();
    PluginFolders::addBase(QStringLiteral("algorithmEcho"));
    PluginFolders::addSource(QStringLiteral("sourceScripted"));
}

void TestOutputLine::whatAStepOfARunningTaskPrintsIsShown()
{
    const WindowFixture fixture;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("prints.lmv"));
    QByteArray task = taskOnDisk("a", 0,
                                 "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->Test.Echo</-ArithmID->"
                                 "<-OptionStr-><CMD>print:找到 3 个</CMD></-OptionStr-></-TaskItem->");
    task.replace("Memory Disk 0", "Test Scripted").replace("<Config>", "<Config>wait=5");
    writeFile(path, task);
    QVERIFY(fixture.open(path));

    fixture.press("btnStartAll");

    QTRY_COMPARE(fixture.output()->text(), QStringLiteral("找到 3 个"));
    QVERIFY(TaskMgr::getInstance()->getTask(0)->IsRunning());
    fixture.press("btnStopAll");
    QVERIFY(!TaskMgr::getInstance()->getTask(0)->IsRunning());
}

void TestOutputLine::printFromTheWindowsThreadShowsAtOnce()
{
    const WindowFixture fixture;
    MainWindow::HavePrintMessage(QStringLiteral("one"));
    QCOMPARE(fixture.output()->text(), QStringLiteral("one"));
}

void TestOutputLine::printFromAnotherThreadArrivesWithTheEventLoop()
{
    const WindowFixture fixture;
    printInThread(QStringLiteral("two"));
    QCOMPARE(fixture.output()->text(), QString());
    QTRY_COMPARE(fixture.output()->text(), QStringLiteral("two"));
    printInThread(QStringLiteral("three"));
    QTRY_COMPARE(fixture.output()->text(), QStringLiteral("three"));
}

void TestOutputLine::newestOfManyIsShownAtLast()
{
    const WindowFixture fixture;
    std::vector<std::thread> threads;
    std::atomic<int> running{4};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&running] {
            for (int n = 0; n <= 20000; ++n)
                MainWindow::HavePrintMessage(QStringLiteral("%1").arg(n));
            --running;
        });
    }
    QTRY_COMPARE_WITH_TIMEOUT(running.load(), 0, 60000);
    for (std::thread& thread : threads)
        thread.join();
    QTRY_COMPARE(fixture.output()->text(), QStringLiteral("20000"));
}

void TestOutputLine::floodIsShownOnceAFrameAndStarvesNothing()
{
    const WindowFixture fixture;
    ChangeCounter changes;
    fixture.output()->installEventFilter(&changes);
    std::atomic<bool> stop{false};
    std::thread flood([&stop] {
        QElapsedTimer timer;
        timer.start();
        while (!stop && timer.elapsed() < 30000)
            MainWindow::HavePrintMessage(QStringLiteral("again"));
    });
    QElapsedTimer timer;
    timer.start();
    QEventLoop loop;
    QTimer::singleShot(400, &loop, &QEventLoop::quit);
    loop.exec();
    const qint64 elapsed = timer.elapsed();
    stop = true;
    flood.join();

    QVERIFY(elapsed < 20000);
    QVERIFY(changes.m_nCount >= 2);
    QVERIFY2(changes.m_nCount <= elapsed / 10 + 2, qPrintable(QString::number(changes.m_nCount)));
    QTRY_COMPARE(fixture.output()->text(), QStringLiteral("again"));
}

void TestOutputLine::floodGrowsNoMemory()
{
    const WindowFixture fixture;
    const QString message = QStringLiteral("the same text");
    printInThread(message);
    const qint64 before = residentBytes();
    // The event loop rests meanwhile: whatever is posted piles up.
    std::thread([message] {
        for (int n = 0; n < 500000; ++n)
            MainWindow::HavePrintMessage(message);
    }).join();
    QVERIFY(residentBytes() - before < 20L * 1024 * 1024);
    QTRY_COMPARE(fixture.output()->text(), message);
}

void TestOutputLine::messagePrintedBeforeAClearStaysCleared()
{
    const WindowFixture fixture;
    printInThread(QStringLiteral("old"));
    fixture.m_pcWindow->on_btnClearMsg_clicked();
    QTest::qWait(100);
    QCOMPARE(fixture.output()->text(), QString());
    printInThread(QStringLiteral("new"));
    QTRY_COMPARE(fixture.output()->text(), QStringLiteral("new"));
}

void TestOutputLine::printingWhileWindowsComeAndGoIsHarmless()
{
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&stop] {
            while (!stop) {
                MainWindow::HavePrintMessage(QStringLiteral("on and on"));
                std::this_thread::yield();
            }
        });
    }
    for (int i = 0; i < 5; ++i) {
        const WindowFixture fixture;
        QTRY_COMPARE(fixture.output()->text(), QStringLiteral("on and on"));
    }
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    QCoreApplication::processEvents();
    QVERIFY(TaskMgr::s_pcInstance.load() == nullptr);
}

QTEST_MAIN(TestOutputLine)
#include "testOutputLine.moc"
