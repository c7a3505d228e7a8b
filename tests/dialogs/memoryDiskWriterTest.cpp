#include "memoryDisk/memoryDisk.h"
#include "memoryDisk/memoryDiskOption.h"
#include "paramStore/arithmParamMgr.h"

#include <QtTest>

#include <cstring>
#include <thread>

namespace {

/// Runs the step on an option text; the result as the engine reads it.
QString run(const QByteArray& option, ArithmParamMgr* store)
{
    QByteArray copy = option;
    return QString::fromUtf8(MemoryDisk::execute(copy.data(), store));
}

QByteArray option(const char* disk, const char* id, const char* type)
{
    return QByteArray("<MemDisk>") + disk + "</MemDisk><InputID>" + id + "</InputID><InputType>" + type +
           "</InputType>";
}

void drain(MemoryDisk* disk)
{
    while (disk->getDIBPreparedNum() > 0)
        disk->releaseDIB(disk->requestDIB());
    while (disk->getGray8PreparedNum() > 0)
        disk->releaseGray8(disk->requestGray8());
}

}  // namespace

class MemoryDiskWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_pcStore = ArithmParamMgr::newInstance(); }
    void cleanup()
    {
        ArithmParamMgr::deleteInstance(m_pcStore);
        for (int disk = 0; disk < MemoryDisk::DiskNum; ++disk)
            drain(MemoryDisk::getInstance(disk));
    }

    void hasItsNameClassAndIdentifier()
    {
        QCOMPARE(MemoryDisk::getName(), QStringLiteral("写内存盘"));
        QCOMPARE(MemoryDisk::getClass(), QStringLiteral("系统"));
        QCOMPARE(QByteArray(MemoryDisk::getID()), QByteArray("KW_MemoryDisk"));
        QCOMPARE(QByteArray(MemoryDisk::s_ID), QByteArray("KW_MemoryDisk"));
    }

    void diskOutOfRangeIsOneRawCharacterInTheMessage_data()
    {
        QTest::addColumn<QByteArray>("disk");
        QTest::addColumn<int>("character");
        QTest::newRow("6") << QByteArray("6") << 6;
        QTest::newRow("-1") << QByteArray("-1") << 255;
        QTest::newRow("65 is the letter A") << QByteArray("65") << 65;
        QTest::newRow("the low eight bits of 321") << QByteArray("321") << 65;
        QTest::newRow("the low eight bits of -191") << QByteArray("-191") << 65;
        QTest::newRow("no number") << QByteArray("two") << 0;
        QTest::newRow("empty") << QByteArray("") << 0;
    }
    void diskOutOfRangeIsOneRawCharacterInTheMessage()
    {
        QFETCH(QByteArray, disk);
        QFETCH(int, character);
        const QByteArray expected =
            (QStringLiteral("指定的内存盘:") + QChar(character) + QStringLiteral(" 不存在.")).toUtf8();
        QByteArray text = option(disk.constData(), "1", "RGB");

        const char* result = MemoryDisk::execute(text.data(), m_pcStore);

        // A zero character ends the text for whoever reads it; the bytes behind it are there nevertheless.
        QCOMPARE(QByteArray(result, expected.size() + 1), expected + '\0');
    }

    void missingDiskIsTheDiskErrorWithAZeroCharacter()
    {
        QByteArray text("<InputID>1</InputID><InputType>RGB</InputType>");
        const QByteArray expected("指定的内存盘:\0 不存在.", 31);
        QCOMPARE(QByteArray(MemoryDisk::execute(text.data(), m_pcStore), 31), expected);
    }

    void inputThatIsNoNumberDoesNotExist_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("word") << option("0", "x", "RGB");
        QTest::newRow("empty") << option("0", "", "RGB");
        QTest::newRow("missing") << QByteArray("<MemDisk>0</MemDisk><InputType>RGB</InputType>");
        QTest::newRow("before the type is looked at") << option("0", "x", "nonsense");
    }
    void inputThatIsNoNumberDoesNotExist()
    {
        QFETCH(QByteArray, text);
        QCOMPARE(run(text, m_pcStore), QStringLiteral("指定的输入变量不存在."));
    }

    void otherTypesAreNotSupported_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::newRow("rgb in small letters") << QByteArray("rgb");
        QTest::newRow("GRAY8 in capital letters") << QByteArray("GRAY8");
        QTest::newRow("Gray16") << QByteArray("Gray16");
        QTest::newRow("with a blank") << QByteArray(" RGB");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("Chinese") << QByteArray("彩色");
    }
    void otherTypesAreNotSupported()
    {
        QFETCH(QByteArray, type);
        m_pcStore->getParamDIB(1)->resize(2, 2);
        QCOMPARE(run(option("0", "1", type.constData()), m_pcStore),
                 QStringLiteral("不支持的输入数据格式:") + QString::fromUtf8(type));
        QCOMPARE(MemoryDisk::getInstance(0)->getDIBPreparedNum(), 0);
    }

    void colourPictureGoesToItsDiskRowPaddingIncluded()
    {
        ParamDIB* record = m_pcStore->getParamDIB(5);
        record->resize(5, 2);
        for (int i = 0; i < 32; ++i)
            record->getDIB()[i] = static_cast<unsigned char>(i + 1);

        QCOMPARE(run(option("2", "5", "RGB"), m_pcStore), QString());

        MemoryDisk* disk = MemoryDisk::getInstance(2);
        QCOMPARE(disk->getDIBPreparedNum(), 1);
        QCOMPARE(disk->getGray8PreparedNum(), 0);
        MemoryDisk::DIB* slot = disk->requestDIB();
        QCOMPARE(slot->getWidth(), 5);
        QCOMPARE(slot->getHeight(), 2);
        for (int i = 0; i < 32; ++i)
            QCOMPARE(static_cast<int>(slot->getDIB()[i]), i + 1);
        disk->releaseDIB(slot);
    }

    void greyPictureGoesToTheGreyPool()
    {
        ParamGray8* record = m_pcStore->getParamGray8(7);
        record->resize(3, 2);
        std::memcpy(record->getGray8(), "abcdef", 6);

        QCOMPARE(run(option("5", "7", "Gray8"), m_pcStore), QString());

        MemoryDisk* disk = MemoryDisk::getInstance(5);
        QCOMPARE(disk->getDIBPreparedNum(), 0);
        MemoryDisk::Gray8* slot = disk->requestGray8();
        QVERIFY(slot);
        QCOMPARE(slot->getWidth(), 3);
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(slot->getGray8()), 6), QByteArray("abcdef"));
        disk->releaseGray8(slot);
    }

    void pictureOfOnePixelIsWritten()
    {
        m_pcStore->getParamDIB(1)->resize(1, 1);
        m_pcStore->getParamGray8(1)->resize(1, 1);

        QCOMPARE(run(option("0", "1", "RGB"), m_pcStore), QString());
        QCOMPARE(run(option("0", "1", "Gray8"), m_pcStore), QString());

        QCOMPARE(MemoryDisk::getInstance(0)->getDIBPreparedNum(), 1);
        QCOMPARE(MemoryDisk::getInstance(0)->getGray8PreparedNum(), 1);
    }

    void optionWithoutNumbersIsWrittenWithZeros()
    {
        QCOMPARE(MemoryDiskOption().toText(),
                 QStringLiteral("<MemDisk>0</MemDisk><InputID>0</InputID><InputType></InputType>"));
    }

    void recordWithoutPictureWritesNothingAndIsNoError_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("id");
        QTest::newRow("empty colour record") << QByteArray("RGB") << QByteArray("1");
        QTest::newRow("empty grey record") << QByteArray("Gray8") << QByteArray("2");
        QTest::newRow("no such colour record") << QByteArray("RGB") << QByteArray("99");
        QTest::newRow("no such grey record") << QByteArray("Gray8") << QByteArray("99");
        QTest::newRow("minus one") << QByteArray("RGB") << QByteArray("-1");
    }
    void recordWithoutPictureWritesNothingAndIsNoError()
    {
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, id);
        m_pcStore->getParamDIB(1);
        m_pcStore->getParamGray8(2);

        QCOMPARE(run(option("1", id.constData(), type.constData()), m_pcStore), QString());

        QCOMPARE(MemoryDisk::getInstance(1)->getDIBPreparedNum(), 0);
        QCOMPARE(MemoryDisk::getInstance(1)->getGray8PreparedNum(), 0);
        QCOMPARE(m_pcStore->requestParamDIBMap()->keys(), QList<int>{1});
        QCOMPARE(m_pcStore->requestParamGray8Map()->keys(), QList<int>{2});
    }

    void nullStoreAndNullOptionAreHarmless()
    {
        QCOMPARE(run(option("1", "1", "RGB"), nullptr), QString());
        QCOMPARE(run(option("1", "1", "Gray8"), nullptr), QString());
        QVERIFY(QByteArray(MemoryDisk::execute(nullptr, m_pcStore)).startsWith("指定的内存盘:"));
    }

    void fullDiskLosesThePictureAndTheStepStillSucceeds()
    {
        m_pcStore->getParamGray8(1)->resize(1, 1);
        MemoryDisk* disk = MemoryDisk::getInstance(3);
        for (int i = 0; i < 6; ++i) {
            m_pcStore->getParamGray8(1)->getGray8()[0] = static_cast<unsigned char>(i);
            QCOMPARE(run(option("3", "1", "Gray8"), m_pcStore), QString());
        }
        m_pcStore->getParamGray8(1)->getGray8()[0] = 200;
        QElapsedTimer timer;
        timer.start();

        QCOMPARE(run(option("3", "1", "Gray8"), m_pcStore), QString());

        QVERIFY2(timer.elapsed() >= 990, "a full disk is waited for");
        QCOMPARE(disk->getGray8PreparedNum(), 6);
        for (int i = 0; i < 6; ++i) {
            MemoryDisk::Gray8* slot = disk->requestGray8();
            QCOMPARE(static_cast<int>(slot->getGray8()[0]), i);
            disk->releaseGray8(slot);
        }
    }

    void longResultGrowsTheBufferByHalvesAndIsReturnedWhole_data()
    {
        QTest::addColumn<int>("bytes");
        QTest::addColumn<int>("capacity");
        QTest::newRow("fits with its zero byte") << 1023 << 1024;
        QTest::newRow("one more") << 1024 << 1536;
        QTest::newRow("fills the second") << 1535 << 1536;
        QTest::newRow("needs the third") << 1536 << 2304;
        QTest::newRow("needs the fourth") << 2304 << 3456;
    }
    void longResultGrowsTheBufferByHalvesAndIsReturnedWhole()
    {
        QFETCH(int, bytes);
        QFETCH(int, capacity);
        const int wordsOfMessage = 31;  // "不支持的输入数据格式:" in UTF-8
        const QByteArray type(bytes - wordsOfMessage, 'x');
        const QByteArray text = option("0", "1", type.constData());
        QByteArray result;
        int grown = 0;
        int afterwards = 0;

        // A new thread has a buffer of its own, so it starts small.
        std::thread([&] {
            QByteArray copy = text;
            result = MemoryDisk::execute(copy.data(), m_pcStore);
            grown = MemoryDisk::s_nBuffLen;
            QByteArray good = option("0", "1", "RGB");
            MemoryDisk::execute(good.data(), m_pcStore);
            afterwards = MemoryDisk::s_nBuffLen;
        }).join();

        QCOMPARE(result, QByteArray("不支持的输入数据格式:") + type);
        QCOMPARE(grown, capacity);
        QVERIFY2(afterwards == capacity, "the buffer never shrinks");
    }

    void everyResultIsTheOneBufferOfItsThread()
    {
        QByteArray text = option("0", "x", "RGB");
        const char* first = MemoryDisk::execute(text.data(), m_pcStore);
        QCOMPARE(static_cast<const void*>(first), static_cast<const void*>(MemoryDisk::s_pchConfigStr.get()));
        QString other = QStringLiteral("other");
        const char* second = MemoryDisk::transConfigStr(other);
        QCOMPARE(static_cast<const void*>(second), static_cast<const void*>(first));
        QCOMPARE(QByteArray(first), QByteArray("other"));
    }

    void threadsThatConvertAtOnceNeverSeeEachOthersText()
    {
        std::array<int, 4> wrong{};
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < wrong.size(); ++i) {
            threads.emplace_back([this, i, &wrong] {
                const QByteArray type(10 + static_cast<int>(i) * 700, static_cast<char>('a' + i));
                for (int n = 0; n < 300; ++n) {
                    QByteArray text = option("0", "1", type.constData());
                    if (QByteArray(MemoryDisk::execute(text.data(), m_pcStore)) !=
                        QByteArray("不支持的输入数据格式:") + type)
                        ++wrong[i];
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(wrong, (std::array<int, 4>{}));
    }

private:
    ArithmParamMgr* m_pcStore = nullptr;
};

QTEST_GUILESS_MAIN(MemoryDiskWriterTest)
#include "memoryDiskWriterTest.moc"
