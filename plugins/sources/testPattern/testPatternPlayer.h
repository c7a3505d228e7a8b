#pragma once

#include "testPatternOption.h"

#include <pacer.h>
#include <pictureBuffer.h>

#include <condition_variable>
#include <mutex>

/**
 * Makes test pictures, numbered from 0 at every start.
 *
 * Every function may be called from any thread in any order; requests come from one thread at a time.
 */
class TestPatternPlayer
{
public:
    void setConfig(const QString& config);  ///< The next picture follows it.
    void start();
    void stop();  ///< A request that waits returns at once.

    /// @return the pixels of the next picture, valid until the next request; null when none is due
    unsigned char* request(bool gray, int& width, int& height);
    void release() {}  ///< The buffer stays for the next picture.

    QString lastError() const;

private:
    bool takeDue(TestPattern::Scene& scene, std::uint32_t& number);
    void reportNoMemory(const TestPattern::Scene& scene);

    mutable std::mutex m_cMutex;  ///< Guards everything below but the buffer.
    std::condition_variable m_cWake;
    TestPatternOption m_cOption;
    bool m_bRunning = false;
    unsigned m_nStops = 0;
    std::uint32_t m_nNumber = 0;  ///< Of the next picture.
    Pacer m_cPacer;
    QString m_strError;

    PictureBuffer m_cBuffer;  ///< Belongs to the thread that requests.
};
