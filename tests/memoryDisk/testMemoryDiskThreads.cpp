#include "diskPictures.h"

#include <QtTest>

#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr int Writers = 3;
constexpr int Readers = 3;
constexpr int PicturesEach = 400;

/// What a picture says about itself: which writer made it, and his how manyth it is.
struct Label
{
    int writer;
    int number;
};

template <typename Kind>
void write(MemoryDisk* disk, int writer)
{
    for (int number = 0; number < PicturesEach; ++number) {
        const Label label{writer, number};
        QByteArray picture(24, char(writer));
        std::memcpy(picture.data(), &label, sizeof label);
        while (!Kind::add(disk, picture, 4, 2))
            std::this_thread::yield();
    }
}

template <typename Kind>
std::vector<Label> read(MemoryDisk* disk, std::atomic<int>& left)
{
    std::vector<Label> labels;
    while (left.fetch_sub(1) > 0) {
        auto* slot = Kind::request(disk);
        while (!slot)
            slot = Kind::request(disk);
        Label label;
        std::memcpy(&label, Kind::pixels(slot), sizeof label);
        labels.push_back(label);
        Kind::release(disk, slot);
    }
    return labels;
}

template <typename Kind>
void handOver(MemoryDisk* disk, int readers)
{
    std::atomic<int> left{Writers * PicturesEach};
    std::vector<std::vector<Label>> taken(static_cast<std::size_t>(readers));
    std::vector<std::thread> threads;
    for (int writer = 0; writer < Writers; ++writer)
        threads.emplace_back([disk, writer] { write<Kind>(disk, writer); });
    for (auto& labels : taken)
        threads.emplace_back([disk, &labels, &left] { labels = read<Kind>(disk, left); });
    for (std::thread& thread : threads)
        thread.join();

    std::vector<std::vector<int>> times(Writers, std::vector<int>(PicturesEach, 0));
    for (const auto& labels : taken) {
        std::vector<int> last(Writers, -1);
        for (const Label& label : labels) {
            ++times[static_cast<std::size_t>(label.writer)][static_cast<std::size_t>(label.number)];
            QVERIFY(label.number > last[static_cast<std::size_t>(label.writer)]);
            last[static_cast<std::size_t>(label.writer)] = label.number;
        }
    }
    QCOMPARE(times, std::vector<std::vector<int>>(Writers, std::vector<int>(PicturesEach, 1)));
    QCOMPARE(Kind::idle(disk), 6);
    QCOMPARE(Kind::prepared(disk), 0);
    QCOMPARE(Kind::processing(disk), 0);
}

}  // namespace

class TestMemoryDiskThreads : public QObject
{
    Q_OBJECT

private slots:
    void everyPictureIsTakenOnceAndInOrderByManyReaders()
    {
        handOver<ColourKind>(MemoryDisk::getInstance(0), Readers);
        handOver<GreyKind>(MemoryDisk::getInstance(0), Readers);
    }

    void oneReaderSeesEveryWritersPicturesInOrder() { handOver<ColourKind>(MemoryDisk::getInstance(1), 1); }

    void waitingReaderGetsThePictureThatComes()
    {
        MemoryDisk* disk = MemoryDisk::getInstance(2);
        std::thread writer([disk] { ColourKind::add(disk, numberedBytes(24, 9), 4, 2); });
        MemoryDisk::DIB* slot = nullptr;
        while (!slot)
            slot = disk->requestDIB();
        QCOMPARE(int{slot->getDIB()[0]}, 9);
        writer.join();
        disk->releaseDIB(slot);
    }

    void countsMayBeReadWhilePicturesPass()
    {
        MemoryDisk* disk = MemoryDisk::getInstance(3);
        std::atomic<bool> done{false};
        std::atomic<bool> wrong{false};
        std::thread status([&] {
            while (!done) {
                for (int count : {ColourKind::idle(disk), ColourKind::prepared(disk), ColourKind::processing(disk)})
                    wrong = wrong || count < 0 || count > 6;
            }
        });
        handOver<ColourKind>(disk, Readers);
        done = true;
        status.join();
        QVERIFY(!wrong);
    }
};

QTEST_APPLESS_MAIN(TestMemoryDiskThreads)
#include "testMemoryDiskThreads.moc"
