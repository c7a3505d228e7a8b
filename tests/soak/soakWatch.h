#pragma once

#include <QString>
#include <QVector>

#include <atomic>
#include <thread>

/// What the process holds at a moment at which no task exists.
struct SoakSample
{
    qint64 m_nResident =
        0;  ///< Bytes of memory in use by the process, without free buffers of drawing options; 0 under a sanitizer.
    qint64 m_nAllocated = 0;  ///< Bytes that malloc has given out, without those; exact.
    int m_nThreads = 0;
    int m_nFiles = 0;

    static SoakSample take();
    static int threadNum();
    QString toString() const;
};

/**
 * Whether something grew from sample to sample.
 *
 * The first samples are warm-up. Threads and files may never be more than then; of memory the least of the first and of
 * the last third of what follows are compared, so that a slow leak is seen, and no large moment is taken for one.
 */
class SoakGrowth
{
public:
    static constexpr int FewestSamples = 8;  ///< With fewer nothing can be said of memory.

    void add(const SoakSample& sample) { m_vecSamples.append(sample); }
    QString problem() const;  ///< Empty when nothing grew.

    const QVector<SoakSample>& samples() const { return m_vecSamples; }

private:
    int warmUp() const;
    QString countProblem() const;
    QString memoryProblem() const;

    QVector<SoakSample> m_vecSamples;
};

/// Ends the process, after it has said where every thread is, when the window's loop does not come back.
class SoakWatchdog
{
public:
    explicit SoakWatchdog(int limitMs);
    ~SoakWatchdog();
    SoakWatchdog(const SoakWatchdog&) = delete;
    SoakWatchdog& operator=(const SoakWatchdog&) = delete;

    void windowIsBack(const char* next);  ///< From the window's thread; next is what it does now.
    int longestMs() const { return m_nLongestMs; }
    const char* longestIn() const { return m_pchLongestIn; }

private:
    void watch();

    const int m_nLimitMs;
    std::atomic<qint64> m_nLastMs;
    std::atomic<const char*> m_pchDoing{"starting"};  ///< A literal.
    std::atomic<bool> m_bEnd{false};
    int m_nLongestMs = 0;
    const char* m_pchLongestIn = "";
    std::thread m_cThread;
};
