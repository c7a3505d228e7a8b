#include "resultText.h"

#include <QtTest>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace {

/// A buffer as each built-in algorithm has one.
struct Owner
{
    static thread_local std::unique_ptr<char[]> s_pchConfigStr;
    static thread_local int s_nBuffLen;

    static char* put(const QString& text) { return putResultText(s_pchConfigStr, s_nBuffLen, text); }
};
thread_local std::unique_ptr<char[]> Owner::s_pchConfigStr;
thread_local int Owner::s_nBuffLen = 1024;

QString ofLength(int length)
{
    return QString(length, QLatin1Char('x'));
}

}  // namespace

class tstResultText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void capacityGrowsByHalfUntilItExceedsTheLength_data();
    void capacityGrowsByHalfUntilItExceedsTheLength();
    void capacityThatCouldNotGrowBeginsAtTwo();
    void bufferThatIsJustFullGrows();
    void nothingIsWrittenBehindTheZeroByte();
    void capacityNeverShrinks();
    void bufferStaysWhileItIsLargeEnough();
    void textIsUtf8WithAZeroByte();
    void eachThreadHasItsOwnBuffer();
};

void tstResultText::capacityGrowsByHalfUntilItExceedsTheLength_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("capacity");

    QTest::newRow("empty") << 0 << 1024;
    QTest::newRow("just fits with its zero byte") << 1023 << 1024;
    QTest::newRow("one too long") << 1024 << 1536;
    QTest::newRow("fits the second size") << 1535 << 1536;
    QTest::newRow("third size") << 1536 << 2304;
    QTest::newRow("fourth size") << 2304 << 3456;
    QTest::newRow("several steps at once") << 10000 << 11664;
    QTest::newRow("the integer part of an odd size") << 60000 << 88573;
}

void tstResultText::capacityGrowsByHalfUntilItExceedsTheLength()
{
    QFETCH(int, length);
    QFETCH(int, capacity);
    std::unique_ptr<char[]> buffer;
    int size = 1024;

    char* result = putResultText(buffer, size, ofLength(length));

    QCOMPARE(size, capacity);
    QCOMPARE(result, buffer.get());
    QCOMPARE(static_cast<int>(std::strlen(result)), length);
    result[capacity - 1] = '\0';  // the last byte is ours to write
}

void tstResultText::capacityThatCouldNotGrowBeginsAtTwo()
{
    for (const int capacity : {0, 1}) {
        std::unique_ptr<char[]> buffer;
        int size = capacity;
        QCOMPARE(QByteArray(putResultText(buffer, size, QStringLiteral("x"))), QByteArray("x"));
        QCOMPARE(size, 2);
    }
}

void tstResultText::bufferThatIsJustFullGrows()
{
    std::unique_ptr<char[]> buffer;
    int size = 8;
    putResultText(buffer, size, ofLength(7));
    QCOMPARE(size, 8);

    putResultText(buffer, size, ofLength(8));

    QCOMPARE(size, 12);
}

void tstResultText::nothingIsWrittenBehindTheZeroByte()
{
    std::unique_ptr<char[]> buffer;
    int size = 8;
    putResultText(buffer, size, ofLength(7));
    std::memset(buffer.get(), '#', 8);

    putResultText(buffer, size, QStringLiteral("abc"));

    QCOMPARE(QByteArray(buffer.get(), 8), QByteArray("abc\0####", 8));
}

void tstResultText::capacityNeverShrinks()
{
    std::unique_ptr<char[]> buffer;
    int size = 1024;
    putResultText(buffer, size, ofLength(2000));

    const char* result = putResultText(buffer, size, QStringLiteral("short"));

    QCOMPARE(size, 2304);
    QCOMPARE(result, "short");
}

void tstResultText::bufferStaysWhileItIsLargeEnough()
{
    std::unique_ptr<char[]> buffer;
    int size = 1024;

    const char* first = putResultText(buffer, size, QStringLiteral("first"));
    const char* second = putResultText(buffer, size, ofLength(1023));

    QVERIFY(first == second);
}

void tstResultText::textIsUtf8WithAZeroByte()
{
    std::unique_ptr<char[]> buffer;
    int size = 1024;

    const char* result = putResultText(buffer, size, QStringLiteral("算法"));

    QCOMPARE(QByteArray(result, 7), QByteArray("\xe7\xae\x97\xe6\xb3\x95\0", 7));
    // Length counts bytes: 342 characters of three bytes are 1026.
    putResultText(buffer, size, QString(342, QChar(0x7b97)));
    QCOMPARE(size, 1536);
    QCOMPARE(putResultText(buffer, size, QString()), "");
}

void tstResultText::eachThreadHasItsOwnBuffer()
{
    std::atomic<int> mixed{0};
    std::atomic<int> capacities{0};
    const auto convert = [&](int number) {
        const QString text = QString::number(number).repeated(500 + number * 400);
        const QByteArray expected = text.toUtf8();
        for (int i = 0; i < 2000; ++i) {
            const char* result = Owner::put(text);
            std::this_thread::yield();
            mixed += expected != result;
        }
        capacities += Owner::s_nBuffLen;
    };

    std::vector<std::thread> threads;
    for (int number = 1; number <= 3; ++number)
        threads.emplace_back(convert, number);
    for (std::thread& thread : threads)
        thread.join();

    QCOMPARE(mixed.load(), 0);
    // 900, 1300 and 1700 bytes: each thread grew its own.
    QCOMPARE(capacities.load(), 1024 + 1536 + 2304);
    QCOMPARE(Owner::s_nBuffLen, 1024);
}

QTEST_APPLESS_MAIN(tstResultText)
#include "tstResultText.moc"
