#include "../soak/soakMemory.h"
#include "diskPictures.h"
#include "memoryLimit.h"

#include <QSet>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <functional>
#include <limits>
#include <thread>

class TestMemoryDisk : public QObject
{
    Q_OBJECT

    template <typename Kind>
    static void addNumbered(MemoryDisk* disk, int number)
    {
        // 4 x 2 pixels: 24 bytes in colour, 8 in grey.
        QVERIFY(Kind::add(disk, numberedBytes(24, number), 4, 2));
    }

    template <typename Kind>
    static void seventhAdd(MemoryDisk* disk)
    {
        for (int number = 0; number < 6; ++number)
            addNumbered<Kind>(disk, number);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!Kind::add(disk, numberedBytes(24, 6), 4, 2));
        QVERIFY(clock.elapsed() >= 950);
        QCOMPARE(Kind::prepared(disk), 6);
        auto* oldest = Kind::request(disk);
        QCOMPARE(int{Kind::pixels(oldest)[0]}, 0);
        Kind::release(disk, oldest);
        drain<Kind>(disk);
    }

    template <typename Kind>
    static void emptyRequest(MemoryDisk* disk)
    {
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!Kind::request(disk));
        QVERIFY(clock.elapsed() >= 950);
        QCOMPARE(Kind::processing(disk), 0);
        QCOMPARE(Kind::idle(disk), 6);
    }

    template <typename Kind>
    static void order(MemoryDisk* disk)
    {
        for (int number : {11, 12, 13})
            addNumbered<Kind>(disk, number);
        for (int number : {11, 12, 13}) {
            auto* slot = Kind::request(disk);
            QCOMPARE(int{Kind::pixels(slot)[0]}, number);
            Kind::release(disk, slot);
        }
    }

    template <typename Kind>
    static void circulation(MemoryDisk* disk)
    {
        addNumbered<Kind>(disk, 1);
        QCOMPARE(Kind::idle(disk), 5);
        QCOMPARE(Kind::prepared(disk), 1);
        QCOMPARE(Kind::processing(disk), 0);
        auto* slot = Kind::request(disk);
        QCOMPARE(Kind::idle(disk), 5);
        QCOMPARE(Kind::prepared(disk), 0);
        QCOMPARE(Kind::processing(disk), 1);
        Kind::release(disk, slot);
        QCOMPARE(Kind::idle(disk), 6);
        QCOMPARE(Kind::processing(disk), 0);
    }

    /// A slot given back is used again only after the five others.
    template <typename Kind>
    static void backOfIdleList(MemoryDisk* disk)
    {
        addNumbered<Kind>(disk, 0);
        auto* first = Kind::request(disk);
        Kind::release(disk, first);
        QSet<void*> others;
        for (int number = 0; number < 5; ++number) {
            addNumbered<Kind>(disk, number);
            auto* slot = Kind::request(disk);
            QVERIFY(slot != first);
            others.insert(slot);
            Kind::release(disk, slot);
        }
        QCOMPARE(others.size(), 5);
        addNumbered<Kind>(disk, 6);
        auto* again = Kind::request(disk);
        QCOMPARE(again, first);
        Kind::release(disk, again);
    }

    /// Hands so many pictures over, as many at a time as wait in the disk.
    template <typename Kind>
    static void handOver(MemoryDisk& disk, unsigned char* picture, int waiting)
    {
        for (int number = 0; number < waiting; ++number)
            Kind::add(&disk, picture, 640, 480);
        for (int number = 0; number < waiting; ++number)
            Kind::release(&disk, Kind::request(&disk));
    }

    /// However small: what each picture asks malloc for also makes holes in the memory.
    template <typename Kind>
    static void nothingAllocated()
    {
        QByteArray bytes = numberedBytes(640 * 480 * 3, 0);
        auto* const picture = reinterpret_cast<unsigned char*>(bytes.data());
        MemoryDisk disk;
        handOver<Kind>(disk, picture, 1);
        handOver<Kind>(disk, picture, 5);

        const SoakMemory::Requests before = SoakMemory::requestsOfThisThread();
        for (int round = 0; round < 60; ++round)
            handOver<Kind>(disk, picture, 1 + round % 6);
        const SoakMemory::Requests after = SoakMemory::requestsOfThisThread();

        QCOMPARE(after.m_nAll - before.m_nAll, std::int64_t{0});
    }

    template <typename Kind>
    static void givenBackTwice()
    {
        MemoryDisk disk;
        addNumbered<Kind>(&disk, 0);
        auto* twice = Kind::request(&disk);
        Kind::release(&disk, twice);
        Kind::release(&disk, twice);
        QCOMPARE(Kind::idle(&disk), 7);
        QCOMPARE(Kind::processing(&disk), -1);
        for (int number = 0; number < 7; ++number)
            addNumbered<Kind>(&disk, number);
        QVector<typename Kind::Slot*> taken;
        while (Kind::prepared(&disk) > 0)
            taken.append(Kind::request(&disk));
        QCOMPARE(taken.size(), 7);
        QCOMPARE(taken.count(twice), 2);
        QCOMPARE(taken.mid(5), (QVector<typename Kind::Slot*>{twice, twice}));
        for (auto* slot : qAsConst(taken))
            Kind::release(&disk, slot);
    }

    template <typename Kind>
    static void givenBackToAnother()
    {
        MemoryDisk disk;
        MemoryDisk another;
        addNumbered<Kind>(&disk, 0);
        auto* stray = Kind::request(&disk);
        Kind::release(&another, stray);
        QCOMPARE(Kind::processing(&disk), 1);
        QCOMPARE(Kind::processing(&another), -1);
        QCOMPARE(Kind::idle(&another), 7);
        for (int number = 20; number < 27; ++number)
            addNumbered<Kind>(&another, number);
        for (int number = 20; number < 27; ++number) {
            auto* slot = Kind::request(&another);
            QCOMPARE(int{Kind::pixels(slot)[0]}, number);
            QCOMPARE(slot == stray, number == 26);
            Kind::release(&another, slot);
        }
    }

    template <typename Kind>
    static void sameBuffers(MemoryDisk* disk)
    {
        QSet<const unsigned char*> buffers;
        const QByteArray picture = numberedBytes(640 * 480 * 3, 0);
        for (int round = 0; round < 60; ++round) {
            QVERIFY(Kind::add(disk, picture, 640, 480));
            auto* slot = Kind::request(disk);
            buffers.insert(Kind::pixels(slot));
            Kind::release(disk, slot);
        }
        QCOMPARE(buffers.size(), 6);
    }

    /// The buffers of the six slots in the order of their use.
    template <typename Kind>
    static QVector<const unsigned char*> buffersAfter(MemoryDisk* disk, int width, int height)
    {
        QVector<const unsigned char*> buffers;
        const QByteArray picture = numberedBytes(width * height * 4, 0);
        for (int i = 0; i < 6; ++i) {
            Kind::add(disk, picture, width, height);
            auto* slot = Kind::request(disk);
            buffers.append(Kind::pixels(slot));
            Kind::release(disk, slot);
        }
        return buffers;
    }

    template <typename Kind>
    static void keepsLargeBuffer(MemoryDisk* disk)
    {
        const auto large = buffersAfter<Kind>(disk, 700, 500);
        QCOMPARE(buffersAfter<Kind>(disk, 3, 2), large);
        QCOMPARE(buffersAfter<Kind>(disk, 700, 500), large);
        QVERIFY(buffersAfter<Kind>(disk, 1400, 1000) != large);
    }

    template <typename Kind>
    static void refusesNoPicture(MemoryDisk* disk)
    {
        const int huge = std::numeric_limits<int>::max();
        QElapsedTimer clock;
        clock.start();
        const QVector<QPair<int, int>> sizes = {{0, 5},       {5, 0},    {-1, 5},       {5, -1},
                                                {huge, huge}, {huge, 1}, {65536, 65536}};
        for (const auto& size : sizes) {
            if (size.second == 1 && std::is_same_v<Kind, GreyKind>)
                continue;  // 2147483647 bytes are a grey picture, if a large one.
            QVERIFY(!Kind::add(disk, numberedBytes(24, 0), size.first, size.second));
        }
        QVERIFY(clock.elapsed() < 900);
        QCOMPARE(Kind::idle(disk), 6);
        QCOMPARE(Kind::prepared(disk), 0);
        addNumbered<Kind>(disk, 1);
        drain<Kind>(disk);
    }

    template <typename Kind>
    static void exactBytes(MemoryDisk* disk, int width, int height, int bytes)
    {
        const QByteArray picture = numberedBytes(bytes, 3);
        QVERIFY(Kind::add(disk, picture, width, height));
        auto* slot = Kind::request(disk);
        QCOMPARE(slot->getWidth(), width);
        QCOMPARE(slot->getHeight(), height);
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(Kind::pixels(slot)), bytes), picture);
        Kind::release(disk, slot);
    }

    static constexpr int Attempts = 10;  ///< A busy machine may be late, but not every time.

    static bool endsWithinASecond(const std::function<void()>& operation)
    {
        for (int attempt = 0; attempt < Attempts; ++attempt) {
            QElapsedTimer clock;
            clock.start();
            operation();
            if (clock.elapsed() < 1300)
                return true;
        }
        return false;
    }

    /// Whether an operation that has to wait succeeds with what comes a moment after it began, on another thread.
    static bool succeedsWith(const std::function<void()>& whatComes, const std::function<bool()>& operation)
    {
        std::atomic<bool> begun{false};
        bool success = false;
        std::thread waiting([&] {
            begun = true;
            success = operation();
        });
        while (!begun)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        whatComes();
        waiting.join();
        return success;
    }

    template <typename Kind>
    static bool requestGetsThePictureThatComes(MemoryDisk* disk)
    {
        drain<Kind>(disk);
        return succeedsWith([disk] { addNumbered<Kind>(disk, 1); },
                            [disk] {
                                auto* slot = Kind::request(disk);
                                if (slot)
                                    Kind::release(disk, slot);
                                return slot != nullptr;
                            });
    }

    template <typename Kind>
    static bool addGetsTheSlotThatComes(MemoryDisk* disk)
    {
        drain<Kind>(disk);
        for (int number = 0; number < 6; ++number)
            addNumbered<Kind>(disk, number);
        return succeedsWith([disk] { Kind::release(disk, Kind::request(disk)); },
                            [disk] { return Kind::add(disk, numberedBytes(24, 6), 4, 2); });
    }

    template <typename Kind>
    static void waitEnds(MemoryDisk* disk)
    {
        bool got = false;
        bool stored = false;
        for (int attempt = 0; attempt < Attempts && !(got && stored); ++attempt) {
            got = got || requestGetsThePictureThatComes<Kind>(disk);
            stored = stored || addGetsTheSlotThatComes<Kind>(disk);
        }
        QVERIFY(got);
        QVERIFY(stored);
        drain<Kind>(disk);
    }

