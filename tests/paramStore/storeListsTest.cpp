#include "../soak/soakMemory.h"
#include "recordKinds.h"

#include <QtTest>

#include <cstring>
#include <limits>

/// The five list kinds: filling, reading by index, snapshots.
class StoreListsTest : public QObject
{
    Q_OBJECT

private slots:
    void newListsAreEmpty();
    void pointsAreCopiedOutByIndex();
    void linesAreCopiedOutByIndex();
    void areasAreCopiedOutByIndex();
    void verticesAreCopiedOutByIndex();
    void indexOutOfRangeLeavesTheValueAlone_data();
    void indexOutOfRangeLeavesTheValueAlone();
    void stringIsCopiedWithoutATerminatingZero_data();
    void stringIsCopiedWithoutATerminatingZero();
    void stringWithZeroBytesIsCopiedWhole();
    void stringFromBorrowedBytesBelongsToTheStore();
    void clearEmptiesEveryKind();
    void replaceAllDropsWhatWasThere();
    void appendGoesOnAfterReplaceAll();
    void callersListStaysItsOwn();
    void snapshotIsNotTouchedByLaterChanges();
    void snapshotHoldsTheWholeList();
    void memoryThatWasSharedIsNeverWrittenAgain();
    void appendingCopiesTheListOnceAfterASnapshot();
};

void StoreListsTest::newListsAreEmpty()
{
    const StoreGuard store;

    QCOMPARE(store->getParamPoints(1)->getPointNum(), 0);
    QCOMPARE(store->getParamLines(1)->getLineNum(), 0);
    QCOMPARE(store->getParamPolys(1)->getPolyNum(), 0);
    QCOMPARE(store->getParamAreas(1)->getAreaNum(), 0);
    QCOMPARE(store->getParamStrings(1)->getStringNum(), 0);
    QVERIFY(store->getParamStrings(1)->getStrings().isEmpty());
}

void StoreListsTest::pointsAreCopiedOutByIndex()
{
    const StoreGuard store;
    ParamPoints* record = store->getParamPoints(1);

    record->append({10, 20});
    record->append({-3, 4});

    ParamPoints::Point point{};
    QCOMPARE(record->getPointNum(), 2);
    QCOMPARE(record->getPoint(point, 1), 1);
    QCOMPARE(point.x, -3);
    QCOMPARE(point.y, 4);
}

void StoreListsTest::linesAreCopiedOutByIndex()
{
    const StoreGuard store;
    ParamLines* record = store->getParamLines(1);

    record->append({1, 2, 3, 4});
    record->append({5, 6, 7, 8});

    ParamLines::Line line{};
    QCOMPARE(record->getLineNum(), 2);
    QCOMPARE(record->getLine(line, 0), 1);
    QCOMPARE(line.x1, 1);
    QCOMPARE(line.y1, 2);
    QCOMPARE(line.x2, 3);
    QCOMPARE(line.y2, 4);
}

void StoreListsTest::areasAreCopiedOutByIndex()
{
    const StoreGuard store;
    ParamAreas* record = store->getParamAreas(1);

    record->append({1, 2, 3, 4, 5, 6, 7});

    ParamAreas::Area area{};
    QCOMPARE(record->getAreaNum(), 1);
    QCOMPARE(record->getArea(area, 0), 1);
    QCOMPARE(area.label, 1);
    QCOMPARE(area.top, 2);
    QCOMPARE(area.bottom, 3);
    QCOMPARE(area.left, 4);
    QCOMPARE(area.right, 5);
    QCOMPARE(area.centerX, 6);
    QCOMPARE(area.centerY, 7);
}

void StoreListsTest::verticesAreCopiedOutByIndex()
{
    const StoreGuard store;
    ParamPolys* record = store->getParamPolys(1);

    record->append({{3, 0}, {10, 0}, {5, 9}});
    record->append(ParamPolys::Poly());

    ParamPolys::Point vertex{};
    QCOMPARE(record->getPolyNum(), 2);
    QCOMPARE(record->getPolyVertNum(0), 3);
    QCOMPARE(record->getPolyVertNum(1), 0);
    QCOMPARE(record->getPolyVert(vertex, 0, 0), 1);
    QCOMPARE(vertex.x, 3);
    QCOMPARE(record->getPolyVert(vertex, 0, 2), 1);
    QCOMPARE(vertex.x, 5);
    QCOMPARE(vertex.y, 9);
}

