#include "recordKinds.h"

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <set>
#include <thread>
#include <type_traits>

namespace {

constexpr int Rounds = 3000;

/// Element number value of each kind: all of its numbers are value, so a mixture of two is seen.
ParamPoints::Point element(const ParamPoints*, int value)
{
    return {value, value};
}

ParamLines::Line element(const ParamLines*, int value)
{
    return {value, value, value, value};
}

ParamPolys::Poly element(const ParamPolys*, int value)
{
    return ParamPolys::Poly(1 + value % 5, {value, value});
}

ParamAreas::Area element(const ParamAreas*, int value)
{
    return {value, value, value, value, value, value, value};
}

QByteArray element(const ParamStrings*, int value)
{
    return QByteArray::number(value);
}

bool holds(const ParamPoints::Point& point, int value)
{
    return point.x == value && point.y == value;
}

bool holds(const ParamLines::Line& line, int value)
{
    return line.x1 == value && line.y1 == value && line.x2 == value && line.y2 == value;
}

bool holds(const ParamPolys::Poly& poly, int value)
{
    const auto isVertex = [value](const ParamPolys::Point& point) { return point.x == value && point.y == value; };
    return poly.size() == 1 + value % 5 && std::all_of(poly.begin(), poly.end(), isVertex);
}

bool holds(const ParamAreas::Area& area, int value)
{
    return area.label == value && area.top == value && area.bottom == value && area.left == value &&
           area.right == value && area.centerX == value && area.centerY == value;
}

bool holds(const QByteArray& string, int value)
{
    return string == QByteArray::number(value);
}

QVector<ParamPoints::Point> snapshot(const ParamPoints* record)
{
    return record->getPoints();
}

QVector<ParamLines::Line> snapshot(const ParamLines* record)
{
    return record->getLines();
}

QVector<ParamPolys::Poly> snapshot(const ParamPolys* record)
{
    return record->getPolys();
}

QVector<ParamAreas::Area> snapshot(const ParamAreas* record)
{
    return record->getAreas();
}

QVector<QByteArray> snapshot(const ParamStrings* record)
{
    return record->getStrings();
}

/// How many elements the list number value has, so that its length tells which list it is.
int lengthOf(int value)
{
    return 1 + value % 40;
}

/// Whether a snapshot is exactly one of the lists that the writer puts in place; none of them is empty.
template <typename Element>
bool isUniform(const QVector<Element>& elements)
{
    if (elements.isEmpty())
        return false;
    for (int value = elements.size() - 1; value < Rounds; value += 40) {
        const auto isValue = [value](const Element& each) { return holds(each, value); };
        if (holds(elements.first(), value))
            return std::all_of(elements.begin(), elements.end(), isValue);
    }
    return false;
}

}  // namespace

/// The store and its records used by several threads at once.
class StoreThreadsTest : public QObject
{
    Q_OBJECT

private slots:
    void snapshotNeverMixesTwoReplacements_data();
    void snapshotNeverMixesTwoReplacements();
    void snapshotOfAGrowingListIsItsBeginning();
    void readingByIndexWhileReplacingIsSafe();
    void finderSeesWholeRecordsWhileAnotherThreadMakesThem_data();
    void finderSeesWholeRecordsWhileAnotherThreadMakesThem();
    void freshIdsOfTwoThreadsNeverMeet();
    void sameIdAskedByTwoThreadsIsOneRecord();
    void reservedIdsAreNeverFreshWhileAnotherThreadMakesRecords();
    void nameIsReadWholeWhileItChanges();

private:
    template <typename Record>
    static void replaceAndRead(Record* record);
};

void StoreThreadsTest::snapshotNeverMixesTwoReplacements_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"points", "lines", "polys", "areas", "strings"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

template <typename Record>
void StoreThreadsTest::replaceAndRead(Record* record)
{
    record->replaceAll({element(record, 0)});
    std::atomic<bool> done{false};
    int mixed = 0;
    std::thread writer([&] {
        for (int value = 0; value < Rounds; ++value) {
            const auto each = element(record, value);
            record->replaceAll(QVector<std::decay_t<decltype(each)>>(lengthOf(value), each));
        }
        done = true;
    });

    while (!done)
        mixed += isUniform(snapshot(record)) ? 0 : 1;
    writer.join();

    QCOMPARE(mixed, 0);
    QVERIFY(isUniform(snapshot(record)));
    QVERIFY(holds(snapshot(record).first(), Rounds - 1));
}

void StoreThreadsTest::snapshotNeverMixesTwoReplacements()
{
    QFETCH(QString, kind);
    const StoreGuard store;

    if (kind == QLatin1String("points"))
        replaceAndRead(store->getParamPoints(1));
    else if (kind == QLatin1String("lines"))
        replaceAndRead(store->getParamLines(1));
    else if (kind == QLatin1String("polys"))
        replaceAndRead(store->getParamPolys(1));
    else if (kind == QLatin1String("areas"))
        replaceAndRead(store->getParamAreas(1));
    else
        replaceAndRead(store->getParamStrings(1));
}

