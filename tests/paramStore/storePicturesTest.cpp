#include "memoryLimit.h"
#include "recordKinds.h"

#include "paramStore/pictureLayout.h"

#include <QtTest>

#include <cstdint>
#include <cstring>
#include <limits>

namespace {

constexpr int Largest = std::numeric_limits<int>::max();

/// One of the three picture kinds behind the operations that they share.
struct Picture
{
    std::function<void(int, int)> resize;
    std::function<void*()> buffer;
    std::function<int()> width;
    std::function<int()> height;
};

Picture pictureOf(ArithmParamMgr* store, const QString& kind)
{
    const auto common = [](auto* record, auto buffer) {
        return Picture{[record](int width, int height) { record->resize(width, height); }, buffer,
                       [record] { return record->getWidth(); }, [record] { return record->getHeight(); }};
    };
    if (kind == QLatin1String("ParamDIB")) {
        ParamDIB* record = store->getParamDIB(-1);
        return common(record, [record]() -> void* { return record->getDIB(); });
    }
    if (kind == QLatin1String("ParamGray8")) {
        ParamGray8* record = store->getParamGray8(-1);
        return common(record, [record]() -> void* { return record->getGray8(); });
    }
    ParamGray16* record = store->getParamGray16(-1);
    return common(record, [record]() -> void* { return record->getGray16(); });
}

}  // namespace

/// The three picture kinds and the layout of their pixels.
class StorePicturesTest : public QObject
{
    Q_OBJECT

private slots:
    void swappedPixelsLeaveNamesAndIdentifiers()
    {
        ArithmParamMgr* store = ArithmParamMgr::newInstance();
        ParamDIB* first = store->getParamDIB(1);
        ParamDIB* second = store->getParamDIB(2);
        first->setName(QStringLiteral("first"));
        first->resize(5, 2);
        const unsigned char* pixels = first->getDIB();
        first->swapPixels(*second);
        QCOMPARE(first->getID(), 1);
        QCOMPARE(first->getName(), QStringLiteral("first"));
        QCOMPARE(first->getWidth(), 0);
        QVERIFY(!first->getDIB());
        QVERIFY(second->getDIB() == pixels);
        QCOMPARE(second->getWidth(), 5);
        QCOMPARE(second->getHeight(), 2);
        ParamGray8* grey = store->getParamGray8(3);
        grey->resize(7, 3);
        grey->swapPixels(*store->getParamGray8(4));
        QCOMPARE(store->getParamGray8(4)->getWidth(), 7);
        QCOMPARE(grey->getHeight(), 0);
        ArithmParamMgr::deleteInstance(store);
    }

    void newPictureIsEmpty_data() { kindsTable(); }
    void newPictureIsEmpty();
    void bufferHoldsItsSize_data();
    void bufferHoldsItsSize();
    void bufferBeginsWithALineOfTheCache_data() { kindsTable(); }
    void bufferBeginsWithALineOfTheCache();
    void steadySizeKeepsTheBuffer_data() { kindsTable(); }
    void steadySizeKeepsTheBuffer();
    void smallerSizeKeepsTheBuffer_data() { kindsTable(); }
    void smallerSizeKeepsTheBuffer();
    void unusableSizeMakesAnEmptyPicture_data();
    void unusableSizeMakesAnEmptyPicture();
    void emptyPictureKeepsItsMemoryForTheNext_data() { kindsTable(); }
    void emptyPictureKeepsItsMemoryForTheNext();
    void lackOfMemoryMakesAnEmptyPicture_data() { kindsTable(); }
    void lackOfMemoryMakesAnEmptyPicture();
    void gray16TakesNoMoreMemoryThanItsSamples();
    void pictureThatGrowsGivesItsOldMemoryBackFirst_data() { kindsTable(); }
    void pictureThatGrowsGivesItsOldMemoryBackFirst();
    void gray16HoldsWholeSamples();
    void cleanedStoreMakesEmptyPicturesAgain();

    void colourStrideIsThreeTimesTheWidthRoundedUpToFour_data();
    void colourStrideIsThreeTimesTheWidthRoundedUpToFour();
    void byteCountsNeverOverflow_data();
    void byteCountsNeverOverflow();
    void exchangeSwapsFirstAndThirdAndLeavesPadding();
    void exchangeOfNothingIsIgnored();

private:
    static void kindsTable();
};

