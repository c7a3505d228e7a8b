#include "folderPlayer.h"

#include "folderMessages.h"
#include "pictureFiles.h"

#include <paramStore/pictureLayout.h>

#include <exception>
#include <system_error>

namespace {
constexpr std::chrono::milliseconds LookAgainAfter{300};  ///< For a folder that is missing, empty or unreadable.

std::int64_t bytesOf(const Frame& frame)
{
    return PictureLayout::colourBytes(frame.width, frame.height);
}
}  // namespace

FolderPlayer::~FolderPlayer()
{
    stop();
}

void FolderPlayer::setConfig(const QString& config)
{
    const std::lock_guard<std::mutex> control(m_cMtxControl);
    const FolderOption option = FolderOption::read(config);
    if (option == m_cOption)
        return;
    m_cOption = option;
    if (!m_cThread.joinable())
        return;
    stopLocked();
    startLocked();
}

void FolderPlayer::start()
{
    const std::lock_guard<std::mutex> control(m_cMtxControl);
    if (m_cThread.joinable())
        return;
    startLocked();
}

void FolderPlayer::stop()
{
    const std::lock_guard<std::mutex> control(m_cMtxControl);
    if (m_cThread.joinable())
        stopLocked();
}

void FolderPlayer::startLocked()
{
    {
        const std::lock_guard<std::mutex> lock(m_cMutex);
        m_bRunning = true;
        m_bStop = false;
        m_strError.clear();
        m_cPacer.start(m_cOption.rate);
    }
    try {
        m_cThread = std::thread([this, option = m_cOption] { playReporting(option); });
    } catch (const std::system_error&) {
        report(FolderMessages::noThread());
    }
}

void FolderPlayer::stopLocked()
{
    {
        const std::lock_guard<std::mutex> lock(m_cMutex);
        m_bRunning = false;
        m_bStop = true;
        ++m_nStops;
    }
    m_cWake.notify_all();
    m_cThread.join();
    const std::lock_guard<std::mutex> lock(m_cMutex);
    m_lstReady.clear();
    m_nReadyBytes = 0;
    m_vecSpare.clear();
}

unsigned char* FolderPlayer::request(bool gray, int& width, int& height)
{
    m_bWantGray = gray;
    FramePtr frame = takeDue();
    if (!frame)
        return nullptr;
    if (gray && !frame->hasGray && !frame->makeGray()) {
        report(FolderMessages::noMemory());
        return nullptr;
    }
    width = frame->width;
    height = frame->height;
    unsigned char* pixels = gray ? frame->gray.data() : frame->colour.data();
    const std::lock_guard<std::mutex> lock(m_cMutex);
    m_pcHanded = std::move(frame);
    return pixels;
}

FolderPlayer::FramePtr FolderPlayer::takeDue()
{
    std::unique_lock<std::mutex> lock(m_cMutex);
    keepSpare(std::move(m_pcHanded));
    const unsigned stops = m_nStops;
    const auto ready = [this] { return m_bRunning && !m_lstReady.empty(); };
    if (!m_cPacer.waitUntilDue(lock, m_cWake, ready, [&] { return m_nStops != stops; }))
        return nullptr;
    FramePtr frame = std::move(m_lstReady.front());
    m_lstReady.pop_front();
    m_nReadyBytes -= bytesOf(*frame);
    m_cPacer.delivered();
    m_cWake.notify_all();
    return frame;
}

void FolderPlayer::release()
{
    const std::lock_guard<std::mutex> lock(m_cMutex);
    keepSpare(std::move(m_pcHanded));
}

QString FolderPlayer::lastError() const
{
    const std::lock_guard<std::mutex> lock(m_cMutex);
    return m_strError;
}

/// The body of the thread; nothing may leave it.
void FolderPlayer::playReporting(const FolderOption& option)
{
    try {
        play(option);
    } catch (const std::exception&) {  // there is nothing else to run out of
        report(FolderMessages::noMemory());
    }
}

void FolderPlayer::play(const FolderOption& option)
{
    PictureDecoder decoder;
    while (!m_bStop) {
        const PictureFiles files = listPictureFiles(option.folder);
        if (!files.error.isEmpty()) {
            report(files.error);
            pause();
            continue;
        }
        const bool any = playFiles(files.paths, decoder);
        if (!option.loop)
            return;
        if (!any)
            pause();
    }
}

/// Decodes each file once, in order; false when none of them could be read.
bool FolderPlayer::playFiles(const QStringList& files, PictureDecoder& decoder)
{
    bool any = false;
    for (const QString& file : files) {
        FramePtr frame = takeSpare();
        const QString error = decoder.decode(file, *frame, m_bStop);
        if (m_bStop)
            return any;
        if (!error.isEmpty()) {
            report(error);
            const std::lock_guard<std::mutex> lock(m_cMutex);
            keepSpare(std::move(frame));
            continue;
        }
        if (m_bWantGray)
            frame->makeGray();
        any = true;
        if (!enqueue(std::move(frame)))
            return any;
    }
    return any;
}

/// Waits for room in the queue; false when the player was stopped.
bool FolderPlayer::enqueue(FramePtr frame)
{
    std::unique_lock<std::mutex> lock(m_cMutex);
    m_cWake.wait(lock, [&] { return m_bStop || hasRoomFor(*frame); });
    if (m_bStop)
        return false;
    m_nReadyBytes += bytesOf(*frame);
    m_lstReady.push_back(std::move(frame));
    m_cWake.notify_all();
    return true;
}

bool FolderPlayer::hasRoomFor(const Frame& frame) const
{
    return m_lstReady.empty() || (m_lstReady.size() < MostQueued && m_nReadyBytes + bytesOf(frame) <= MostQueuedBytes);
}

FolderPlayer::FramePtr FolderPlayer::takeSpare()
{
    const std::lock_guard<std::mutex> lock(m_cMutex);
    if (m_vecSpare.empty())
        return std::make_unique<Frame>();
    FramePtr frame = std::move(m_vecSpare.back());
    m_vecSpare.pop_back();
    return frame;
}

/// Keeps a frame for the next picture while playing; call with the lock held. A new one is made only when all others
/// are in use, so there are never more than can wait, be handed out and be decoded.
void FolderPlayer::keepSpare(FramePtr frame)
{
    if (frame && m_bRunning)
        m_vecSpare.push_back(std::move(frame));
}

void FolderPlayer::report(QString error)
{
    const std::lock_guard<std::mutex> lock(m_cMutex);
    m_strError.swap(error);  // What stood there goes when this returns, seen by tools that do not look into Qt.
}

void FolderPlayer::pause()
{
    std::unique_lock<std::mutex> lock(m_cMutex);
    m_cWake.wait_for(lock, LookAgainAfter, [this] { return m_bStop.load(); });
}
