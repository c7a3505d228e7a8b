#include "diskPictures.h"
#include "memoryDisk/memoryDiskCallBack.h"

#include <QtTest>

#include <set>
#include <thread>
#include <vector>

class TestMemoryDiskSources : public QObject
{
    Q_OBJECT

    static MemoryDisk* disk(int index) { return MemoryDisk::getInstance(index); }

    template <typename Source>
    static void readsDisk(int index)
    {
        QCOMPARE(int{Source::s_nPos}, index);
        QVERIFY(ColourKind::add(disk(index), numberedBytes(32, 100 + index), 5, 2));
        int width = 0;
        int height = 0;
        const unsigned char* pixels = Source::MemoryDiskRequestPicture(1, "RGB", &width, &height);
        QVERIFY(pixels);
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(pixels), 32), numberedBytes(32, 100 + index));
        QCOMPARE(width, 5);
        QCOMPARE(height, 2);
        QCOMPARE(disk(index)->getDIBProcessingNum(), 1);
        Source::MemoryDiskReleasePicture(1);
        QCOMPARE(disk(index)->getDIBProcessingNum(), 0);
        QCOMPARE(disk(index)->getDIBIdleNum(), 6);
    }

    template <typename Source>
    static void saysNothing()
    {
        char config[] = "anything";
        QCOMPARE(Source::MemoryDiskShowConfigDlg(config, true), static_cast<char*>(Source::s_achBlank));
        QCOMPARE(Source::MemoryDiskGetLastError(1), static_cast<char*>(Source::s_achBlank));
        QCOMPARE(QByteArray(Source::s_achBlank), QByteArray(""));
        Source::MemoryDiskSetConfig(1, config);
        Source::MemoryDiskStart(1);
        Source::MemoryDiskStop(1);
        QCOMPARE(QByteArray(config), QByteArray("anything"));
    }