void StorePicturesTest::kindsTable()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"ParamDIB", "ParamGray8", "ParamGray16"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void StorePicturesTest::newPictureIsEmpty()
{
    QFETCH(QString, kind);
    const StoreGuard store;

    const Picture picture = pictureOf(store, kind);

    QCOMPARE(picture.width(), 0);
    QCOMPARE(picture.height(), 0);
    QVERIFY(!picture.buffer());
}

void StorePicturesTest::bufferHoldsItsSize_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("bytes");

    QTest::newRow("colour 5 x 2 has two rows of 16") << "ParamDIB" << 5 << 2 << 32;
    QTest::newRow("colour 1 x 1") << "ParamDIB" << 1 << 1 << 4;
    QTest::newRow("colour 4 x 3 needs no padding") << "ParamDIB" << 4 << 3 << 36;
    QTest::newRow("colour 1920 x 1080") << "ParamDIB" << 1920 << 1080 << 6220800;
    QTest::newRow("grey 5 x 2") << "ParamGray8" << 5 << 2 << 10;
    QTest::newRow("grey 1 x 1") << "ParamGray8" << 1 << 1 << 1;
    QTest::newRow("deep grey 5 x 2") << "ParamGray16" << 5 << 2 << 20;
    QTest::newRow("deep grey 1 x 1") << "ParamGray16" << 1 << 1 << 2;
}

// Writes every byte, so that the sanitizers see a buffer that is too small.
void StorePicturesTest::bufferHoldsItsSize()
{
    QFETCH(QString, kind);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, bytes);
    const StoreGuard store;
    const Picture picture = pictureOf(store, kind);

    picture.resize(width, height);

    QCOMPARE(picture.width(), width);
    QCOMPARE(picture.height(), height);
    auto* pixels = static_cast<unsigned char*>(picture.buffer());
    QVERIFY(pixels);
    std::memset(pixels, 0xA5, static_cast<std::size_t>(bytes));
    QCOMPARE(int(pixels[0]), 0xA5);
    QCOMPARE(int(pixels[bytes - 1]), 0xA5);
}

// Small pictures lie one behind the other: threads that fill two of them must not write into the same line.
void StorePicturesTest::bufferBeginsWithALineOfTheCache()
{
    QFETCH(QString, kind);
    const StoreGuard store;
    constexpr int Small = 256 * 1024;  // bytes, at most
    const int pixelBytes = kind == QLatin1String("ParamDIB") ? 3 : kind == QLatin1String("ParamGray8") ? 1 : 2;
    const int mostPixels = Small / pixelBytes;
    QList<int> widths;
    for (int width = 1; width < 40; ++width)
        widths << width << mostPixels;
    for (const int width : widths) {  // each a record of its own
        const Picture picture = pictureOf(store, kind);
        picture.resize(width, 1);
        QCOMPARE(reinterpret_cast<std::uintptr_t>(picture.buffer()) % 64, std::uintptr_t{0});
    }
}

void StorePicturesTest::steadySizeKeepsTheBuffer()
{
    QFETCH(QString, kind);
    const StoreGuard store;
    const Picture picture = pictureOf(store, kind);
    picture.resize(640, 480);
    auto* first = static_cast<unsigned char*>(picture.buffer());
    first[1000] = 77;

    for (int pass = 0; pass < 100; ++pass) {
        picture.resize(640, 480);
        QCOMPARE(picture.buffer(), static_cast<void*>(first));
    }

    QCOMPARE(int(first[1000]), 77);
}

void StorePicturesTest::smallerSizeKeepsTheBuffer()
{
    QFETCH(QString, kind);
    const StoreGuard store;
    const Picture picture = pictureOf(store, kind);
    picture.resize(640, 480);
    void* first = picture.buffer();

    picture.resize(320, 240);
    QCOMPARE(picture.buffer(), first);
    QCOMPARE(picture.width(), 320);
    QCOMPARE(picture.height(), 240);

    picture.resize(480, 640);
    QCOMPARE(picture.buffer(), first);
    QCOMPARE(picture.width(), 480);
}

