// How many passes a second do 1 to 64 running tasks make together, what does each add to the memory, and what do views
// that nobody sees cost the window's thread?
//
// Passes are counted with pictures that all fit into a processor's cache together, so that only the tasks themselves
// can slow each other down, and with large ones, beside as many bare threads that copy the same bytes.
#include "mainwindow.h"
#include "memoryArenas.h"
#include "paramStore/pictureLayout.h"
#include "taskMgr/taskMgr.h"
#include "view/viewForm.h"

#include <QApplication>
#include <QEventLoop>
#include <QFile>
#include <QSize>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

constexpr QSize Small(64, 48);
constexpr QSize Large(1280, 960);
constexpr int MeasuredMs = 200;
constexpr int ShortMs = 40;     // so that a round is over before the machine's speed has changed much
constexpr int SettlingMs = 50;  // until the kernel has spread new threads over the processors
constexpr int Rounds = 7;
constexpr int ShortRounds = 81;
constexpr int MostTasks = 64;

double nowMs(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    statm.open(QIODevice::ReadOnly);
    return statm.readAll().split(' ').value(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE));
}

std::unique_ptr<TaskInfo> newTask(int view, const QSize& size, bool draws)
{
    auto task = std::make_unique<TaskInfo>(QStringLiteral("bench"), nullptr);
    QString text = QStringLiteral(
                       "<-View->%1</-View-><-DataSource-><DSName>Bench Still</DSName><OutputName>p</OutputName>"
                       "<OutputDescribe></OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID>"
                       "<Config>%2x%3</Config></-DataSource->")
                       .arg(view)
                       .arg(size.width())
                       .arg(size.height());
    if (draws)
        text += QLatin1String(
            "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->KW_Drawing</-ArithmID->"
            "<-OptionStr-><DataType>0</DataType><DataID>1</DataID></-OptionStr-></-TaskItem->");
    else
        text += QLatin1String(
            "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->BENCH_Noop</-ArithmID->"
            "<-OptionStr-></-OptionStr-></-TaskItem->");
    task->fromString(text);
    return task;
}

/// Running tasks, stopped together.
class Tasks
{
public:
    Tasks(int count, const QSize& size, bool draw)
    {
        for (int i = 0; i < count; ++i) {
            m_vecTasks.push_back(newTask(i % ViewForm::ViewNum, size, draw));
            m_vecTasks.back()->startTask();
        }
        while (
            std::any_of(m_vecTasks.begin(), m_vecTasks.end(), [](const auto& task) { return task->getPassNum() < 2; }))
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    ~Tasks()
    {
        QList<TaskInfo*> running;
        for (const auto& task : m_vecTasks)
            running.append(task.get());
        TaskInfo::stopTasks(running);
        QCoreApplication::processEvents();
    }

    long long passes() const
    {
        long long sum = 0;
        for (const auto& task : m_vecTasks)
            sum += task->getPassNum();
        return sum;
    }

private:
    std::vector<std::unique_ptr<TaskInfo>> m_vecTasks;
};

void wait(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Counted by a function for a while, a second.
template <typename Count>
double rateOf(const Count& count, int ms)
{
    const double begun = nowMs(CLOCK_MONOTONIC);
    const long long before = count();
    QThread::msleep(static_cast<unsigned long>(ms));
    return static_cast<double>(count() - before) * 1e3 / (nowMs(CLOCK_MONOTONIC) - begun);
}

double passesASecond(int count, const QSize& size, int ms)
{
    const Tasks tasks(count, size, false);
    QThread::msleep(SettlingMs);
    return rateOf([&tasks] { return tasks.passes(); }, ms);
}

/// As many threads that do nothing but copy a picture to a place of their own.
double copiesASecond(int count, const QSize& size)
{
    const auto bytes = static_cast<std::size_t>(PictureLayout::colourBytes(size.width(), size.height()));
    std::atomic<long long> copies{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([bytes, &copies, &stop] {
            const std::vector<unsigned char> source(bytes, 7);
            std::vector<unsigned char> target(bytes);
            for (; !stop; ++copies)
                std::memcpy(target.data(), source.data(), bytes);
        });
    }
    while (copies < 2 * count)
        QThread::msleep(1);
    QThread::msleep(SettlingMs);
    const double rate = rateOf([&copies] { return copies.load(); }, MeasuredMs);
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    return rate;
}

/// With more tasks each time: what fewer ones leave to the allocator, more take.
void printMemory()
{
    for (int count = 1; count <= MostTasks; count *= 2) {
        const Tasks tasks(count, Large, false);
        std::printf("resident_%d %.0f\n", count, residentBytes());
    }
    std::printf("picture %lld\n", static_cast<long long>(PictureLayout::colourBytes(Large.width(), Large.height())));
}

/// Calls a function with each number of tasks, round by round in random order: what else the machine does meets them
/// alike.
template <typename Measure>
void forEachCount(int rounds, const Measure& measure)
{
    std::vector<int> counts;
    for (int count = 1; count <= MostTasks; count *= 2)
        counts.push_back(count);
    std::mt19937 random(1);
    for (int round = 0; round < rounds; ++round) {
        std::shuffle(counts.begin(), counts.end(), random);
        std::for_each(counts.begin(), counts.end(), measure);
    }
}

/// Each value as a line of its own.
void printPasses()
{
    forEachCount(ShortRounds,
                 [](int count) { std::printf("passes_%d %.1f\n", count, passesASecond(count, Small, ShortMs)); });
    forEachCount(Rounds, [](int count) {
        std::printf("large_%d %.1f\n", count, passesASecond(count, Large, MeasuredMs));
        std::printf("copies_%d %.1f\n", count, copiesASecond(count, Large));
    });
}

/// Milliseconds a second that the window's thread works while four tasks draw onto views that are not shown.
double workForHiddenViews()
{
    const Tasks tasks(ViewForm::ViewNum, Large, true);
    const double begun = nowMs(CLOCK_MONOTONIC);
    const double worked = nowMs(CLOCK_THREAD_CPUTIME_ID);
    wait(6 * MeasuredMs);
    return (nowMs(CLOCK_THREAD_CPUTIME_ID) - worked) * 1e3 / (nowMs(CLOCK_MONOTONIC) - begun);
}

}  // namespace

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();
    QApplication application(argc, argv);
    MainWindow window;
    window.show();
    QCoreApplication::processEvents();
    printMemory();
    printPasses();
    window.hide();
    std::printf("hidden_ms %.2f\n", workForHiddenViews());
    return 0;
}