void StoreListsTest::indexOutOfRangeLeavesTheValueAlone_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("just past the end") << 1;
    QTest::newRow("negative") << -1;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void StoreListsTest::indexOutOfRangeLeavesTheValueAlone()
{
    QFETCH(int, index);
    const StoreGuard store;
    store->getParamPoints(1)->append({1, 1});
    store->getParamLines(1)->append({1, 1, 1, 1});
    store->getParamPolys(1)->append({{1, 1}});
    store->getParamAreas(1)->append({1, 1, 1, 1, 1, 1, 1});
    store->getParamStrings(1)->append("one");
    ParamPoints::Point point{9, 9};
    ParamLines::Line line{9, 9, 9, 9};
    ParamPolys::Point vertex{9, 9};
    ParamAreas::Area area{9, 9, 9, 9, 9, 9, 9};
    char text[4] = "abc";

    QCOMPARE(store->getParamPoints(1)->getPoint(point, index), 0);
    QCOMPARE(store->getParamLines(1)->getLine(line, index), 0);
    QCOMPARE(store->getParamPolys(1)->getPolyVertNum(index), 0);
    QCOMPARE(store->getParamPolys(1)->getPolyVert(vertex, index, 0), 0);
    QCOMPARE(store->getParamPolys(1)->getPolyVert(vertex, 0, index), 0);
    QCOMPARE(store->getParamAreas(1)->getArea(area, index), 0);
    QCOMPARE(store->getParamStrings(1)->getStringLen(index), 0);
    QCOMPARE(store->getParamStrings(1)->getString(text, 4, index), 0);

    QCOMPARE(point.x, 9);
    QCOMPARE(line.y2, 9);
    QCOMPARE(vertex.y, 9);
    QCOMPARE(area.centerY, 9);
    QCOMPARE(QByteArray(text), QByteArray("abc"));
}

void StoreListsTest::stringIsCopiedWithoutATerminatingZero_data()
{
    QTest::addColumn<int>("capacity");
    QTest::addColumn<int>("copied");
    QTest::addColumn<QByteArray>("buffer");

    QTest::newRow("room to spare") << 8 << 5 << QByteArray("hello###");
    QTest::newRow("exact") << 5 << 5 << QByteArray("hello###");
    QTest::newRow("too small") << 3 << 3 << QByteArray("hel#####");
    QTest::newRow("one byte") << 1 << 1 << QByteArray("h#######");
    QTest::newRow("no room") << 0 << 0 << QByteArray("########");
    QTest::newRow("negative room") << -1 << 0 << QByteArray("########");
}

void StoreListsTest::stringIsCopiedWithoutATerminatingZero()
{
    QFETCH(int, capacity);
    QFETCH(int, copied);
    QFETCH(QByteArray, buffer);
    const StoreGuard store;
    ParamStrings* record = store->getParamStrings(1);
    record->append("hello");
    QByteArray target(8, '#');

    QCOMPARE(record->getStringLen(0), 5);
    QCOMPARE(record->getString(target.data(), capacity, 0), copied);
    QCOMPARE(target, buffer);
    QCOMPARE(record->getString(nullptr, capacity, 0), 0);
}

void StoreListsTest::stringWithZeroBytesIsCopiedWhole()
{
    const StoreGuard store;
    ParamStrings* record = store->getParamStrings(1);
    record->append(QByteArray("a\0b\xff", 4));
    QByteArray target(4, '#');

    QCOMPARE(record->getStringLen(0), 4);
    QCOMPARE(record->getString(target.data(), 4, 0), 4);
    QCOMPARE(target, QByteArray("a\0b\xff", 4));
}

void StoreListsTest::stringFromBorrowedBytesBelongsToTheStore()
{
    const StoreGuard store;
    char borrowed[] = "before";

    store->getParamStrings(1)->append(QByteArray::fromRawData(borrowed, 6));
    store->getParamStrings(2)->replaceAll({QByteArray::fromRawData(borrowed, 6)});
    std::memcpy(borrowed, "after!", 6);

    QCOMPARE(store->getParamStrings(1)->getStrings(), QVector<QByteArray>{"before"});
    QCOMPARE(store->getParamStrings(2)->getStrings(), QVector<QByteArray>{"before"});
}

void StoreListsTest::clearEmptiesEveryKind()
{
    const StoreGuard store;
    store->getParamPoints(1)->append({1, 1});
    store->getParamLines(1)->append({1, 1, 1, 1});
    store->getParamPolys(1)->append({{1, 1}});
    store->getParamAreas(1)->append({1, 1, 1, 1, 1, 1, 1});
    store->getParamStrings(1)->append("one");

    store->getParamPoints(1)->clear();
    store->getParamLines(1)->clear();
    store->getParamPolys(1)->clear();
    store->getParamAreas(1)->clear();
    store->getParamStrings(1)->clear();

    QCOMPARE(store->getParamPoints(1)->getPointNum(), 0);
    QCOMPARE(store->getParamLines(1)->getLineNum(), 0);
    QCOMPARE(store->getParamPolys(1)->getPolyNum(), 0);
    QCOMPARE(store->getParamAreas(1)->getAreaNum(), 0);
    QCOMPARE(store->getParamStrings(1)->getStringNum(), 0);
}

