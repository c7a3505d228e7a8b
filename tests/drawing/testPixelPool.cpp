#include "drawing/imageDrawingOpt.h"
#include "drawing/pixelPool.h"
#include "drawingSupport.h"

#include <QtTest>

#include <cstring>
#include <memory>
#include <thread>
#include <vector>

using namespace DrawingSupport;

/// The memory behind the options' own copies of pictures.
class TestPixelPool : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void memoryThatCameBackIsLentAgain();
    void theSmallestBufferThatFitsIsLent();
    void aMuchLargerBufferIsNotWasted();
    void noMemoryForNothingOrForTooMuch();
    void movingHandsTheMemoryOver();
    void freeMemoryStaysBoundedInNumber();
    void freeMemoryStaysBoundedInBytes();
    void asManyFreeBytesAsAllowedAreKept();
    void steadyDrawingAllocatesNoPictureMemory();
    void manyThreadsShareThePool();
};

void TestPixelPool::memoryThatCameBackIsLentAgain()
{
    const unsigned char* first = PooledPixels(10007).data();

    const PooledPixels again(10007);

    QCOMPARE(static_cast<const void*>(again.data()), static_cast<const void*>(first));
}

void TestPixelPool::theSmallestBufferThatFitsIsLent()
{
    auto large = std::make_unique<PooledPixels>(30000);
    auto small = std::make_unique<PooledPixels>(20100);
    const unsigned char* smallData = small->data();
    small.reset();
    large.reset();

    const PooledPixels lent(20050);

    QCOMPARE(static_cast<const void*>(lent.data()), static_cast<const void*>(smallData));
}

void TestPixelPool::aMuchLargerBufferIsNotWasted()
{
    const auto before = PooledPixels::poolState();
    const unsigned char* large = PooledPixels(5000000).data();

    const PooledPixels small(101);

    QVERIFY(small.data() != large);
    QVERIFY(PooledPixels::poolState().m_nAllocations >= before.m_nAllocations + 1);
    const unsigned char* larger = PooledPixels(250000).data();
    QVERIFY(PooledPixels(100000).data() != larger);
}

void TestPixelPool::noMemoryForNothingOrForTooMuch()
{
    QVERIFY(!PooledPixels().data());
    QVERIFY(!PooledPixels(0).data());
    QVERIFY(!PooledPixels(-5).data());
    if (sizeof(std::size_t) == 8)
        QVERIFY(!PooledPixels(std::int64_t{1} << 60).data());
}

void TestPixelPool::movingHandsTheMemoryOver()
{
    PooledPixels first(7770);
    unsigned char* data = first.data();

    PooledPixels second(std::move(first));
    PooledPixels third;
    third = std::move(second);

    QCOMPARE(static_cast<const void*>(third.data()), static_cast<const void*>(data));
    QVERIFY(!second.data());  // NOLINT: what a moved-from one holds is part of its contract
    third = PooledPixels();
    QCOMPARE(static_cast<const void*>(PooledPixels(7770).data()), static_cast<const void*>(data));
}

void TestPixelPool::freeMemoryStaysBoundedInNumber()
{
    {
        std::vector<PooledPixels> many;
        for (int i = 0; i < 200; ++i)
            many.emplace_back(64);
    }

    QCOMPARE(PooledPixels::poolState().m_nFreeBuffers, PooledPixels::MaxFreeBuffers);
}

void TestPixelPool::freeMemoryStaysBoundedInBytes()
{
    {
        std::vector<PooledPixels> many;
        for (int i = 0; i < 10; ++i)
            many.emplace_back(static_cast<std::int64_t>(PooledPixels::MaxFreeBytes / 7 * 2));
    }

    const auto state = PooledPixels::poolState();
    QVERIFY(state.m_nFreeBytes <= PooledPixels::MaxFreeBytes);
    QVERIFY(state.m_nFreeBytes >= PooledPixels::MaxFreeBytes / 7 * 6);  // three of them are kept
}

void TestPixelPool::asManyFreeBytesAsAllowedAreKept()
{
    const unsigned char* largest = PooledPixels(PooledPixels::MaxFreeBytes).data();

    QCOMPARE(PooledPixels::poolState().m_nFreeBytes, PooledPixels::MaxFreeBytes);
    const PooledPixels again(PooledPixels::MaxFreeBytes);
    QCOMPARE(static_cast<const void*>(again.data()), static_cast<const void*>(largest));
}

void TestPixelPool::steadyDrawingAllocatesNoPictureMemory()
{
    const Store store = makeStore();
    store->getParamDIB(1)->resize(201, 100);
    std::memset(store->getParamDIB(1)->getDIB(), 1, 604 * 100);
    store->getParamGray8(1)->resize(201, 100);
    std::memset(store->getParamGray8(1)->getGray8(), 1, 201 * 100);
    QImage canvas = filledCanvas(64, 64, 0);
    const auto pass = [&] {
        for (const char* text : {"<DataType>0</DataType><DataID>1</DataID>", "<DataType>1</DataType><DataID>1</DataID>",
                                 "<DataType>1</DataType><DataID>1</DataID><Config><DrawMode><Val>1</Val></DrawMode>"
                                 "</Config>"})
            parse(text, store.get())->draw(&canvas, store.get());
    };
    pass();
    const auto before = PooledPixels::poolState().m_nAllocations;

    for (int i = 0; i < 100; ++i)
        pass();

    QCOMPARE(PooledPixels::poolState().m_nAllocations, before);
}

void TestPixelPool::manyThreadsShareThePool()
{
    std::vector<std::thread> threads;
    std::vector<int> damaged(4, 0);
    for (std::size_t number = 0; number < damaged.size(); ++number) {
        threads.emplace_back([number, &damaged] {
            for (int i = 0; i < 500; ++i) {
                const std::size_t byteNum = 1000 + static_cast<std::size_t>(i % 5) * 300;
                const PooledPixels pixels(static_cast<std::int64_t>(byteNum));
                std::memset(pixels.data(), static_cast<int>(number), byteNum);
                std::this_thread::yield();
                damaged[number] += pixels.data()[0] != number || pixels.data()[byteNum - 1] != number;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    QCOMPARE(damaged, std::vector<int>(4, 0));
}

QTEST_GUILESS_MAIN(TestPixelPool)
#include "testPixelPool.moc"