private slots:
    void eachSourceReadsItsOwnDisk()
    {
        readsDisk<MemoryDiskCallBack0>(0);
        readsDisk<MemoryDiskCallBack1>(1);
        readsDisk<MemoryDiskCallBack2>(2);
        readsDisk<MemoryDiskCallBack3>(3);
        readsDisk<MemoryDiskCallBack4>(4);
        readsDisk<MemoryDiskCallBack5>(5);
    }

    void nothingToConfigureAndNoErrorsToReport()
    {
        saysNothing<MemoryDiskCallBack0>();
        saysNothing<MemoryDiskCallBack5>();
    }

    void emptyDiskAnswersNullAfterOneSecondAndLeavesTheSizeAlone_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::newRow("colour") << QByteArray("RGB");
        QTest::newRow("grey") << QByteArray("Gray8");
    }

    void emptyDiskAnswersNullAfterOneSecondAndLeavesTheSizeAlone()
    {
        QFETCH(QByteArray, type);
        int width = 17;
        int height = 19;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!MemoryDiskCallBack0::MemoryDiskRequestPicture(1, type.constData(), &width, &height));
        QVERIFY(clock.elapsed() >= 950);
        QCOMPARE(width, 17);
        QCOMPARE(height, 19);
    }

    void typeTextIsComparedByItsBeginning_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<int>("colourTaken");
        QTest::addColumn<int>("greyTaken");
        QTest::newRow("RGB") << QByteArray("RGB") << 1 << 0;
        QTest::newRow("RGBA") << QByteArray("RGBA") << 1 << 0;
        QTest::newRow("RGB and more") << QByteArray("RGB picture") << 1 << 0;
        QTest::newRow("Gray8") << QByteArray("Gray8") << 0 << 1;
        QTest::newRow("Gray8 and more") << QByteArray("Gray8x") << 0 << 1;
        QTest::newRow("Gray") << QByteArray("Gray") << 0 << 0;
        QTest::newRow("Gray16") << QByteArray("Gray16") << 0 << 0;
        QTest::newRow("RG") << QByteArray("RG") << 0 << 0;
        QTest::newRow("lower case") << QByteArray("rgb") << 0 << 0;
        QTest::newRow("leading blank") << QByteArray(" RGB") << 0 << 0;
        QTest::newRow("empty") << QByteArray("") << 0 << 0;
    }

    void typeTextIsComparedByItsBeginning()
    {
        QFETCH(QByteArray, type);
        QFETCH(int, colourTaken);
        QFETCH(int, greyTaken);
        ColourKind::add(disk(1), numberedBytes(24, 50), 4, 2);
        GreyKind::add(disk(1), numberedBytes(8, 60), 4, 2);
        int width = 0;
        int height = 0;
        const unsigned char* pixels =
            MemoryDiskCallBack1::MemoryDiskRequestPicture(1, type.constData(), &width, &height);
        QCOMPARE(disk(1)->getDIBProcessingNum(), colourTaken);
        QCOMPARE(disk(1)->getGray8ProcessingNum(), greyTaken);
        QCOMPARE(pixels ? int{pixels[0]} : 0, colourTaken * 50 + greyTaken * 60);
        QCOMPARE(width, (colourTaken + greyTaken) * 4);
        MemoryDiskCallBack1::MemoryDiskReleasePicture(1);
        drain<ColourKind>(disk(1));
        drain<GreyKind>(disk(1));
    }

    void nullTypeTextHasNoPictures()
    {
        int width = 3;
        int height = 4;
        QVERIFY(!MemoryDiskCallBack1::MemoryDiskRequestPicture(1, nullptr, &width, &height));
        QCOMPARE(width, 3);
        QCOMPARE(height, 4);
    }

    void releaseGivesBackBothKinds()
    {
        ColourKind::add(disk(2), numberedBytes(24, 1), 4, 2);
        GreyKind::add(disk(2), numberedBytes(8, 2), 4, 2);
        int width = 0;
        int height = 0;
        QVERIFY(MemoryDiskCallBack2::MemoryDiskRequestPicture(5, "RGB", &width, &height));
        QVERIFY(MemoryDiskCallBack2::MemoryDiskRequestPicture(5, "Gray8", &width, &height));
        QVERIFY(MemoryDiskCallBack2::s_mapDIB.value(5));
        QVERIFY(MemoryDiskCallBack2::s_mapGray8.value(5));
        MemoryDiskCallBack2::MemoryDiskReleasePicture(5);
        QCOMPARE(disk(2)->getDIBIdleNum(), 6);
        QCOMPARE(disk(2)->getGray8IdleNum(), 6);
        QVERIFY(MemoryDiskCallBack2::s_mapDIB.contains(5));
        QVERIFY(!MemoryDiskCallBack2::s_mapDIB.value(5));
        MemoryDiskCallBack2::MemoryDiskReleasePicture(5);
        QCOMPARE(disk(2)->getDIBProcessingNum(), 0);
        QCOMPARE(disk(2)->getDIBIdleNum(), 6);
    }

    void releaseOfAnInstanceThatNeverAskedChangesNothing()
    {
        MemoryDiskCallBack2::MemoryDiskReleasePicture(77);
        QCOMPARE(disk(2)->getDIBIdleNum(), 6);
        QCOMPARE(disk(2)->getDIBProcessingNum(), 0);
        QCOMPARE(disk(2)->getGray8ProcessingNum(), 0);
        QVERIFY(MemoryDiskCallBack2::s_mapDIB.contains(77));
        QVERIFY(MemoryDiskCallBack2::s_mapGray8.contains(77));
        QVERIFY(!MemoryDiskCallBack2::s_mapDIB.value(77));
    }

    void twoInstancesOfOneDiskGetDifferentPicturesOldestFirst()
    {
        ColourKind::add(disk(3), numberedBytes(24, 1), 4, 2);
        ColourKind::add(disk(3), numberedBytes(24, 2), 4, 2);
        int width = 0;
        int height = 0;
        const unsigned char* first = MemoryDiskCallBack3::MemoryDiskRequestPicture(1, "RGB", &width, &height);
        const unsigned char* second = MemoryDiskCallBack3::MemoryDiskRequestPicture(2, "RGB", &width, &height);
        QCOMPARE(int{first[0]}, 1);
        QCOMPARE(int{second[0]}, 2);
        MemoryDiskCallBack3::MemoryDiskReleasePicture(1);
        QCOMPARE(disk(3)->getDIBProcessingNum(), 1);
        QCOMPARE(int{second[0]}, 2);
        MemoryDiskCallBack3::MemoryDiskReleasePicture(2);
        QCOMPARE(disk(3)->getDIBProcessingNum(), 0);
    }

    void sameNumberInAnotherSourceIsAnotherInstance()
    {
        ColourKind::add(disk(0), numberedBytes(24, 1), 4, 2);
        ColourKind::add(disk(1), numberedBytes(24, 2), 4, 2);
        int width = 0;
        int height = 0;
        QVERIFY(MemoryDiskCallBack0::MemoryDiskRequestPicture(7, "RGB", &width, &height));
        QVERIFY(MemoryDiskCallBack1::MemoryDiskRequestPicture(7, "RGB", &width, &height));
        MemoryDiskCallBack0::MemoryDiskReleasePicture(7);
        QCOMPARE(disk(0)->getDIBProcessingNum(), 0);
        QCOMPARE(disk(1)->getDIBProcessingNum(), 1);
        MemoryDiskCallBack1::MemoryDiskReleasePicture(7);
        QCOMPARE(disk(1)->getDIBProcessingNum(), 0);
        QCOMPARE(disk(1)->getDIBIdleNum(), 6);
    }

    void secondRequestWithoutReleaseLosesTheFirstSlotForGoodOnPurpose()
    {
        ColourKind::add(disk(4), numberedBytes(24, 1), 4, 2);
        ColourKind::add(disk(4), numberedBytes(24, 2), 4, 2);
        int width = 0;
        int height = 0;
        MemoryDiskCallBack4::MemoryDiskRequestPicture(1, "RGB", &width, &height);
        MemoryDiskCallBack4::MemoryDiskRequestPicture(1, "RGB", &width, &height);
        MemoryDiskCallBack4::MemoryDiskReleasePicture(1);
        QCOMPARE(disk(4)->getDIBProcessingNum(), 1);
        QCOMPARE(disk(4)->getDIBIdleNum(), 5);
        MemoryDiskCallBack4::MemoryDiskReleasePicture(1);
        QCOMPARE(disk(4)->getDIBProcessingNum(), 1);
    }

    void removedInstanceKeepsItsSlotsProcessingForGoodOnPurpose()
    {
        ColourKind::add(disk(5), numberedBytes(24, 1), 4, 2);
        GreyKind::add(disk(5), numberedBytes(8, 2), 4, 2);
        int width = 0;
        int height = 0;
        MemoryDiskCallBack5::MemoryDiskRequestPicture(3, "RGB", &width, &height);
        MemoryDiskCallBack5::MemoryDiskRequestPicture(3, "Gray8", &width, &height);
        MemoryDiskCallBack5::MemoryDiskRemoveInstance(3);
        QVERIFY(!MemoryDiskCallBack5::s_mapDIB.contains(3));
        QVERIFY(!MemoryDiskCallBack5::s_mapGray8.contains(3));
        MemoryDiskCallBack5::MemoryDiskReleasePicture(3);
        QCOMPARE(disk(5)->getDIBProcessingNum(), 1);
        QCOMPARE(disk(5)->getGray8ProcessingNum(), 1);
        QCOMPARE(disk(5)->getDIBIdleNum(), 5);
    }

    void manyInstancesShareOneDiskAndEveryPictureIsTakenOnce()
    {
        constexpr int Pictures = 600;
        constexpr int Instances = 4;
        std::atomic<int> left{Pictures};
        std::vector<std::vector<int>> taken(Instances);
        std::vector<std::thread> threads;
        for (int i = 0; i < Instances; ++i) {
            threads.emplace_back([i, &left, &labels = taken[static_cast<std::size_t>(i)]] {
                while (left.fetch_sub(1) > 0) {
                    int width = 0;
                    int height = 0;
                    const unsigned char* pixels = nullptr;
                    while (!pixels)
                        pixels = MemoryDiskCallBack0::MemoryDiskRequestPicture(100 + i, "RGB", &width, &height);
                    labels.push_back(pixels[0] + 256 * pixels[1]);
                    MemoryDiskCallBack0::MemoryDiskReleasePicture(100 + i);
                }
                MemoryDiskCallBack0::MemoryDiskRemoveInstance(100 + i);
            });
        }
        for (int number = 0; number < Pictures; ++number) {
            QByteArray picture(24, 0);
            picture[0] = static_cast<char>(number % 256);
            picture[1] = static_cast<char>(number / 256);
            while (!ColourKind::add(disk(0), picture, 4, 2))
                std::this_thread::yield();
        }
        std::multiset<int> all;
        for (int i = 0; i < Instances; ++i) {
            threads[static_cast<std::size_t>(i)].join();
            const auto& labels = taken[static_cast<std::size_t>(i)];
            QVERIFY(std::is_sorted(labels.begin(), labels.end()));
            all.insert(labels.begin(), labels.end());
        }
        std::multiset<int> expected;
        for (int number = 0; number < Pictures; ++number)
            expected.insert(number);
        QVERIFY(all == expected);
        QCOMPARE(disk(0)->getDIBIdleNum(), 6);
    }

    void waitingForAPictureDoesNotHoldUpOtherInstances()
    {
        GreyKind::add(disk(1), numberedBytes(8, 5), 4, 2);
        std::atomic<bool> asking{false};
        std::thread waiting([&asking] {
            int width = 0;
            int height = 0;
            asking = true;
            while (asking)
                MemoryDiskCallBack1::MemoryDiskRequestPicture(8, "RGB", &width, &height);
        });
        while (!asking)
            std::this_thread::yield();
        int width = 0;
        int height = 0;
        QElapsedTimer clock;
        clock.start();
        for (int round = 0; round < 50; ++round) {
            QVERIFY(MemoryDiskCallBack1::MemoryDiskRequestPicture(9, "Gray8", &width, &height));
            MemoryDiskCallBack1::MemoryDiskReleasePicture(9);
            GreyKind::add(disk(1), numberedBytes(8, 5), 4, 2);
        }
        // Fifty waits of a second each, had the lock been held while waiting.
        QVERIFY(clock.elapsed() < 25000);
        asking = false;
        waiting.join();
        drain<GreyKind>(disk(1));
    }
};

QTEST_APPLESS_MAIN(TestMemoryDiskSources)
#include "testMemoryDiskSources.moc"
