#include "dialogDriver.h"
#include "memoryDisk/dlgMemoryDiskStatus.h"
#include "memoryDisk/memoryDisk.h"

#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>

using namespace DialogDriver;

namespace {

constexpr int GroupNum = 3;

QByteArray of(const char* name, int group)
{
    return QByteArray(name) + QByteArray::number(group);
}

int waiting(QWidget& dialog, int group)
{
    return child<QProgressBar>(dialog, of("pbWaiting", group))->value();
}

int processing(QWidget& dialog, int group)
{
    return child<QProgressBar>(dialog, of("pbProcessing", group))->value();
}

void addColour(int disk, int number)
{
    unsigned char pixel[4] = {1, 2, 3, 0};
    for (int i = 0; i < number; ++i)
        QVERIFY(MemoryDisk::getInstance(disk)->addDIB(pixel, 1, 1));
}

void addGrey(int disk, int number)
{
    unsigned char pixel[1] = {1};
    for (int i = 0; i < number; ++i)
        QVERIFY(MemoryDisk::getInstance(disk)->addGray8(pixel, 1, 1));
}

}  // namespace

class MemoryDiskStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::ignoreMessage(QtWarningMsg,
                             "QMetaObject::connectSlotsByName: No matching signal for "
                             "on_comboBox_currentIndexChanged(int)");
        m_pcDialog = std::make_unique<DlgMemoryDiskStatus>();
        m_pcDialog->show();
    }
    void cleanup()
    {
        m_pcDialog.reset();
        for (int i = 0; i < MemoryDisk::DiskNum; ++i) {
            MemoryDisk* disk = MemoryDisk::getInstance(i);
            while (disk->getDIBPreparedNum() > 0)
                disk->releaseDIB(disk->requestDIB());
            while (disk->getGray8PreparedNum() > 0)
                disk->releaseGray8(disk->requestGray8());
        }
    }

    void formHasItsTextsAndItems()
    {
        QCOMPARE(dialog().windowTitle(), QStringLiteral("内存盘状态"));
        for (int group = 0; group < GroupNum; ++group) {
            QCOMPARE(itemsOf(dialog(), of("cmbDataType", group)), (QStringList{"RGB", "Gray8"}));
            QCOMPARE(itemsOf(dialog(), of("cmbMemDisk", group)),
                     (QStringList{"MD0", "MD1", "MD2", "MD3", "MD4", "MD5", "无"}));
            QCOMPARE(child<QPushButton>(dialog(), of("btnClear", group))->text(), QStringLiteral("清空文件"));
        }
        QCOMPARE(itemsOf(dialog(), "cmbInteval"), (QStringList{"100ms", "200ms", "300ms", "400ms", "500ms", "600ms",
                                                               "700ms", "800ms", "900ms", "1000ms"}));
    }

    void labelsAndGroupsHaveTheirTexts_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* label : {"label_3", "label_5", "label_12"})
            QTest::newRow(label) << QStringLiteral("待处理");
        for (const char* label : {"label_4", "label_7", "label_13"})
            QTest::newRow(label) << QStringLiteral("处理中");
        for (const char* label : {"label_6", "label_8", "label_14"})
            QTest::newRow(label) << QStringLiteral("类  型");
        for (const char* label : {"label", "label_2", "label_24"})
            QTest::newRow(label) << QStringLiteral("内存盘");
        QTest::newRow("label_9") << QStringLiteral("刷新间隔");
    }
    void labelsAndGroupsHaveTheirTexts()
    {
        QTEST(child<QLabel>(dialog(), QTest::currentDataTag())->text(), "text");
        QCOMPARE(child<QGroupBox>(dialog(), "groupBox")->title(), QStringLiteral("0"));
        QCOMPARE(child<QGroupBox>(dialog(), "groupBox_2")->title(), QStringLiteral("1"));
        QCOMPARE(child<QGroupBox>(dialog(), "groupBox_3")->title(), QStringLiteral("2"));
    }

    void labelsStandInTheGroupThatTheyName()
    {
        const QMap<QString, QStringList> groups{{"groupBox", {"label", "label_3", "label_4", "label_6"}},
                                                {"groupBox_2", {"label_2", "label_5", "label_7", "label_8"}},
                                                {"groupBox_3", {"label_24", "label_12", "label_13", "label_14"}}};
        for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
            for (const QString& name : group.value())
                QCOMPARE(dialog().findChild<QWidget*>(name)->parentWidget()->objectName(), group.key());
        }
    }

    void controlsStandInTheGroupOfTheirNumber()
    {
        const QStringList groups{"groupBox", "groupBox_2", "groupBox_3"};
        for (int group = 0; group < GroupNum; ++group) {
            for (const char* name : {"cmbDataType", "cmbMemDisk", "pbProcessing", "pbWaiting", "btnClear"})
                QCOMPARE(child<QWidget>(dialog(), of(name, group))->parentWidget()->objectName(), groups.at(group));
        }
    }

    void startsWithTheFirstThreeDisksInColourAtOneSecond()
    {
        for (int group = 0; group < GroupNum; ++group) {
            QCOMPARE(child<QComboBox>(dialog(), of("cmbDataType", group))->currentText(), QStringLiteral("RGB"));
            QCOMPARE(child<QComboBox>(dialog(), of("cmbMemDisk", group))->currentText(),
                     QStringLiteral("MD%1").arg(group));
            for (const char* bar : {"pbProcessing", "pbWaiting"}) {
                QCOMPARE(child<QProgressBar>(dialog(), of(bar, group))->maximum(), 6);
                QCOMPARE(child<QProgressBar>(dialog(), of(bar, group))->value(), 0);
                QCOMPARE(child<QProgressBar>(dialog(), of(bar, group))->format(), QStringLiteral("%v"));
            }
        }
        QCOMPARE(child<QComboBox>(dialog(), "cmbInteval")->currentText(), QStringLiteral("1000ms"));
        QCOMPARE(timer()->interval(), 1000);
        QVERIFY(timer()->isActive());
    }

    void staysOnTop() { QVERIFY(dialog().windowFlags() & Qt::WindowStaysOnTopHint); }

    void timerShowsWhatWaitsAndWhatIsProcessed()
    {
        addColour(0, 3);
        addColour(1, 1);
        addGrey(2, 4);
        MemoryDisk::DIB* slot = MemoryDisk::getInstance(0)->requestDIB();

        QTRY_COMPARE_WITH_TIMEOUT(waiting(dialog(), 0), 2, 20000);

        QCOMPARE(processing(dialog(), 0), 1);
        QCOMPARE(waiting(dialog(), 1), 1);
        QCOMPARE(processing(dialog(), 1), 0);
        QCOMPARE(waiting(dialog(), 2), 0);  // The grey pictures are another pool.
        MemoryDisk::getInstance(0)->releaseDIB(slot);
    }

    void eachGroupFollowsItsOwnDiskAndType()
    {
        addGrey(4, 3);
        MemoryDisk::Gray8* slot = MemoryDisk::getInstance(4)->requestGray8();
        for (int group = 0; group < GroupNum; ++group) {
            pick(dialog(), of("cmbMemDisk", group), 4);
            pick(dialog(), of("cmbDataType", group), 1);
            QCOMPARE(waiting(dialog(), group), 0);  // The bars change with the next tick.

            dialog().OnTimer();

            QCOMPARE(waiting(dialog(), group), 2);
            QCOMPARE(processing(dialog(), group), 1);
        }
        // All three watch the same disk and type now, and show the same.
        for (int group = 0; group < GroupNum; ++group)
            QCOMPARE(waiting(dialog(), group), 2);
        MemoryDisk::getInstance(4)->releaseGray8(slot);
    }

    void maximumOfTheBarsFollowsThePoolOnEveryTick()
    {
        for (int group = 0; group < GroupNum; ++group) {
            for (const char* bar : {"pbProcessing", "pbWaiting"})
                child<QProgressBar>(dialog(), of(bar, group))->setMaximum(99);
        }
        dialog().OnTimer();
        for (int group = 0; group < GroupNum; ++group) {
            for (const char* bar : {"pbProcessing", "pbWaiting"})
                QCOMPARE(child<QProgressBar>(dialog(), of(bar, group))->maximum(), 6);
        }
    }

    void noneEmptiesTheBarsAtTheNextTickAndDisablesClear()
    {
        for (int group = 0; group < GroupNum; ++group) {
            addColour(group, 2);
            MemoryDisk::DIB* slot = MemoryDisk::getInstance(group)->requestDIB();
            dialog().OnTimer();
            QCOMPARE(waiting(dialog(), group), 1);
            QCOMPARE(processing(dialog(), group), 1);
            QVERIFY(child<QPushButton>(dialog(), of("btnClear", group))->isEnabled());

            pick(dialog(), of("cmbMemDisk", group), 6);

            QCOMPARE(waiting(dialog(), group), 1);
            QVERIFY(!child<QPushButton>(dialog(), of("btnClear", group))->isEnabled());
            dialog().OnTimer();
            QCOMPARE(waiting(dialog(), group), 0);
            QCOMPARE(processing(dialog(), group), 0);

            pick(dialog(), of("cmbMemDisk", group), group);
            QVERIFY(child<QPushButton>(dialog(), of("btnClear", group))->isEnabled());
            MemoryDisk::getInstance(group)->releaseDIB(slot);
        }
    }

    void clearDropsWhatWaitsInTheGroupsDiskAndTypeOnly_data()
    {
        QTest::addColumn<int>("group");
        QTest::addColumn<bool>("grey");
        for (int group = 0; group < GroupNum; ++group) {
            QTest::newRow(of("colour ", group)) << group << false;
            QTest::newRow(of("grey ", group)) << group << true;
        }
    }
    void clearDropsWhatWaitsInTheGroupsDiskAndTypeOnly()
    {
        QFETCH(int, group);
        QFETCH(bool, grey);
        for (int disk = 0; disk < MemoryDisk::DiskNum; ++disk) {
            addColour(disk, 3);
            addGrey(disk, 2);
        }
        pick(dialog(), of("cmbMemDisk", group), 5 - group);
        pick(dialog(), of("cmbDataType", group), grey ? 1 : 0);

        click(dialog(), of("btnClear", group));

        for (int i = 0; i < MemoryDisk::DiskNum; ++i) {
            const MemoryDisk* disk = MemoryDisk::getInstance(i);
            const bool cleared = i == 5 - group;
            QCOMPARE(disk->getDIBPreparedNum(), cleared && !grey ? 0 : 3);
            QCOMPARE(disk->getGray8PreparedNum(), cleared && grey ? 0 : 2);
            QCOMPARE(disk->getDIBIdleNum(), cleared && !grey ? 6 : 3);
            QCOMPARE(disk->getGray8IdleNum(), cleared && grey ? 6 : 4);
            QCOMPARE(disk->getDIBProcessingNum(), 0);
            QCOMPARE(disk->getGray8ProcessingNum(), 0);
        }
    }

    void clearOfAnEmptyDiskChangesNothing()
    {
        MemoryDisk* disk = MemoryDisk::getInstance(0);
        addColour(0, 1);
        MemoryDisk::DIB* slot = disk->requestDIB();
        QElapsedTimer timer;
        timer.start();

        click(dialog(), "btnClear0");

        QVERIFY2(timer.elapsed() < 900, "nothing is waited for");
        QCOMPARE(disk->getDIBPreparedNum(), 0);
        QCOMPARE(disk->getDIBProcessingNum(), 1);
        QCOMPARE(disk->getDIBIdleNum(), 5);
        disk->releaseDIB(slot);
    }

    void clearWithoutADiskIsIgnored()
    {
        addColour(0, 2);
        pick(dialog(), "cmbMemDisk0", 6);

        dialog().on_btnClear0_clicked();  // The button itself is disabled.

        QCOMPARE(MemoryDisk::getInstance(0)->getDIBPreparedNum(), 2);
    }

    void intervalComboIsNeverConnectedAndTheRefreshStaysAtOneSecond()
    {
        for (int index : {0, 4, 8}) {
            pick(dialog(), "cmbInteval", index);
            QCOMPARE(child<QComboBox>(dialog(), "cmbInteval")->currentIndex(), index);
            QCOMPARE(timer()->interval(), 1000);
        }
    }

    void intervalHandlerItselfRestartsTheTimer()
    {
        dialog().on_comboBox_currentIndexChanged(0);
        QCOMPARE(timer()->interval(), 100);
        dialog().on_comboBox_currentIndexChanged(9);
        QCOMPARE(timer()->interval(), 1000);
        QVERIFY(timer()->isActive());
    }

private:
    DlgMemoryDiskStatus& dialog() { return *m_pcDialog; }
    QTimer* timer() { return m_pcDialog->findChild<QTimer*>(); }

    std::unique_ptr<DlgMemoryDiskStatus> m_pcDialog;
};

QTEST_MAIN(MemoryDiskStatusTest)
#include "memoryDiskStatusTest.moc"