void StoreThreadsTest::snapshotOfAGrowingListIsItsBeginning()
{
    const StoreGuard store;
    ParamPoints* record = store->getParamPoints(1);
    std::atomic<bool> done{false};
    int wrong = 0;
    std::thread writer([&] {
        for (int i = 0; i < Rounds; ++i)
            record->append({i, i});
        done = true;
    });

    while (!done) {
        const QVector<ParamPoints::Point> points = record->getPoints();
        for (int i = 0; i < points.size(); ++i)
            wrong += holds(points.at(i), i) ? 0 : 1;
    }
    writer.join();

    QCOMPARE(wrong, 0);
    QCOMPARE(record->getPointNum(), Rounds);
}

void StoreThreadsTest::readingByIndexWhileReplacingIsSafe()
{
    const StoreGuard store;
    ParamStrings* record = store->getParamStrings(1);
    std::atomic<bool> done{false};
    int wrong = 0;
    std::thread writer([&] {
        for (int round = 0; round < Rounds; ++round) {
            record->replaceAll(QVector<QByteArray>(lengthOf(round), "content"));
            record->clear();
        }
        done = true;
    });

    char buffer[16];
    while (!done) {
        const int bytes = record->getString(buffer, 16, record->getStringNum() - 1);
        wrong += bytes == 0 || QByteArray(buffer, bytes) == "content" ? 0 : 1;
    }
    writer.join();

    QCOMPARE(wrong, 0);
}

void StoreThreadsTest::finderSeesWholeRecordsWhileAnotherThreadMakesThem_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < recordKinds().size(); ++i)
        QTest::newRow(qPrintable(recordKinds().at(i).name)) << i;
}

void StoreThreadsTest::finderSeesWholeRecordsWhileAnotherThreadMakesThem()
{
    QFETCH(int, index);
    const RecordKind& kind = recordKinds().at(index);
    const StoreGuard store;
    std::atomic<int> made{0};
    int wrong = 0;
    std::thread maker([&] {
        for (int id = 1; id <= Rounds; ++id) {
            kind.get(store, id);
            made = id;
        }
    });

    for (int last = 0; last < Rounds;) {
        last = made;
        const ArithmParam* latest = kind.find(store, last);
        wrong += last == 0 || (latest && latest->getID() == last) ? 0 : 1;
        const ArithmParam* perhaps = kind.find(store, last + 1);
        wrong += !perhaps || perhaps->getID() == last + 1 ? 0 : 1;
    }
    maker.join();

    QCOMPARE(wrong, 0);
}

void StoreThreadsTest::freshIdsOfTwoThreadsNeverMeet()
{
    const StoreGuard store;
    std::set<int> first;
    std::set<int> second;
    std::thread other([&] {
        for (int i = 0; i < Rounds; ++i)
            first.insert(store->getParamDIB(-1)->getID());
    });

    for (int i = 0; i < Rounds; ++i)
        second.insert(store->getParamStrings(-1)->getID());
    other.join();

    std::set<int> both = first;
    both.insert(second.begin(), second.end());
    QCOMPARE(int(both.size()), 2 * Rounds);
    QCOMPARE(*both.begin(), 1);
    QCOMPARE(*both.rbegin(), 2 * Rounds);
}

void StoreThreadsTest::sameIdAskedByTwoThreadsIsOneRecord()
{
    const StoreGuard store;
    QVector<ArithmParam*> theirs;
    std::thread other([&] {
        for (int id = 1; id <= Rounds; ++id)
            theirs << store->getParamAreas(id);
    });

    QVector<ArithmParam*> ours;
    for (int id = 1; id <= Rounds; ++id)
        ours << store->getParamAreas(id);
    other.join();

    QCOMPARE(ours, theirs);
    QCOMPARE(store->requestParamAreasMap()->size(), Rounds);
}

void StoreThreadsTest::reservedIdsAreNeverFreshWhileAnotherThreadMakesRecords()
{
    const StoreGuard store;
    std::set<int> fresh;
    std::thread maker([&] {
        for (int i = 0; i < Rounds; ++i)
            fresh.insert(store->getParamDIB(-1)->getID());
    });

    for (int i = 0; i < Rounds; ++i)
        store->reserveID(100 * Rounds + i);
    maker.join();

    QCOMPARE(int(fresh.size()), Rounds);
    QCOMPARE(*fresh.rbegin(), Rounds);
    QCOMPARE(store->getParamDIB(-1)->getID(), Rounds + 1);
}

void StoreThreadsTest::nameIsReadWholeWhileItChanges()
{
    const StoreGuard store;
    ParamAreas* record = store->getParamAreas(1);
    const QString first(100, QLatin1Char('a'));
    const QString second(50, QLatin1Char('b'));
    record->setName(first);
    record->setDescribe(first);
    std::atomic<bool> done{false};
    int wrong = 0;
    std::thread writer([&] {
        for (int round = 0; round < Rounds; ++round) {
            record->setName(round % 2 ? QString(100, QLatin1Char('a')) : QString(50, QLatin1Char('b')));
            record->setDescribe(round % 2 ? QString(100, QLatin1Char('a')) : QString(50, QLatin1Char('b')));
        }
        done = true;
    });

    while (!done) {
        const QString name = record->getName();
        const QString describe = record->getDescribe();
        wrong += name == first || name == second ? 0 : 1;
        wrong += describe == first || describe == second ? 0 : 1;
    }
    writer.join();

    QCOMPARE(wrong, 0);
}

QTEST_GUILESS_MAIN(StoreThreadsTest)
#include "storeThreadsTest.moc"