void StoreListsTest::replaceAllDropsWhatWasThere()
{
    const StoreGuard store;
    store->getParamPoints(1)->append({1, 1});
    store->getParamLines(1)->append({1, 1, 1, 1});
    store->getParamPolys(1)->append({{1, 1}});
    store->getParamAreas(1)->append({1, 1, 1, 1, 1, 1, 1});
    store->getParamStrings(1)->append("one");

    store->getParamPoints(1)->replaceAll({{2, 3}, {4, 5}});
    store->getParamLines(1)->replaceAll({{2, 3, 4, 5}, {6, 7, 8, 9}});
    store->getParamPolys(1)->replaceAll({{{2, 3}, {4, 5}}, {}});
    store->getParamAreas(1)->replaceAll({{2, 3, 4, 5, 6, 7, 8}, {3, 4, 5, 6, 7, 8, 9}});
    store->getParamStrings(1)->replaceAll({"two", "three"});

    QCOMPARE(store->getParamPoints(1)->getPoints().size(), 2);
    QCOMPARE(store->getParamPoints(1)->getPoints().at(1).y, 5);
    QCOMPARE(store->getParamLines(1)->getLines().size(), 2);
    QCOMPARE(store->getParamLines(1)->getLines().at(1).x1, 6);
    QCOMPARE(store->getParamPolys(1)->getPolys().size(), 2);
    QCOMPARE(store->getParamPolys(1)->getPolys().at(0).at(1).x, 4);
    QCOMPARE(store->getParamAreas(1)->getAreas().size(), 2);
    QCOMPARE(store->getParamAreas(1)->getAreas().at(1).label, 3);
    QCOMPARE(store->getParamStrings(1)->getStrings(), (QVector<QByteArray>{"two", "three"}));
}

void StoreListsTest::appendGoesOnAfterReplaceAll()
{
    const StoreGuard store;
    ParamStrings* record = store->getParamStrings(1);

    record->replaceAll({"one", "two"});
    record->append("three");
    record->append("four");

    QCOMPARE(record->getStrings(), (QVector<QByteArray>{"one", "two", "three", "four"}));
}

void StoreListsTest::callersListStaysItsOwn()
{
    const StoreGuard store;
    ParamPoints* record = store->getParamPoints(1);
    QVector<ParamPoints::Point> mine{{1, 1}, {2, 2}};

    record->replaceAll(mine);
    mine[0].x = 99;
    mine.append({3, 3});
    QCOMPARE(record->getPoints().at(0).x, 1);
    QCOMPARE(record->getPointNum(), 2);

    record->append({7, 7});
    QCOMPARE(mine.size(), 3);
    QCOMPARE(mine.at(2).x, 3);
}

void StoreListsTest::snapshotIsNotTouchedByLaterChanges()
{
    const StoreGuard store;
    ParamPoints* record = store->getParamPoints(1);
    record->append({1, 1});
    const QVector<ParamPoints::Point> one = record->getPoints();

    record->append({2, 2});
    const QVector<ParamPoints::Point> two = record->getPoints();
    record->replaceAll({{5, 5}, {6, 6}, {7, 7}});
    record->clear();

    QCOMPARE(one.size(), 1);
    QCOMPARE(one.at(0).x, 1);
    QCOMPARE(two.size(), 2);
    QCOMPARE(two.at(1).x, 2);
    QCOMPARE(record->getPointNum(), 0);
}

void StoreListsTest::snapshotHoldsTheWholeList()
{
    const StoreGuard store;
    ParamLines* record = store->getParamLines(1);
    for (int i = 0; i < 1000; ++i)
        record->append({i, i + 1, i + 2, i + 3});

    const QVector<ParamLines::Line> lines = record->getLines();

    QCOMPARE(lines.size(), 1000);
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(lines.at(i).y2, i + 3);
}

// A reader on another thread may have let go of it only just now.
void StoreListsTest::memoryThatWasSharedIsNeverWrittenAgain()
{
    const StoreGuard store;
    ParamPoints* record = store->getParamPoints(1);
    record->append({0, 0});
    QVector<ParamPoints::Point> given{{1, 1}};
    given.reserve(100);
    const void* before = given.constData();
    record->replaceAll(given);
    given = {};
    for (int i = 0; i < 20; ++i) {
        record->append({i, i});
        const void* after = record->getPoints().constData();
        QVERIFY(after != before);
        before = after;
    }
}

// Otherwise each point of a long list would copy the whole list.
void StoreListsTest::appendingCopiesTheListOnceAfterASnapshot()
{
    if (!SoakMemory::isResidentTelling())
        QSKIP("Allocations cannot be counted under a sanitizer.");
    constexpr int Appended = 10000;
    const StoreGuard store;
    ParamPoints* const points = store->getParamPoints(1);
    for (int i = 0; i < Appended; ++i)
        points->append({i, i});
    const QVector<ParamPoints::Point> snapshot = points->getPoints();
    const std::int64_t before = SoakMemory::requestsOfThisThread().m_nAll;
    for (int i = 0; i < Appended; ++i)
        points->append({i, i});
    const std::int64_t requests = SoakMemory::requestsOfThisThread().m_nAll - before;
    QVERIFY2(requests >= 1 && requests < 50, qPrintable(QString::number(requests)));
    QCOMPARE(points->getPointNum(), 2 * Appended);
    QCOMPARE(snapshot.size(), Appended);
}

QTEST_GUILESS_MAIN(StoreListsTest)
#include "storeListsTest.moc"
