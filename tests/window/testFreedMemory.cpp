#include "memoryArenas.h"
#include "steadyPages.h"

#include <QtTest>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

namespace {

constexpr std::uintptr_t LargePage = 2 << 20;
constexpr std::uintptr_t MiB = 1 << 20;

/// A part of the process's addresses as the system tells of it.
struct Mapping
{
    std::uintptr_t m_nBegin = 0;
    std::uintptr_t m_nEnd = 0;
    std::uintptr_t m_nResident = 0;  // bytes
    QByteArrayList m_lstFlags;

    bool holds(const void* address) const
    {
        const auto place = reinterpret_cast<std::uintptr_t>(address);
        return m_nBegin <= place && place < m_nEnd;
    }

    std::uintptr_t size() const { return m_nEnd - m_nBegin; }
};

Mapping readMapping(const QByteArray& headLine)
{
    const QByteArrayList ends = headLine.left(headLine.indexOf(' ')).split('-');
    return {ends.value(0).toULongLong(nullptr, 16), ends.value(1).toULongLong(nullptr, 16), 0, {}};
}

QVector<Mapping> mappings()
{
    QVector<Mapping> found;
    QFile file(QStringLiteral("/proc/self/smaps"));
    if (!file.open(QIODevice::ReadOnly))
        return found;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QByteArrayList words = line.simplified().split(' ');
        if (words.first() == "VmFlags:")
            found.last().m_lstFlags = words.mid(1);
        else if (words.first() == "Rss:")
            found.last().m_nResident = words.value(1).toULongLong() * 1024;
        else if (!words.first().endsWith(':') && words.first().contains('-'))
            found.append(readMapping(line));
    }
    return found;
}

/// The part that an address is in, and the one that ends where that begins.
struct HeapParts
{
    std::optional<Mapping> m_cOf;
    std::optional<Mapping> m_cBefore;
};

HeapParts partsAt(const void* address)
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

class testFreedMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void heapContinuesInLargePages();  // first: what is taken then is at the heap's beginning
    void freedPicturesAreUsedAgainWithoutTheSystem();
};

void testFreedMemory::heapContinuesInLargePages()
{
    if (!QFile::exists(QStringLiteral("/sys/kernel/mm/transparent_hugepage")))
        QSKIP("This system has pages of one size only.");
    const std::unique_ptr<void, decltype(&std::free)> block(std::malloc(MiB), &std::free);
    const auto [heap, before] = partsAt(static_cast<const char*>(block.get()) + MiB / 2);
    QVERIFY(heap && before);
    if (heap->m_lstFlags.isEmpty())
        QSKIP("This system does not tell how memory is kept.");
    QVERIFY2(heap->m_lstFlags.contains("hg"), heap->m_lstFlags.join(' ').constData());
    QCOMPARE(heap->m_nBegin % LargePage, std::uintptr_t(0));
    QVERIFY2(heap->size() >= 6 * MiB, QByteArray::number(qulonglong(heap->size())));
    // What was skipped to get there takes no memory.
    QVERIFY2(before->size() < 3 * MiB, QByteArray::number(qulonglong(before->size())));
    QVERIFY2(before->m_nResident < MiB / 2, QByteArray::number(qulonglong(before->m_nResident)));
}

void testFreedMemory::freedPicturesAreUsedAgainWithoutTheSystem()
{
    const long pages = SteadyPages::ofOneMoreStep();
    QVERIFY2(pages < 64, qPrintable(QString::number(pages)));
}

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();
    QCoreApplication app(argc, argv);
    testFreedMemory test;
    return QTest::qExec(&test, argc, argv);
}

#include "testFreedMemory.moc"
