#include "windowFixture.h"

#include <QElapsedTimer>

#include <atomic>
#include <thread>
#include <vector>

#include <unistd.h>

/// What tasks print, from any thread.
class TestOutputLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printFromTheWindowsThreadShowsAtOnce();
    void printFromAnotherThreadArrivesWithTheEventLoop();
    void newestOfManyIsShownAtLast();
    void floodDoesNotStarveTheEventLoop();
    void floodGrowsNoMemory();
    void messagePrintedBeforeAClearStaysCleared();
    void printingWhileWindowsComeAndGoIsHarmless();
};

namespace {

long residentBytes()
{
    const QByteArray text = readFile(QStringLiteral("/proc/self/statm"));
    return text.split(' ').at(1).toLong() * sysconf(_SC_PAGESIZE);
}

void printInThread(const QString& message)
{
    std::thread([message] { MainWindow::HavePrintMessage(message); }).join();
}

}  // namespace

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

void TestOutputLine::floodDoesNotStarveTheEventLoop()
{
    const WindowFixture fixture;
    std::atomic<bool> stop{false};
    std::atomic<bool> gaveUp{false};
    QTimer::singleShot(100, [&stop] { stop = true; });
    std::thread flood([&] {
        QElapsedTimer timer;
        timer.start();
        while (!stop) {
            MainWindow::HavePrintMessage(QStringLiteral("again"));
            if (timer.elapsed() > 30000) {
                gaveUp = true;
                break;
            }
        }
    });
    while (!stop && !gaveUp)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    flood.join();
    QVERIFY(!gaveUp);
    QTRY_COMPARE(fixture.output()->text(), QStringLiteral("again"));
}

void TestOutputLine::floodGrowsNoMemory()
{
    const WindowFixture fixture;
    const QString message = QStringLiteral("the same text");
    printInThread(message);
    const long before = residentBytes();
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
