#include "memoryLimit.h"
#include "scriptedSource.h"

#include <QtTest>

namespace {

/// The bytes of picture number of the scripted source.
QByteArray scriptedPixels(int number, int rowBytes, int stride, int height)
{
    QByteArray pixels(stride * height, char(0xEE));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < rowBytes; ++x)
            pixels[y * stride + x] = char(number + 7 * y + 3 * x);
    }
    return pixels;
}

QByteArray bytesAt(const unsigned char* pixels, int size)
{
    return QByteArray(reinterpret_cast<const char*>(pixels), size);
}

int s_nBareCalls = 0;  // Calls of the two entry points below.

unsigned char* bareRequest(int, const char*, int* width, int* height)
{
    static unsigned char s_achPixels[64] = {9};
    ++s_nBareCalls;
    *width = 4;
    *height = 4;
    return s_achPixels;
}

unsigned char* requestWithoutHeight(int instance, const char* type, int* width, int*)
{
    int height = 0;
    return bareRequest(instance, type, width, &height);
}

unsigned char* requestWithoutWidth(int instance, const char* type, int*, int* height)
{
    int width = 0;
    return bareRequest(instance, type, &width, height);
}

void bareRelease(int)
{
    ++s_nBareCalls;
}

void bareSetConfig(int, char*) {}

}  // namespace

/// What a pass fetches into the store.
class TestDataSourcePictures : public QObject
{
    Q_OBJECT

    ScriptedSource m_cSource;

private slots:
    void initTestCase() { m_cSource.install(); }
    void init() { m_cSource.newStore(); }