private slots:
    void cleanup()
    {
        for (int index = 0; index < 6; ++index) {
            drain<ColourKind>(MemoryDisk::getInstance(index));
            drain<GreyKind>(MemoryDisk::getInstance(index));
        }
    }

    void newDisksHaveSixIdleSlotsOfEachKind()
    {
        for (int index = 0; index < 6; ++index) {
            MemoryDisk* disk = MemoryDisk::getInstance(index);
            QCOMPARE(disk->getDIBBuffNum(), 6);
            QCOMPARE(disk->getGray8BuffNum(), 6);
            QCOMPARE(disk->getDIBIdleNum(), 6);
            QCOMPARE(disk->getGray8IdleNum(), 6);
            QCOMPARE(disk->getDIBPreparedNum() + disk->getGray8PreparedNum(), 0);
            QCOMPARE(disk->getDIBProcessingNum() + disk->getGray8ProcessingNum(), 0);
        }
    }

    void indexOutOfRangeGivesTheNearestDisk()
    {
        QCOMPARE(MemoryDisk::getInstance(-3), &MemoryDisk::s_acMemDisk[0]);
        QCOMPARE(MemoryDisk::getInstance(-1), &MemoryDisk::s_acMemDisk[0]);
        QCOMPARE(MemoryDisk::getInstance(9), &MemoryDisk::s_acMemDisk[5]);
        QCOMPARE(MemoryDisk::getInstance(6), &MemoryDisk::s_acMemDisk[5]);
        for (int index = 0; index < 6; ++index)
            QCOMPARE(MemoryDisk::getInstance(index), &MemoryDisk::s_acMemDisk[static_cast<std::size_t>(index)]);
    }

    void fullDiskRefusesAfterOneSecondAndKeepsTheOldest()
    {
        seventhAdd<ColourKind>(MemoryDisk::getInstance(0));
        seventhAdd<GreyKind>(MemoryDisk::getInstance(0));
    }

    void emptyDiskAnswersNullAfterOneSecond()
    {
        emptyRequest<ColourKind>(MemoryDisk::getInstance(1));
        emptyRequest<GreyKind>(MemoryDisk::getInstance(1));
    }

    void noWaitIsLongerThanASecond()
    {
        MemoryDisk* disk = MemoryDisk::getInstance(1);
        QVERIFY(endsWithinASecond([disk] { QVERIFY(!disk->requestDIB()); }));
        for (int number = 0; number < 6; ++number)
            addNumbered<GreyKind>(disk, number);
        QVERIFY(endsWithinASecond([disk] { QVERIFY(!GreyKind::add(disk, numberedBytes(8, 6), 4, 2)); }));
    }

    void waitEndsWhenASlotOrAPictureComes()
    {
        waitEnds<ColourKind>(MemoryDisk::getInstance(2));
        waitEnds<GreyKind>(MemoryDisk::getInstance(2));
    }

    void picturesComeOutInTheOrderTheyWentIn()
    {
        order<ColourKind>(MemoryDisk::getInstance(2));
        order<GreyKind>(MemoryDisk::getInstance(2));
    }

    void slotsGoFromIdleToPreparedToProcessingToIdle()
    {
        circulation<ColourKind>(MemoryDisk::getInstance(2));
        circulation<GreyKind>(MemoryDisk::getInstance(2));
    }

    void releasedSlotGoesToTheBackOfTheIdleList()
    {
        backOfIdleList<ColourKind>(MemoryDisk::getInstance(2));
        backOfIdleList<GreyKind>(MemoryDisk::getInstance(2));
    }

    void colourRowsArePaddedAndGreyRowsAreNot()
    {
        MemoryDisk* disk = MemoryDisk::getInstance(3);
        exactBytes<ColourKind>(disk, 100, 50, 15000);
        exactBytes<ColourKind>(disk, 101, 50, 15200);
        exactBytes<ColourKind>(disk, 1, 1, 4);
        exactBytes<GreyKind>(disk, 101, 50, 5050);
        exactBytes<GreyKind>(disk, 1, 1, 1);
    }

    void pictureIsCopied()
    {
        MemoryDisk* disk = MemoryDisk::getInstance(3);
        std::array<unsigned char, 24> pixels{};
        pixels.fill(5);
        QVERIFY(disk->addDIB(pixels.data(), 4, 2));
        QVERIFY(disk->addGray8(pixels.data(), 6, 4));

        pixels.fill(99);

        MemoryDisk::DIB* colour = disk->requestDIB();
        MemoryDisk::Gray8* grey = disk->requestGray8();
        for (int i = 0; i < 24; ++i) {
            QCOMPARE(int{colour->getDIB()[i]}, 5);
            QCOMPARE(int{grey->getGray8()[i]}, 5);
        }
        disk->releaseDIB(colour);
        disk->releaseGray8(grey);
    }

    void steadyStreamAllocatesNothingAfterTheFirstSix()
    {
        sameBuffers<ColourKind>(MemoryDisk::getInstance(3));
        sameBuffers<GreyKind>(MemoryDisk::getInstance(3));
    }

    void handingOverAsksForNoMemoryAtAllAfterTheFirstSix()
    {
        if (!SoakMemory::isResidentTelling())
            QSKIP("A sanitizer has a malloc of its own.");
        nothingAllocated<ColourKind>();
        nothingAllocated<GreyKind>();
    }

    void slotThatIsGivenBackTwiceGoesRoundTwice()
    {
        givenBackTwice<ColourKind>();
        givenBackTwice<GreyKind>();
    }

    void slotThatIsGivenBackToAnotherDiskGoesRoundThere()
    {
        givenBackToAnother<ColourKind>();
        givenBackToAnother<GreyKind>();
    }

    void smallerPictureKeepsTheLargeBuffer()
    {
        keepsLargeBuffer<ColourKind>(MemoryDisk::getInstance(4));
        keepsLargeBuffer<GreyKind>(MemoryDisk::getInstance(4));
    }

    void sizesThatNoPictureHasAreRefusedAtOnceAndTakeNoSlot()
    {
        refusesNoPicture<ColourKind>(MemoryDisk::getInstance(4));
        refusesNoPicture<GreyKind>(MemoryDisk::getInstance(4));
    }

    void nullDataIsRefusedAndTakesNoSlot()
    {
        MemoryDisk* disk = MemoryDisk::getInstance(4);
        QVERIFY(!disk->addDIB(nullptr, 4, 2));
        QVERIFY(!disk->addGray8(nullptr, 4, 2));
        QCOMPARE(disk->getDIBIdleNum(), 6);
        QCOMPARE(disk->getGray8IdleNum(), 6);
    }

    void pictureThatMemoryDoesNotSufficeForIsRefusedAndItsSlotStaysInUse()
    {
        if (!MemoryLimit::works())
            QSKIP("Memory cannot be limited under a sanitizer.");
        MemoryDisk* disk = MemoryDisk::getInstance(5);
        {
            const MemoryLimit limit(100 << 20);
            for (int round = 0; round < 7; ++round)
                QVERIFY(!ColourKind::add(disk, numberedBytes(24, 0), 20000, 20000));
        }
        QCOMPARE(disk->getDIBIdleNum(), 6);
        QCOMPARE(disk->getDIBPreparedNum(), 0);
        for (int number = 0; number < 6; ++number)
            addNumbered<ColourKind>(disk, number);
        order<GreyKind>(disk);
    }

    void slotWithoutMemoryIsEmptyAndTakesOneByteAgain()
    {
        if (!MemoryLimit::works())
            QSKIP("Memory cannot be limited under a sanitizer.");
        MemoryDisk::Gray8 slot;
        QCOMPARE(slot.getWidth(), 0);
        QCOMPARE(slot.getHeight(), 0);
        const unsigned char pixels[] = {7, 8};
        QVERIFY(slot.store(pixels, 2, 2, 1));
        {
            const MemoryLimit limit(100 << 20);
            QVERIFY(!slot.store(pixels, 400000000, 20000, 20000));
        }
        QCOMPARE(slot.getWidth(), 0);
        QCOMPARE(slot.getHeight(), 0);

        QVERIFY(slot.store(pixels, 1, 1, 1));

        QCOMPARE(slot.getWidth(), 1);
        QCOMPARE(int{slot.getGray8()[0]}, 7);
    }

    void colourAndGreyPoolsAndDisksAreIndependent()
    {
        MemoryDisk* disk = MemoryDisk::getInstance(5);
        addNumbered<ColourKind>(disk, 1);
        QCOMPARE(disk->getGray8IdleNum(), 6);
        QCOMPARE(MemoryDisk::getInstance(4)->getDIBIdleNum(), 6);
        addNumbered<GreyKind>(disk, 2);
        QCOMPARE(disk->getDIBPreparedNum(), 1);
        QCOMPARE(disk->getGray8PreparedNum(), 1);
    }

    void slotThatAReaderHoldsOutlivesItsDisk()
    {
        auto disk = std::make_unique<MemoryDisk>();
        QVERIFY(ColourKind::add(disk.get(), numberedBytes(24, 7), 4, 2));
        QVERIFY(ColourKind::add(disk.get(), numberedBytes(24, 8), 4, 2));
        const MemoryDisk::DIB* held = disk->requestDIB();
        disk.reset();
        QCOMPARE(int{held->getDIB()[0]}, 7);
    }
};

QTEST_APPLESS_MAIN(TestMemoryDisk)
#include "testMemoryDisk.moc"
