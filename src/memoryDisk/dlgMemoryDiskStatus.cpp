#include "memoryDisk/dlgMemoryDiskStatus.h"

#include "memoryDisk/memoryDisk.h"
#include "ui_dlgMemoryDiskStatus.h"

namespace {

constexpr int FirstIntervalMs = 1000;
constexpr int SlotNum = 6;  // of a pool, until the first refresh reads it

/// The disk with this index; null for "none".
MemoryDisk* diskOf(int index)
{
    return index >= 0 && index < MemoryDisk::DiskNum ? MemoryDisk::getInstance(index) : nullptr;
}

void showCount(QProgressBar* bar, int total, int value)
{
    bar->setMaximum(total);
    bar->setValue(value);
}

}  // namespace

DlgMemoryDiskStatus::DlgMemoryDiskStatus(QWidget* parent)
    : QDialog(parent), m_pcUi(std::make_unique<Ui::DlgMemoryDiskStatus>())
{
    m_pcUi->setupUi(this);
    setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
    m_acGroups = {Group{0, 0, m_pcUi->pbProcessing0, m_pcUi->pbWaiting0, m_pcUi->btnClear0},
                  Group{0, 1, m_pcUi->pbProcessing1, m_pcUi->pbWaiting1, m_pcUi->btnClear1},
                  Group{0, 2, m_pcUi->pbProcessing2, m_pcUi->pbWaiting2, m_pcUi->btnClear2}};
    for (const Group& group : m_acGroups) {
        showCount(group.m_pcProcessing, SlotNum, 0);
        showCount(group.m_pcWaiting, SlotNum, 0);
    }
    connect(&m_cTimer, &QTimer::timeout, this, &DlgMemoryDiskStatus::OnTimer);
    m_cTimer.start(FirstIntervalMs);
}

DlgMemoryDiskStatus::~DlgMemoryDiskStatus()
{
    m_cTimer.stop();
    m_cTimer.disconnect();
}

void DlgMemoryDiskStatus::OnTimer()
{
    for (const Group& group : m_acGroups)
        refresh(group);
}

void DlgMemoryDiskStatus::refresh(const Group& group)
{
    const MemoryDisk* disk = diskOf(group.m_nMemDisk);
    if (!disk) {
        group.m_pcProcessing->setValue(0);
        group.m_pcWaiting->setValue(0);
        return;
    }
    const bool grey = group.m_nDataType == 1;
    const int total = grey ? disk->getGray8BuffNum() : disk->getDIBBuffNum();
    showCount(group.m_pcProcessing, total, grey ? disk->getGray8ProcessingNum() : disk->getDIBProcessingNum());
    showCount(group.m_pcWaiting, total, grey ? disk->getGray8PreparedNum() : disk->getDIBPreparedNum());
}

// ---- What each group watches ---------------------------------------------------------------------------------------

void DlgMemoryDiskStatus::selectMemDisk(int group, int index)
{
    Group& changed = m_acGroups[static_cast<std::size_t>(group)];
    changed.m_nMemDisk = index;
    changed.m_pcClear->setEnabled(diskOf(index) != nullptr);
}

void DlgMemoryDiskStatus::on_cmbMemDisk0_currentIndexChanged(int index)
{
    selectMemDisk(0, index);
}

void DlgMemoryDiskStatus::on_cmbMemDisk1_currentIndexChanged(int index)
{
    selectMemDisk(1, index);
}

void DlgMemoryDiskStatus::on_cmbMemDisk2_currentIndexChanged(int index)
{
    selectMemDisk(2, index);
}

void DlgMemoryDiskStatus::on_cmbDataType0_currentIndexChanged(int index)
{
    m_acGroups[0].m_nDataType = index;
}

void DlgMemoryDiskStatus::on_cmbDataType1_currentIndexChanged(int index)
{
    m_acGroups[1].m_nDataType = index;
}

void DlgMemoryDiskStatus::on_cmbDataType2_currentIndexChanged(int index)
{
    m_acGroups[2].m_nDataType = index;
}

void DlgMemoryDiskStatus::on_comboBox_currentIndexChanged(int index)
{
    m_cTimer.stop();
    m_cTimer.start(100 + 100 * index);
}

// ---- Dropping what waits --------------------------------------------------------------------------------------------

// Takes as many pictures as wait now. A reader may be faster: then nothing is left to take, and waiting for more would
// only freeze the window.
void DlgMemoryDiskStatus::clearWaiting(const Group& group)
{
    MemoryDisk* disk = diskOf(group.m_nMemDisk);
    if (!disk)
        return;
    if (group.m_nDataType == 1) {
        MemoryDisk::Gray8* slot = nullptr;
        for (int n = disk->getGray8PreparedNum(); n > 0 && (slot = disk->requestGray8()); --n)
            disk->releaseGray8(slot);
        return;
    }
    MemoryDisk::DIB* slot = nullptr;
    for (int n = disk->getDIBPreparedNum(); n > 0 && (slot = disk->requestDIB()); --n)
        disk->releaseDIB(slot);
}

void DlgMemoryDiskStatus::on_btnClear0_clicked()
{
    clearWaiting(m_acGroups[0]);
}

void DlgMemoryDiskStatus::on_btnClear1_clicked()
{
    clearWaiting(m_acGroups[1]);
}

void DlgMemoryDiskStatus::on_btnClear2_clicked()
{
    clearWaiting(m_acGroups[2]);
}
