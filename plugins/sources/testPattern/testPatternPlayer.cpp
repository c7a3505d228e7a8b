#include "testPatternPlayer.h"

#include "testPatternPainter.h"

#include <paramStore/pictureLayout.h>

void TestPatternPlayer::setConfig(const QString& config)
{
    const std::lock_guard<std::mutex> lock(m_cMutex);
    m_cOption = TestPatternOption::read(config);
    m_cPacer.start(m_cOption.rate);
    m_cWake.notify_all();
}

void TestPatternPlayer::start()
{
    const std::lock_guard<std::mutex> lock(m_cMutex);
    m_bRunning = true;
    m_nNumber = 0;
    m_strError.clear();
    m_cPacer.start(m_cOption.rate);
    m_cWake.notify_all();
}

void TestPatternPlayer::stop()
{
    const std::lock_guard<std::mutex> lock(m_cMutex);
    m_bRunning = false;
    ++m_nStops;
    m_cWake.notify_all();
}

unsigned char* TestPatternPlayer::request(bool gray, int& width, int& height)
{
    TestPattern::Scene scene;
    std::uint32_t number = 0;
    if (!takeDue(scene, number))
        return nullptr;
    const std::int64_t bytes = gray ? PictureLayout::gray8Bytes(scene.width, scene.height)
                                    : PictureLayout::colourBytes(scene.width, scene.height);
    if (!m_cBuffer.resize(bytes)) {
        reportNoMemory(scene);
        return nullptr;
    }
    TestPattern::paint(scene, number, gray, m_cBuffer.data());
    width = scene.width;
    height = scene.height;
    return m_cBuffer.data();
}

bool TestPatternPlayer::takeDue(TestPattern::Scene& scene, std::uint32_t& number)
{
    std::unique_lock<std::mutex> lock(m_cMutex);
    const unsigned stops = m_nStops;
    const auto ready = [this] { return m_bRunning; };
    if (!m_cPacer.waitUntilDue(lock, m_cWake, ready, [&] { return m_nStops != stops; }))
        return false;
    scene = m_cOption.scene;
    number = m_nNumber++;
    m_cPacer.delivered();
    return true;
}

/// Waits, too: a task asks again at once.
void TestPatternPlayer::reportNoMemory(const TestPattern::Scene& scene)
{
    std::unique_lock<std::mutex> lock(m_cMutex);
    m_strError = QStringLiteral("内存不足: %1 x %2").arg(scene.width).arg(scene.height);
    m_cWake.wait_for(lock, Pacer::LongestWait, [this] { return !m_bRunning; });
}

QString TestPatternPlayer::lastError() const
{
    const std::lock_guard<std::mutex> lock(m_cMutex);
    return m_strError;
}