void StorePicturesTest::unusableSizeMakesAnEmptyPicture_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");

    for (const char* kind : {"ParamDIB", "ParamGray8", "ParamGray16"}) {
        const auto row = [kind](const char* what) -> QTestData& {
            return QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(QLatin1String(kind), QLatin1String(what))));
        };
        const QString name = QString::fromLatin1(kind);
        row("no width") << name << 0 << 10;
        row("no height") << name << 10 << 0;
        row("negative width") << name << -1 << 10;
        row("negative height") << name << 10 << -1;
        row("both negative: a positive product") << name << -640 << -480;
        row("smallest numbers") << name << -Largest - 1 << -Largest - 1;
        row("largest numbers") << name << Largest << Largest;
        row("product wraps to 0 in 32 bits") << name << 65536 << 65536;
        row("product wraps to a small number in 32 bits") << name << 65537 << 65537;
        row("too wide") << name << Largest << 2;
        row("too high") << name << 2 << Largest;
    }
}

void StorePicturesTest::unusableSizeMakesAnEmptyPicture()
{
    QFETCH(QString, kind);
    QFETCH(int, width);
    QFETCH(int, height);
    const StoreGuard store;
    const Picture picture = pictureOf(store, kind);
    picture.resize(8, 8);

    picture.resize(width, height);
    QCOMPARE(picture.width(), 0);
    QCOMPARE(picture.height(), 0);
    QVERIFY(!picture.buffer());

    picture.resize(16, 4);
    QCOMPARE(picture.width(), 16);
    QCOMPARE(picture.height(), 4);
    std::memset(picture.buffer(), 1, 16 * 4);
}

void StorePicturesTest::emptyPictureKeepsItsMemoryForTheNext()
{
    QFETCH(QString, kind);
    const StoreGuard store;
    const Picture picture = pictureOf(store, kind);
    picture.resize(640, 480);
    void* first = picture.buffer();

    picture.resize(0, 0);
    QVERIFY(!picture.buffer());
    picture.resize(640, 480);

    QCOMPARE(picture.buffer(), first);
}

void StorePicturesTest::lackOfMemoryMakesAnEmptyPicture()
{
    if (!MemoryLimit::works())
        QSKIP("A sanitizer's shadow memory does not fit the limit");
    QFETCH(QString, kind);
    const StoreGuard store;
    const Picture picture = pictureOf(store, kind);
    picture.resize(8, 8);
    {
        const MemoryLimit limit(64U << 20U);
        picture.resize(20000, 30000);
    }

    QCOMPARE(picture.width(), 0);
    QCOMPARE(picture.height(), 0);
    QVERIFY(!picture.buffer());
    picture.resize(1, 1);
    QVERIFY(picture.buffer());
    picture.resize(8, 8);
    QCOMPARE(picture.width(), 8);
    QVERIFY(picture.buffer());
}

void StorePicturesTest::gray16TakesNoMoreMemoryThanItsSamples()
{
    if (!MemoryLimit::works())
        QSKIP("A sanitizer's shadow memory does not fit the limit");
    const StoreGuard store;
    {
        const MemoryLimit limit(64U << 20U);
        store->getParamGray16(1)->resize(5000, 4000);  // 40 MB
    }

    QCOMPARE(store->getParamGray16(1)->getWidth(), 5000);
}

void StorePicturesTest::pictureThatGrowsGivesItsOldMemoryBackFirst()
{
    if (!MemoryLimit::works() || sizeof(void*) == 4)
        QSKIP("A sanitizer's shadow memory does not fit the limit, and an emulator leaves no room for larger pieces");
    QFETCH(QString, kind);
    const StoreGuard store;
    const Picture picture = pictureOf(store, kind);
    picture.resize(12000, 9000);
    {
        const MemoryLimit limit(64U << 20U);
        picture.resize(12000, 9100);
    }

    QCOMPARE(picture.height(), 9100);
}

void StorePicturesTest::gray16HoldsWholeSamples()
{
    const StoreGuard store;
    ParamGray16* picture = store->getParamGray16(4);

    picture->resize(3, 2);
    for (int i = 0; i < 6; ++i)
        picture->getGray16()[i] = static_cast<std::uint16_t>(65535 - i);

    QCOMPARE(int(store->findParamGray16(4)->getGray16()[0]), 65535);
    QCOMPARE(int(store->findParamGray16(4)->getGray16()[5]), 65530);
}

