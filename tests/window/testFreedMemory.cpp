#include "memoryArenas.h"
#include "steadyPages.h"

#include <QtTest>

#include <sys/mman.h>

namespace {

/// Bytes of a mapping for which large pages are wanted.
qint64 bytesWithLargePages(const char* begin, qint64 bytes)
{
    QFile file(QStringLiteral("/proc/self/smaps"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const auto first = reinterpret_cast<quintptr>(begin);
    qint64 found = 0;
    qint64 length = 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const int dash = line.indexOf('-');
        const int blank = line.indexOf(' ');
        bool isRange = false;
        const quintptr low = dash > 0 && dash < blank ? line.left(dash).toULongLong(&isRange, 16) : 0;
        if (isRange) {
            const quintptr high = line.mid(dash + 1, blank - dash - 1).toULongLong(nullptr, 16);
            const quintptr end = first + static_cast<quintptr>(bytes);
            length = low < end && high > first ? qint64(std::min(high, end) - std::max(low, first)) : 0;
        }
        if (line.startsWith("VmFlags:") && line.split(' ').contains("hg"))
            found += length;
    }
    return found;
}

}  // namespace

class testFreedMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freedPicturesAreUsedAgainWithoutTheSystem();
    void largePagesAreWantedForAllThatHoldsOneAndNothingElse();
};

void testFreedMemory::freedPicturesAreUsedAgainWithoutTheSystem()
{
    const long pages = SteadyPages::ofOneMoreStep();
    QVERIFY2(pages < 64, qPrintable(QString::number(pages)));
}

void testFreedMemory::largePagesAreWantedForAllThatHoldsOneAndNothingElse()
{
    if (!QFile::exists(QStringLiteral("/sys/kernel/mm/transparent_hugepage/enabled")))
        QSKIP("This system has no large pages.");
    constexpr qint64 Page = 2 << 20;
    void* const mapped = mmap(nullptr, 6 * Page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    QVERIFY(mapped != MAP_FAILED);
    const auto free = qScopeGuard([mapped] { munmap(mapped, 6 * Page); });
    // Up to the first place at which a large page can begin.
    char* const begin = static_cast<char*>(mapped) + (Page - reinterpret_cast<quintptr>(mapped) % Page) % Page;
    MemoryArenas::preferLargePages(begin + 1, 2 * Page - 2);
    QCOMPARE(bytesWithLargePages(begin, 4 * Page), 0);  // No whole one in between.
    MemoryArenas::preferLargePages(begin + 1, 3 * Page);
    QCOMPARE(bytesWithLargePages(begin, 4 * Page), 2 * Page);
    QCOMPARE(bytesWithLargePages(begin + Page, 2 * Page), 2 * Page);
    MemoryArenas::preferLargePages(begin, Page);
    QCOMPARE(bytesWithLargePages(begin, 4 * Page), 3 * Page);
}

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();
    QCoreApplication app(argc, argv);
    testFreedMemory test;
    return QTest::qExec(&test, argc, argv);
}

#include "testFreedMemory.moc"
