#pragma once

#include <QDialog>
#include <QTimer>

#include <array>
#include <memory>

class QComboBox;
class QProgressBar;
class QPushButton;

QT_BEGIN_NAMESPACE
namespace Ui {
class DlgMemoryDiskStatus;
}
QT_END_NAMESPACE

/**
 * A small window that stays on top and shows, in three groups, how full memory disks are.
 *
 * Each group watches the colour or the grey pool of one disk and can drop the pictures that wait in it.
 */
class DlgMemoryDiskStatus : public QDialog
{
    Q_OBJECT

public:
    explicit DlgMemoryDiskStatus(QWidget* parent = nullptr);
    ~DlgMemoryDiskStatus() override;

public Q_SLOTS:
    void OnTimer();  ///< Shows the counts of the moment.

    void on_cmbMemDisk0_currentIndexChanged(int index);
    void on_cmbMemDisk1_currentIndexChanged(int index);
    void on_cmbMemDisk2_currentIndexChanged(int index);
    void on_cmbDataType0_currentIndexChanged(int index);
    void on_cmbDataType1_currentIndexChanged(int index);
    void on_cmbDataType2_currentIndexChanged(int index);
    void on_btnClear0_clicked();
    void on_btnClear1_clicked();
    void on_btnClear2_clicked();

    /// Kept on purpose: no widget has the name "comboBox", so the interval that the user picks never arrives here.
    void on_comboBox_currentIndexChanged(int index);

private:
    static constexpr int GroupNum = 3;

    /// One group: what it watches and the widgets that show it.
    struct Group
    {
        int m_nDataType = 0;                     ///< 0 colour, 1 grey.
        int m_nMemDisk = 0;                      ///< 0 to 5; above for none.
        QProgressBar* m_pcProcessing = nullptr;  ///< The widgets belong to the form.
        QProgressBar* m_pcWaiting = nullptr;
        QPushButton* m_pcClear = nullptr;
    };

    void refresh(const Group& group);
    void selectMemDisk(int group, int index);
    void clearWaiting(const Group& group);

    std::unique_ptr<Ui::DlgMemoryDiskStatus> m_pcUi;
    QTimer m_cTimer{this};
    std::array<Group, GroupNum> m_acGroups;
};