    void colourPictureIsCopiedWithPaddedRows_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("stride");
        QTest::newRow("5 wide") << "5x3" << 5 << 3 << 16;
        QTest::newRow("4 wide") << "4x3" << 4 << 3 << 12;
        QTest::newRow("1 x 1") << "1x1" << 1 << 1 << 4;
        QTest::newRow("101 x 50") << "101x50" << 101 << 50 << 304;
    }

    void colourPictureIsCopiedWithPaddedRows()
    {
        QFETCH(QString, size);
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(int, stride);
        const Instance instance = m_cSource.create("RGB", "size=" + size);
        for (int number = 0; number < 2; ++number) {
            QVERIFY(instance->execute());
            const ParamDIB* record = m_cSource.store()->findParamDIB(3);
            QCOMPARE(record->getWidth(), width);
            QCOMPARE(record->getHeight(), height);
            QCOMPARE(bytesAt(record->getDIB(), stride * height), scriptedPixels(number, width * 3, stride, height));
        }
        QCOMPARE(m_cSource.calls("RGB"), 2);
        QCOMPARE(m_cSource.calls("releasePicture"), 2);
    }

    void greyPictureIsCopiedWithoutPadding()
    {
        const Instance instance = m_cSource.create("Gray8", "size=5x3");
        QVERIFY(instance->execute());
        const ParamGray8* record = m_cSource.store()->findParamGray8(3);
        QCOMPARE(record->getWidth(), 5);
        QCOMPARE(record->getHeight(), 3);
        QCOMPARE(bytesAt(record->getGray8(), 15), scriptedPixels(0, 5, 5, 3));
        QCOMPARE(m_cSource.calls("Gray8"), 1);
        QCOMPARE(m_cSource.calls("releasePicture"), 1);
        QVERIFY(m_cSource.store()->requestParamDIBMap()->isEmpty());
    }

    void picturesOfChangingSizeAreFollowed()
    {
        const Instance instance = m_cSource.create("RGB", "size=4x3,1x1,20x10");
        const QVector<QPair<int, int>> sizes = {{4, 3}, {1, 1}, {20, 10}, {4, 3}};
        for (const auto& size : sizes) {
            QVERIFY(instance->execute());
            QCOMPARE(m_cSource.store()->findParamDIB(3)->getWidth(), size.first);
            QCOMPARE(m_cSource.store()->findParamDIB(3)->getHeight(), size.second);
        }
    }

    void steadyPicturesKeepOneBuffer()
    {
        const Instance instance = m_cSource.create("RGB", "size=64x64");
        QVERIFY(instance->execute());
        const unsigned char* buffer = m_cSource.store()->findParamDIB(3)->getDIB();
        for (int round = 0; round < 20; ++round)
            QVERIFY(instance->execute());
        QVERIFY(m_cSource.store()->findParamDIB(3)->getDIB() == buffer);
    }

    void refusedPictureKeepsTheOldOneAndIsReleasedOnce_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("script");
        for (const char* type : {"RGB", "Gray8"}) {
            const auto add = [type](const char* name, const char* script) {
                QTest::addRow("%s: %s", type, name) << QString(type) << QString(script);
            };
            add("none left", "count=1");
            add("height 0", "report=4x3,4x0");
            add("width 0", "report=4x3,0x3");
            add("negative width", "report=4x3,-4x3");
            add("negative height", "report=4x3,4x-3");
            add("both negative", "report=4x3,-4x-3");
            add("overflowing", "report=4x3,2000000000x2000000000");
            add("2^32 bytes", "report=4x3,65536x65536");
            add("largest", "report=4x3,2147483647x2147483647");
        }
    }

    void refusedPictureKeepsTheOldOneAndIsReleasedOnce()
    {
        QFETCH(QString, type);
        QFETCH(QString, script);
        const Instance instance = m_cSource.create(type, script);
        QVERIFY(instance->execute());
        QVERIFY(!instance->execute());
        QCOMPARE(m_cSource.calls("requestPicture"), 2);
        QCOMPARE(m_cSource.calls("releasePicture"), 2);
        if (type == "RGB") {
            const ParamDIB* record = m_cSource.store()->findParamDIB(3);
            QCOMPARE(record->getWidth(), 4);
            QCOMPARE(record->getHeight(), 3);
            QCOMPARE(bytesAt(record->getDIB(), 36), scriptedPixels(0, 12, 12, 3));
        } else {
            const ParamGray8* record = m_cSource.store()->findParamGray8(3);
            QCOMPARE(record->getWidth(), 4);
            QCOMPARE(record->getHeight(), 3);
            QCOMPARE(bytesAt(record->getGray8(), 12), scriptedPixels(0, 4, 4, 3));
        }
    }

    void pictureThatMemoryDoesNotSufficeForIsRefusedAndReleased()
    {
        if (!MemoryLimit::works())
            QSKIP("Memory cannot be limited under a sanitizer.");
        const Instance instance = m_cSource.create("RGB", "report=20000x20000,4x3");
        {
            const MemoryLimit limit(100 << 20);
            QVERIFY(!instance->execute());
        }
        QCOMPARE(m_cSource.calls("releasePicture"), 1);
        QVERIFY(instance->execute());
        QCOMPARE(m_cSource.store()->findParamDIB(3)->getWidth(), 4);
    }

    void nullBufferWithASizeIsRefusedAndReleased()
    {
        const Instance instance = m_cSource.create("RGB", "null=1");
        QVERIFY(!instance->execute());
        QCOMPARE(m_cSource.calls("requestPicture"), 1);
        QCOMPARE(m_cSource.calls("releasePicture"), 1);
        QCOMPARE(m_cSource.store()->findParamDIB(3)->getWidth(), 0);
    }

    void nameAndDescriptionComeBackOnEveryPassEvenWithoutAPicture()
    {
        const Instance instance = m_cSource.create("RGB", "count=1");
        ParamDIB* record = m_cSource.store()->findParamDIB(3);
        for (const bool delivered : {true, false}) {
            record->setName("changed");
            record->setDescribe("changed");
            QCOMPARE(instance->execute(), delivered);
            QCOMPARE(record->getName(), QString("img"));
            QCOMPARE(record->getDescribe(), QString("cam"));
        }
    }

    void changedLabelsTypeAndIdTakeEffect()
    {
        const Instance instance = m_cSource.create("RGB", "");
        instance->setNameAndDescribe("名", "述");
        instance->setDataType("Gray8");
        instance->setDataID(12);
        QVERIFY(instance->execute());
        QCOMPARE(m_cSource.store()->findParamGray8(12)->getName(), QString("名"));
        QCOMPARE(m_cSource.store()->findParamGray8(12)->getDescribe(), QString("述"));
    }

    void withoutAStoreNothingIsDelivered()
    {
        const Instance instance(
            DataSource::getInstance()->createDataSourceFromConfigString(nullptr, ScriptedSource::text("RGB", "3", "")));
        QVERIFY(instance);
        QVERIFY(!instance->execute());
        QCOMPARE(m_cSource.calls("requestPicture"), 0);
        instance->setArithmParamMgr(m_cSource.store());
        QVERIFY(instance->execute());
    }

    void absentEntryPointsAreNotCalled()
    {
        const DataSource::DataSourceInfo none(nullptr, nullptr, nullptr, bareSetConfig, nullptr, nullptr, nullptr,
                                              nullptr);
        const Instance instance(none.newInstance("x", m_cSource.store()));
        instance->setDataID(1);
        instance->setDataType("RGB");
        instance->start();
        instance->stop();
        QCOMPARE(instance->getLastError(), QString());
        QVERIFY(!instance->execute());
    }

    void pictureIsNotRequestedWithoutBothEntryPoints()
    {
        s_nBareCalls = 0;
        const DataSource::DataSourceInfo noRelease(bareRequest, nullptr, nullptr, bareSetConfig, nullptr, nullptr,
                                                   nullptr, nullptr);
        const DataSource::DataSourceInfo noRequest(nullptr, bareRelease, nullptr, bareSetConfig, nullptr, nullptr,
                                                   nullptr, nullptr);
        for (const auto* kind : {&noRelease, &noRequest}) {
            const Instance instance(kind->newInstance("", m_cSource.store()));
            instance->setDataID(1);
            instance->setDataType("RGB");
            QVERIFY(!instance->execute());
        }
        QCOMPARE(s_nBareCalls, 0);
    }

    void outputIdBelowOneIsNeverAskedAPictureFor_data()
    {
        QTest::addColumn<int>("id");
        QTest::newRow("zero") << 0;
        QTest::newRow("negative") << -1;
    }

    void outputIdBelowOneIsNeverAskedAPictureFor()
    {
        QFETCH(int, id);
        s_nBareCalls = 0;
        const DataSource::DataSourceInfo kind(bareRequest, bareRelease, nullptr, bareSetConfig, nullptr, nullptr,
                                              nullptr, nullptr);
        const Instance instance(kind.newInstance("", m_cSource.store()));
        instance->setDataType("RGB");
        instance->setDataID(id);
        QVERIFY(!instance->execute());
        QCOMPARE(s_nBareCalls, 0);
        QVERIFY(m_cSource.store()->requestParamDIBMap()->isEmpty());
    }

    void sourceThatDoesNotSayItsSizeHasNoPicture()
    {
        for (const auto request : {requestWithoutWidth, requestWithoutHeight}) {
            const DataSource::DataSourceInfo kind(request, bareRelease, nullptr, bareSetConfig, nullptr, nullptr,
                                                  nullptr, nullptr);
            const Instance instance(kind.newInstance("", m_cSource.store()));
            instance->setDataType("Gray8");
            instance->setDataID(1);
            s_nBareCalls = 0;
            QVERIFY(!instance->execute());
            QCOMPARE(s_nBareCalls, 2);
            QCOMPARE(m_cSource.store()->getParamGray8(1)->getWidth(), 0);
        }
    }

    void freshInstanceHasNoOutput()
    {
        s_nBareCalls = 0;
        const DataSource::DataSourceInfo kind(bareRequest, bareRelease, nullptr, bareSetConfig, nullptr, nullptr,
                                              nullptr, nullptr);
        const Instance instance(kind.newInstance("text", m_cSource.store()));
        QCOMPARE(instance->getDataID(), 0);
        QCOMPARE(instance->getDataType(), QString());
        QCOMPARE(instance->getConfigString(), QString("text"));
        QVERIFY(!instance->execute());
        QCOMPARE(s_nBareCalls, 0);
        instance->setDataID(1);
        instance->setDataType("RGB");
        QVERIFY(instance->execute());
        QCOMPARE(s_nBareCalls, 2);
    }
};

QTEST_GUILESS_MAIN(TestDataSourcePictures)
#include "testDataSourcePictures.moc"
