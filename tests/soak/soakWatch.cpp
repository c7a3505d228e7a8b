#include "soakWatch.h"

#include "drawing/pixelPool.h"
#include "soakMemory.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPixmapCache>

#include <execinfo.h>
#include <malloc.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>

namespace {

/// Of the drawing options' pool: it fills by and by, up to a limit of its own.
qint64 pooledBytes()
{
    return static_cast<qint64>(PooledPixels::poolState().m_nFreeBytes);
}

/// Qt keeps up to 10 MiB of drawn buttons and boxes of every size that they ever had.
void emptyPixmapCache()
{
    // Not by clear(): that forgets the numbers of the pictures, but not the names that led to them.
    const int limit = QPixmapCache::cacheLimit();
    QPixmapCache::setCacheLimit(0);
    QPixmapCache::setCacheLimit(limit);
}

qint64 nowMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

QByteArray fileText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().simplified() : QByteArray();
}

QStringList threads()
{
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

void printCallers(int)
{
    constexpr int Most = 40;
    void* callers[Most];
    backtrace_symbols_fd(callers, backtrace(callers, Most), STDERR_FILENO);
}

void printThreads()
{
    std::signal(SIGUSR2, printCallers);
    for (const QString& id : threads()) {
        const QString folder = QStringLiteral("/proc/self/task/") + id;
        std::fprintf(stderr, "thread %s \"%s\" waits in %s\n", qPrintable(id),
                     fileText(folder + QStringLiteral("/comm")).constData(),
                     fileText(folder + QStringLiteral("/wchan")).constData());
        syscall(SYS_tgkill, getpid(), id.toInt(), SIGUSR2);
        std::this_thread::sleep_for(std::chrono::milliseconds(200));  // so that what they print does not mix
    }
}

/// What neither a box that is still open nor any other passing thing adds to.
qint64 leastOf(const QVector<SoakSample>& samples, int begin, int end, qint64 SoakSample::*value)
{
    qint64 least = samples.at(begin).*value;
    for (int i = begin; i < end; ++i)
        least = std::min(least, samples.at(i).*value);
    return least;
}

}  // namespace

// ---- SoakSample -----------------------------------------------------------------------------------------------------

SoakSample SoakSample::take()
{
    emptyPixmapCache();
    malloc_trim(0);
    SoakSample sample;
    const QList<QByteArray> pages = fileText(QStringLiteral("/proc/self/statm")).split(' ');
    sample.m_nResident =
        SoakMemory::isResidentTelling() ? pages.value(1).toLongLong() * sysconf(_SC_PAGESIZE) - pooledBytes() : 0;
    sample.m_nAllocated = SoakMemory::liveBytes() - pooledBytes();
    sample.m_nThreads = threadNum();
    sample.m_nFiles = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
    return sample;
}

int SoakSample::threadNum()
{
    return threads().size();
}

QString SoakSample::toString() const
{
    return QStringLiteral("%1 KiB resident, %2 KiB allocated, %3 threads, %4 files")
        .arg(m_nResident / 1024)
        .arg(m_nAllocated / 1024)
        .arg(m_nThreads)
        .arg(m_nFiles);
}

// ---- SoakGrowth -----------------------------------------------------------------------------------------------------

int SoakGrowth::warmUp() const
{
    return std::min(m_vecSamples.size(), std::max(2, m_vecSamples.size() / 4));
}

QString SoakGrowth::problem() const
{
    return m_vecSamples.isEmpty() ? QString() : countProblem() + memoryProblem();
}

QString SoakGrowth::countProblem() const
{
    const int begin = warmUp();
    int mostThreads = 0;
    int mostFiles = 0;
    for (int i = 0; i < begin; ++i) {
        mostThreads = std::max(mostThreads, m_vecSamples.at(i).m_nThreads);
        mostFiles = std::max(mostFiles, m_vecSamples.at(i).m_nFiles);
    }
    for (int i = begin; i < m_vecSamples.size(); ++i) {
        if (m_vecSamples.at(i).m_nThreads > mostThreads || m_vecSamples.at(i).m_nFiles > mostFiles)
            return QStringLiteral("threads or open files grew: ") + m_vecSamples.at(i).toString();
    }
    return {};
}

QString SoakGrowth::memoryProblem() const
{
    constexpr qint64 MostAllocated = 128 * 1024;
    constexpr qint64 MostAllocatedOfFew = 384 * 1024;
    constexpr int Few = 4;  // among so few samples each may have caught the passing 150 KiB of the same thing
    constexpr qint64 MostResident = 6 * 1024 * 1024;
    const int begin = warmUp();
    const int end = m_vecSamples.size();
    const int third = (end - begin) / 3;
    if (end < FewestSamples)
        return {};
    const auto grown = [this, begin, end, third](qint64 SoakSample::*value) {
        return leastOf(m_vecSamples, end - third, end, value) - leastOf(m_vecSamples, begin, begin + third, value);
    };
    const qint64 allocated = grown(&SoakSample::m_nAllocated);
    const qint64 resident = grown(&SoakSample::m_nResident);
    if (allocated <= (third < Few ? MostAllocatedOfFew : MostAllocated) && resident <= MostResident)
        return {};
    return QStringLiteral("memory grew by %1 KiB, resident by %2 KiB: ").arg(allocated / 1024).arg(resident / 1024) +
           m_vecSamples.last().toString();
}

// ---- SoakWatchdog ---------------------------------------------------------------------------------------------------

SoakWatchdog::SoakWatchdog(int limitMs) : m_nLimitMs(limitMs), m_nLastMs(nowMs()), m_cThread([this] { watch(); })
{
    void* callers[1];
    backtrace(callers, 1);  // loads what a signal handler must not
}

SoakWatchdog::~SoakWatchdog()
{
    m_bEnd = true;
    m_cThread.join();
}

void SoakWatchdog::windowIsBack(const char* next)
{
    const qint64 now = nowMs();
    const auto away = static_cast<int>(now - m_nLastMs.exchange(now));
    const char* const done = m_pchDoing.exchange(next);
    if (away <= m_nLongestMs)
        return;
    m_nLongestMs = away;
    m_pchLongestIn = done;
}

void SoakWatchdog::watch()
{
    pthread_setname_np(pthread_self(), "watchdog");
    while (!m_bEnd) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (nowMs() - m_nLastMs < m_nLimitMs)
            continue;
        std::fprintf(stderr, "soak: the window has not come back for %d ms, from: %s\n", m_nLimitMs, m_pchDoing.load());
        printThreads();
        _exit(3);
    }
}
