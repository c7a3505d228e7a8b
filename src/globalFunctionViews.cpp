#include "globalFunction.h"

#include "drawing/drawingOpt.h"
#include "threadGuards.h"

#include <algorithm>
#include <utility>

using ThreadGuards::MutexGuard;

std::atomic<GlobalFunction*> GlobalFunction::s_pcInstance{nullptr};
QMutex GlobalFunction::s_cMtxForIns;

std::unique_ptr<Drawing::DrawingOpt> GlobalFunction::ViewDrawOption::append(std::unique_ptr<Drawing::DrawingOpt> option)
{
    auto pushedOut = m_nCount == QueueLength ? takeOldest() : nullptr;
    m_apcOptions[static_cast<std::size_t>(m_nCount++)] = option.release();
    return pushedOut;
}

std::unique_ptr<Drawing::DrawingOpt> GlobalFunction::ViewDrawOption::takeOldest()
{
    if (m_nCount < 1)
        return nullptr;
    std::unique_ptr<Drawing::DrawingOpt> oldest(std::exchange(m_apcOptions.front(), nullptr));
    std::rotate(m_apcOptions.begin(), m_apcOptions.begin() + 1, m_apcOptions.end());
    --m_nCount;
    return oldest;
}

std::vector<std::unique_ptr<Drawing::DrawingOpt>> GlobalFunction::ViewDrawOption::takeAllOf(const ArithmParamMgr* store)
{
    std::vector<std::unique_ptr<Drawing::DrawingOpt>> taken;
    const auto end = m_apcOptions.begin() + m_nCount;
    const auto kept = std::stable_partition(m_apcOptions.begin(), end, [store](const Drawing::DrawingOpt* option) {
        return option->getParamMgr() != store;
    });
    for (auto option = kept; option != end; ++option)
        taken.emplace_back(std::exchange(*option, nullptr));
    m_nCount -= static_cast<int>(taken.size());
    return taken;
}

GlobalFunction* GlobalFunction::getInstance()
{
    if (GlobalFunction* instance = s_pcInstance.load(std::memory_order_acquire))
        return instance;
    const MutexGuard guard(s_cMtxForIns);
    return makeInstance();
}

GlobalFunction* GlobalFunction::makeInstance()
{
    if (!s_pcInstance.load(std::memory_order_relaxed))
        s_pcInstance.store(new GlobalFunction, std::memory_order_release);
    return s_pcInstance.load(std::memory_order_relaxed);
}

std::atomic<GlobalFunction::ViewDrawOption*>* GlobalFunction::slotOf(int view)
{
    return view >= 0 && view < ViewSlotNum ? &m_apcRecords[static_cast<std::size_t>(view)] : nullptr;
}

QMutex& GlobalFunction::mutexOf(int view)
{
    return m_cMtxViews.m_acMutex[static_cast<std::size_t>(view)];
}

void GlobalFunction::makeRecord(std::atomic<ViewDrawOption*>& slot)
{
    if (!slot.load(std::memory_order_relaxed))
        slot.store(new ViewDrawOption, std::memory_order_release);
}

void GlobalFunction::addView(int view, QWidget* /*widget*/)
{
    auto* slot = slotOf(view);
    if (!slot)
        return;
    const MutexGuard guard(m_cMtxRegistry);
    makeRecord(*slot);
}

void GlobalFunction::removeView(int view)
{
    auto* slot = slotOf(view);
    if (!slot)
        return;
    std::unique_ptr<ViewDrawOption> removed;  // deleted after the locks; its options live on
    const MutexGuard registryGuard(m_cMtxRegistry);
    const MutexGuard viewGuard(mutexOf(view));
    removed = takeRecord(*slot);
}

std::unique_ptr<GlobalFunction::ViewDrawOption> GlobalFunction::takeRecord(std::atomic<ViewDrawOption*>& slot)
{
    return std::unique_ptr<ViewDrawOption>(slot.exchange(nullptr, std::memory_order_acq_rel));
}

GlobalFunction::ViewDrawOption* GlobalFunction::requestViewDrawOption(int view)
    NO_THREAD_SAFETY_ANALYSIS  // The caller holds it.
{
    auto* slot = slotOf(view);
    if (!slot || !slot->load(std::memory_order_acquire))
        return nullptr;
    QMutex& mutex = mutexOf(view);
    ThreadGuards::lock(mutex);
    // The view may have been removed in between; once its mutex is held, it cannot.
    ViewDrawOption* record = slot->load(std::memory_order_acquire);
    if (!record)
        ThreadGuards::unlock(mutex);
    return record;
}

void GlobalFunction::releaseViewDrawOption(int view, ViewDrawOption* record) NO_THREAD_SAFETY_ANALYSIS
{
    if (record && slotOf(view))
        ThreadGuards::unlock(mutexOf(view));
}

void GlobalFunction::resizeViewCanvas(int view, int width, int height)
{
    auto* slot = slotOf(view);
    if (!slot)
        return;
    const MutexGuard registryGuard(m_cMtxRegistry);
    makeRecord(*slot);
    const MutexGuard viewGuard(mutexOf(view));
    noteCanvasSize(*slot->load(std::memory_order_relaxed), width, height);
}

void GlobalFunction::noteCanvasSize(ViewDrawOption& record, int width, int height)
{
    record.m_nCanvasWidth = width;
    record.m_nCanvasHeight = height;
}

void GlobalFunction::dropOptionsOf(const ArithmParamMgr* store)
{
    for (int view = 0; view < ViewSlotNum; ++view) {
        std::vector<std::unique_ptr<Drawing::DrawingOpt>> dropped;  // deleted after the locks
        const ViewRecord record(view);
        if (!record)
            continue;
        const MutexGuard guard(record->m_cMutex);
        dropped = record->takeAllOf(store);
    }
}
