#include "memoryArenas.h"

#include <QtTest>

#include <sys/prctl.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

namespace {

constexpr std::uintptr_t LargePage = 2 << 20;
constexpr std::uintptr_t MiB = 1 << 20;

QByteArray contentOf(const char* name)
{
    QFile file(QString::fromLatin1(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What the system says of large pages: never, to who asks, always.
QByteArray setting()
{
    return contentOf("/sys/kernel/mm/transparent_hugepage/enabled");
}

bool givesLargePages()
{
    return !setting().contains("[never]") && prctl(PR_GET_THP_DISABLE, 0UL, 0UL, 0UL, 0UL) == 0 &&
           !contentOf("/sys/kernel/mm/transparent_hugepage/hugepages-2048kB/enabled").contains("[never]");
}

/// How often the system had no large page left for who asked, since it started.
qulonglong refusals()
{
    for (const QByteArray& line : contentOf("/proc/vmstat").split('\n')) {
        if (line.startsWith("thp_fault_fallback "))
            return line.mid(line.indexOf(' ') + 1).toULongLong();
    }
    return 0;
}

std::uintptr_t endOfHeap()
{
    return reinterpret_cast<std::uintptr_t>(sbrk(0));
}

/// A part of the process's addresses as the system tells of it.
struct Mapping
{
    std::uintptr_t m_nBegin = 0;
    std::uintptr_t m_nEnd = 0;
    std::uintptr_t m_nResident = 0;      // bytes
    std::uintptr_t m_nInLargePages = 0;  // bytes
    QByteArrayList m_lstFlags;

    bool holds(std::uintptr_t address) const { return m_nBegin <= address && address < m_nEnd; }
    std::uintptr_t size() const { return m_nEnd - m_nBegin; }
};

QVector<Mapping> mappings()
{
    QVector<Mapping> found;
    for (const QByteArray& line : contentOf("/proc/self/smaps").split('\n')) {
        const QByteArrayList words = line.simplified().split(' ');
        const QByteArrayList ends = words.first().split('-');
        if (ends.size() == 2)
            found.append({ends[0].toULongLong(nullptr, 16), ends[1].toULongLong(nullptr, 16), 0, 0, {}});
        else if (words.first() == "Rss:")
            found.last().m_nResident = words.value(1).toULongLong() * 1024;
        else if (words.first() == "AnonHugePages:")
            found.last().m_nInLargePages = words.value(1).toULongLong() * 1024;
        else if (words.first() == "VmFlags:")
            found.last().m_lstFlags = words.mid(1);
    }
    return found;
}

/// The part that an address is in, and the one that ends where that begins.
struct HeapParts
{
    std::optional<Mapping> m_cOf;
    std::optional<Mapping> m_cBefore;
};

HeapParts partsAt(std::uintptr_t address)
{
    HeapParts parts;
    std::optional<Mapping> before;
    for (const Mapping& mapping : mappings()) {
        if (mapping.holds(address))
            parts = {mapping, before && before->m_nEnd == mapping.m_nBegin ? before : std::nullopt};
        before = mapping;
    }
    return parts;
}

}  // namespace

/// The heap of a program that has just begun.
class testLargePages : public QObject
{
    Q_OBJECT

public:
    testLargePages();

private Q_SLOTS:
    void initTestCase();
    void heapContinuesWithALargePage();
    void nothingElseIsInLargePages();
    void whatWasSkippedTakesNoMemory();
    void whatIsTouchedComesInLargePages();
    void laterTheHeapGrowsByWhatIsNeeded();

private:
    static constexpr std::size_t BlockSize = 3 * MiB;

    qulonglong m_nRefusals = refusals();
    std::unique_ptr<void, decltype(&std::free)> m_pcBlock{std::malloc(BlockSize), &std::free};
    std::uintptr_t m_nBlock = reinterpret_cast<std::uintptr_t>(m_pcBlock.get());
    HeapParts m_cParts;
};

/// As long as nothing else has taken anything.
testLargePages::testLargePages()
{
    std::memset(m_pcBlock.get(), 1, BlockSize);
    m_cParts = partsAt(m_nBlock + BlockSize / 2);
}

void testLargePages::initTestCase()
{
    if (contentOf("/sys/kernel/mm/transparent_hugepage/hpage_pmd_size").toULongLong() != LargePage)
        QSKIP("This system has no large pages of 2 MiB.");
    if (mappings().isEmpty() || mappings().first().m_lstFlags.isEmpty())
        QSKIP("This system does not tell how memory is kept.");
    QVERIFY(m_cParts.m_cOf && m_cParts.m_cBefore);
}

void testLargePages::heapContinuesWithALargePage()
{
    const Mapping& heap = *m_cParts.m_cOf;
    QVERIFY2(heap.m_lstFlags.contains("hg"), heap.m_lstFlags.join(' ').constData());
    QCOMPARE(heap.m_nBegin % LargePage, std::uintptr_t(0));
    QVERIFY2(heap.size() >= 6 * MiB, QByteArray::number(qulonglong(heap.size())));
    QVERIFY2(m_nBlock < heap.m_nBegin && heap.m_nBegin - m_nBlock <= 8192,
             QByteArray::number(qulonglong(heap.m_nBegin - m_nBlock)));
}

void testLargePages::nothingElseIsInLargePages()
{
    int found = 0;
    for (const Mapping& mapping : mappings())
        found += mapping.m_lstFlags.contains("hg") ? 1 : 0;
    QCOMPARE(found, 1);
}

void testLargePages::whatWasSkippedTakesNoMemory()
{
    const Mapping& before = *m_cParts.m_cBefore;
    // A system that gives large pages unasked may have given one for the first bytes that malloc wrote there.
    const std::uintptr_t touched = before.m_nResident - before.m_nInLargePages;
    QVERIFY2(before.size() < 3 * MiB, QByteArray::number(qulonglong(before.size())));
    QVERIFY2(touched < MiB / 4, QByteArray::number(qulonglong(touched)));
}

void testLargePages::whatIsTouchedComesInLargePages()
{
    if (!givesLargePages())
        QSKIP("This system gives no large pages.");
    if (refusals() != m_nRefusals)
        QSKIP("This system had no large page left.");
    QCOMPARE(m_cParts.m_cOf->m_nInLargePages, 2 * LargePage);
    QCOMPARE(m_cParts.m_cOf->m_nResident, 2 * LargePage);
}

void testLargePages::laterTheHeapGrowsByWhatIsNeeded()
{
    constexpr std::size_t Size = 24 * MiB;
    const std::uintptr_t end = endOfHeap();
    const std::unique_ptr<void, decltype(&std::free)> block(std::malloc(Size), &std::free);

    QVERIFY(reinterpret_cast<std::uintptr_t>(block.get()) < endOfHeap());
    QVERIFY2(endOfHeap() - end <= Size + MiB, QByteArray::number(qulonglong(endOfHeap() - end)));
}

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();
    testLargePages test;
    QCoreApplication app(argc, argv);
    return QTest::qExec(&test, argc, argv);
}

#include "testLargePages.moc"
