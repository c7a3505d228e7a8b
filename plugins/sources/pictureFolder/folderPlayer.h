#pragma once

#include "folderOption.h"
#include "pictureDecoder.h"

#include <pacer.h>

#include <QStringList>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/**
 * Plays the pictures of one folder.
 *
 * Between start and stop a thread of its own decodes ahead into a bounded queue, so that a request finds a picture
 * ready. Every function may be called from any thread in any order; requests come from one thread at a time.
 */
class FolderPlayer
{
public:
    FolderPlayer() = default;
    ~FolderPlayer();
    FolderPlayer(const FolderPlayer&) = delete;
    FolderPlayer& operator=(const FolderPlayer&) = delete;

    void setConfig(const QString& config);  ///< A change while playing starts again with the new configuration.
    void start();
    void stop();  ///< Returns when the thread has ended; a request that waits returns at once.

    /// @return the pixels of the next picture, valid until release or the next request; null when none is due
    unsigned char* request(bool gray, int& width, int& height);
    void release();

    QString lastError() const;

private:
    using FramePtr = std::unique_ptr<Frame>;

    static constexpr std::size_t MostQueued = 3;
    static constexpr std::int64_t MostQueuedBytes = 128 * 1024 * 1024;  ///< Beyond it only one picture waits.

    void startLocked();
    void stopLocked();
    void playReporting(const FolderOption& option);
    void play(const FolderOption& option);
    bool playFiles(const QStringList& files, PictureDecoder& decoder);
    bool enqueue(FramePtr frame);
    bool hasRoomFor(const Frame& frame) const;
    FramePtr takeSpare();
    void keepSpare(FramePtr frame);
    FramePtr takeDue();
    void report(QString error);
    void pause();

    std::mutex m_cMtxControl;  ///< Serialises start, stop and setConfig; taken before m_cMutex.
    FolderOption m_cOption;    ///< Guarded by m_cMtxControl.
    std::thread m_cThread;     ///< Guarded by m_cMtxControl.

    mutable std::mutex m_cMutex;  ///< Guards everything below but the atomics.
    std::condition_variable m_cWake;
    bool m_bRunning = false;
    unsigned m_nStops = 0;  ///< Tells a waiting request that it was stopped, even when it was started again since.
    Pacer m_cPacer;
    std::deque<FramePtr> m_lstReady;
    std::int64_t m_nReadyBytes = 0;
    std::vector<FramePtr> m_vecSpare;  ///< Frames to use again, while playing.
    FramePtr m_pcHanded;               ///< What the last request handed out.
    QString m_strError;

    std::atomic<bool> m_bStop{false};  ///< Tells the thread to end; also looked at while a file is read.
    std::atomic<bool> m_bWantGray{false};
};