void StorePicturesTest::cleanedStoreMakesEmptyPicturesAgain()
{
    const StoreGuard store;
    store->getParamDIB(1)->resize(10, 10);

    store->clean();

    QCOMPARE(store->getParamDIB(1)->getWidth(), 0);
    QVERIFY(!store->getParamDIB(1)->getDIB());
}

void StorePicturesTest::colourStrideIsThreeTimesTheWidthRoundedUpToFour_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<qint64>("stride");

    QTest::newRow("1") << 1 << qint64{4};
    QTest::newRow("2") << 2 << qint64{8};
    QTest::newRow("3") << 3 << qint64{12};
    QTest::newRow("4") << 4 << qint64{12};
    QTest::newRow("5") << 5 << qint64{16};
    QTest::newRow("640") << 640 << qint64{1920};
    QTest::newRow("641") << 641 << qint64{1924};
    QTest::newRow("largest") << Largest << qint64{6442450944};
    QTest::newRow("none") << 0 << qint64{0};
    QTest::newRow("negative") << -7 << qint64{0};
    QTest::newRow("smallest") << -Largest - 1 << qint64{0};
}

void StorePicturesTest::colourStrideIsThreeTimesTheWidthRoundedUpToFour()
{
    QFETCH(int, width);
    QFETCH(qint64, stride);

    QCOMPARE(qint64(PictureLayout::colourStride(width)), stride);
}

void StorePicturesTest::byteCountsNeverOverflow_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<qint64>("colour");
    QTest::addColumn<qint64>("gray8");
    QTest::addColumn<qint64>("gray16");
    const qint64 none = 0;

    QTest::newRow("ordinary") << 101 << 50 << qint64{15200} << qint64{5050} << qint64{10100};
    QTest::newRow("largest grey") << Largest << 1 << none << qint64{2147483647} << none;
    QTest::newRow("largest deep grey") << 1073741823 << 1 << none << qint64{1073741823} << qint64{2147483646};
    QTest::newRow("one too many for deep grey") << 1073741824 << 1 << none << qint64{1073741824} << none;
    QTest::newRow("all too large") << Largest << Largest << none << none << none;
    QTest::newRow("wraps in 32 bits") << 65536 << 65536 << none << none << none;
    QTest::newRow("negative twice") << -10 << -10 << none << none << none;
    QTest::newRow("empty") << 0 << 0 << none << none << none;
}

void StorePicturesTest::byteCountsNeverOverflow()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(qint64, colour);
    QFETCH(qint64, gray8);
    QFETCH(qint64, gray16);

    QCOMPARE(qint64(PictureLayout::colourBytes(width, height)), colour);
    QCOMPARE(qint64(PictureLayout::gray8Bytes(width, height)), gray8);
    QCOMPARE(qint64(PictureLayout::gray16Bytes(width, height)), gray16);
}

void StorePicturesTest::exchangeSwapsFirstAndThirdAndLeavesPadding()
{
    // Two pixels a row make 6 bytes and 2 of padding; the third row is not the picture's.
    QByteArray pixels("abcdef##ghijkl##mnopqr##", 24);

    PictureLayout::exchangeFirstAndThird(reinterpret_cast<unsigned char*>(pixels.data()), 2, 2);

    QCOMPARE(pixels, QByteArray("cbafed##ihglkj##mnopqr##", 24));
}

void StorePicturesTest::exchangeOfNothingIsIgnored()
{
    unsigned char untouched[4] = {1, 2, 3, 4};

    PictureLayout::exchangeFirstAndThird(nullptr, 2, 2);
    PictureLayout::exchangeFirstAndThird(untouched, 0, 1);
    PictureLayout::exchangeFirstAndThird(untouched, -1, 1);
    PictureLayout::exchangeFirstAndThird(untouched, 1, -1);

    QCOMPARE(int(untouched[0]), 1);
    QCOMPARE(int(untouched[2]), 3);
}

QTEST_GUILESS_MAIN(StorePicturesTest)
#include "storePicturesTest.moc"
