#include "recordKinds.h"

#include <QtTest>

#include <limits>

using MakeKnown = std::function<void(ArithmParamMgr*, int)>;
Q_DECLARE_METATYPE(MakeKnown)

/// Records by identifier: finding, making, removing, fresh identifiers.
class StoreRecordsTest : public QObject
{
    Q_OBJECT

private slots:
    void newStoreHasEmptyMaps();
    void deletingNoStoreIsIgnored();
    void unknownIdMakesAnEmptyRecordUnderThatId_data() { kindsTable(); }
    void unknownIdMakesAnEmptyRecordUnderThatId();
    void knownIdReturnsTheSameRecord_data() { kindsTable(); }
    void knownIdReturnsTheSameRecord();
    void minusOneMakesANewRecordEveryTime_data() { kindsTable(); }
    void minusOneMakesANewRecordEveryTime();
    void findNeverMakesARecord_data() { kindsTable(); }
    void findNeverMakesARecord();
    void removedRecordIsGoneAndTheOthersStay_data() { kindsTable(); }
    void removedRecordIsGoneAndTheOthersStay();
    void removingWhatIsNotThereChangesNothing_data() { kindsTable(); }
    void removingWhatIsNotThereChangesNothing();
    void mapsAreInAscendingOrder_data() { kindsTable(); }
    void mapsAreInAscendingOrder();
    void oddIdsAreOrdinaryIds_data() { kindsTable(); }
    void oddIdsAreOrdinaryIds();
    void requestedMapIsLive();
    void requestedMapStaysTheSameAcrossClean();
    void kindsMayShareANumber();
    void cleanRemovesTheRecordsOfEveryKind();
    void namesAndDescriptionsAreKept();

    void freshIdsStartAtOneAndGrowAcrossKinds();
    void freshIdSkipsWhatWasMadeKnown_data();
    void freshIdSkipsWhatWasMadeKnown();
    void largestNumberDoesNotUseUpTheFreshIds();
    void freshIdsNeverComeBackAfterRemoving();
    void knownIdsSurviveClean();
    void storesCountOnTheirOwn();

private:
    static void kindsTable();
    static const RecordKind& kind();
};

void StoreRecordsTest::kindsTable()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < recordKinds().size(); ++i)
        QTest::newRow(qPrintable(recordKinds().at(i).name)) << i;
}

const RecordKind& StoreRecordsTest::kind()
{
    QFETCH(int, index);
    return recordKinds().at(index);
}

void StoreRecordsTest::newStoreHasEmptyMaps()
{
    const StoreGuard store;

    for (const RecordKind& each : recordKinds())
        QCOMPARE(each.ids(store), QList<int>());
}

void StoreRecordsTest::deletingNoStoreIsIgnored()
{
    ArithmParamMgr::deleteInstance(nullptr);
}

void StoreRecordsTest::unknownIdMakesAnEmptyRecordUnderThatId()
{
    const StoreGuard store;

    ArithmParam* record = kind().get(store, 42);

    QVERIFY(record);
    QCOMPARE(record->getID(), 42);
    QCOMPARE(record->getName(), QString());
    QCOMPARE(record->getDescribe(), QString());
    QCOMPARE(kind().ids(store), QList<int>{42});
}

void StoreRecordsTest::knownIdReturnsTheSameRecord()
{
    const StoreGuard store;
    ArithmParam* made = kind().get(store, 7);

    QCOMPARE(kind().get(store, 7), made);
    QCOMPARE(kind().find(store, 7), made);
    QCOMPARE(kind().ids(store), QList<int>{7});
}

void StoreRecordsTest::minusOneMakesANewRecordEveryTime()
{
    const StoreGuard store;

    ArithmParam* first = kind().get(store, -1);
    ArithmParam* second = kind().get(store, -1);

    QVERIFY(first != second);
    QCOMPARE(first->getID(), 1);
    QCOMPARE(second->getID(), 2);
    QCOMPARE(kind().ids(store), (QList<int>{1, 2}));
}

void StoreRecordsTest::findNeverMakesARecord()
{
    const StoreGuard store;
    kind().get(store, 1);

    QVERIFY(!kind().find(store, 5));
    QVERIFY(!kind().find(store, -1));

    QCOMPARE(kind().ids(store), QList<int>{1});
}

void StoreRecordsTest::removedRecordIsGoneAndTheOthersStay()
{
    const StoreGuard store;
    kind().get(store, 3);
    ArithmParam* kept = kind().get(store, 4);

    kind().remove(store, 3);

    QVERIFY(!kind().find(store, 3));
    QCOMPARE(kind().find(store, 4), kept);
    QCOMPARE(kind().ids(store), QList<int>{4});
}

void StoreRecordsTest::removingWhatIsNotThereChangesNothing()
{
    const StoreGuard store;
    kind().get(store, 3);

    kind().remove(store, 4);
    kind().remove(store, -1);

    QCOMPARE(kind().ids(store), QList<int>{3});
}

void StoreRecordsTest::mapsAreInAscendingOrder()
{
    const StoreGuard store;

    for (int id : {30, 4, 200, -9, 17})
        kind().get(store, id);

    QCOMPARE(kind().ids(store), (QList<int>{-9, 4, 17, 30, 200}));
}

void StoreRecordsTest::oddIdsAreOrdinaryIds()
{
    const StoreGuard store;
    const int smallest = std::numeric_limits<int>::min();
    const int largest = std::numeric_limits<int>::max();

    for (int id : {0, -2, smallest, largest}) {
        ArithmParam* record = kind().get(store, id);
        QCOMPARE(record->getID(), id);
        QCOMPARE(kind().find(store, id), record);
    }

    QCOMPARE(kind().get(store, -1)->getID(), 1);
}

void StoreRecordsTest::requestedMapIsLive()
{
    const StoreGuard store;
    QMap<int, ParamDIB*>* map = store->requestParamDIBMap();

    ParamDIB* record = store->getParamDIB(5);
    QCOMPARE(map->value(5), record);

    store->removeParamDIB(5);
    QVERIFY(map->isEmpty());
}

void StoreRecordsTest::requestedMapStaysTheSameAcrossClean()
{
    const StoreGuard store;
    QMap<int, ParamPolys*>* map = store->requestParamPolysMap();
    store->getParamPolys(-1);

    store->clean();
    store->getParamPolys(9);

    QCOMPARE(store->requestParamPolysMap(), map);
    QCOMPARE(map->keys(), QList<int>{9});
}

void StoreRecordsTest::kindsMayShareANumber()
{
    const StoreGuard store;

    store->getParamDIB(3)->setName(QStringLiteral("colour"));
    store->getParamGray8(3)->setName(QStringLiteral("grey"));

    QCOMPARE(store->getParamDIB(3)->getName(), QStringLiteral("colour"));
    QCOMPARE(store->getParamGray8(3)->getName(), QStringLiteral("grey"));
    store->removeParamDIB(3);
    QVERIFY(store->findParamGray8(3));
}

void StoreRecordsTest::cleanRemovesTheRecordsOfEveryKind()
{
    const StoreGuard store;
    for (const RecordKind& each : recordKinds()) {
        each.get(store, -1);
        each.get(store, 500);
    }

    store->clean();

    for (const RecordKind& each : recordKinds()) {
        QCOMPARE(each.ids(store), QList<int>());
        QVERIFY(!each.find(store, 500));
    }
}

void StoreRecordsTest::namesAndDescriptionsAreKept()
{
    const StoreGuard store;
    ParamAreas* record = store->getParamAreas(-1);

    record->setName(QStringLiteral("零件"));
    record->setDescribe(QStringLiteral("第一条线"));

    QCOMPARE(store->findParamAreas(1)->getName(), QString::fromUtf8("零件"));
    QCOMPARE(store->findParamAreas(1)->getDescribe(), QString::fromUtf8("第一条线"));
}

void StoreRecordsTest::freshIdsStartAtOneAndGrowAcrossKinds()
{
    const StoreGuard store;
    int expected = 0;

    for (int round = 0; round < 3; ++round) {
        for (const RecordKind& each : recordKinds())
            QCOMPARE(each.get(store, -1)->getID(), ++expected);
    }
}

void StoreRecordsTest::freshIdSkipsWhatWasMadeKnown_data()
{
    QTest::addColumn<MakeKnown>("makeKnown");

    QTest::newRow("by asking another kind")
        << MakeKnown([](ArithmParamMgr* store, int id) { store->getParamStrings(id); });
    QTest::newRow("by asking the same kind")
        << MakeKnown([](ArithmParamMgr* store, int id) { store->getParamDIB(id); });
    QTest::newRow("by looking for it") << MakeKnown([](ArithmParamMgr* store, int id) { store->findParamPoints(id); });
    QTest::newRow("by reserving") << MakeKnown([](ArithmParamMgr* store, int id) { store->reserveID(id); });
    QTest::newRow("by making and removing") << MakeKnown([](ArithmParamMgr* store, int id) {
        store->getParamLines(id);
        store->removeParamLines(id);
    });
}

void StoreRecordsTest::freshIdSkipsWhatWasMadeKnown()
{
    QFETCH(MakeKnown, makeKnown);
    const StoreGuard store;

    for (int id : {2, 3, 5, -1000, 0, 3})
        makeKnown(store, id);

    QList<int> fresh;
    for (int i = 0; i < 4; ++i)
        fresh << store->getParamDIB(-1)->getID();
    QCOMPARE(fresh, (QList<int>{1, 4, 6, 7}));
}

void StoreRecordsTest::largestNumberDoesNotUseUpTheFreshIds()
{
    const StoreGuard store;

    store->getParamDIB(std::numeric_limits<int>::max());
    store->reserveID(std::numeric_limits<int>::max() - 1);

    QCOMPARE(store->getParamDIB(-1)->getID(), 1);
    QCOMPARE(store->getParamGray8(-1)->getID(), 2);
}

void StoreRecordsTest::freshIdsNeverComeBackAfterRemoving()
{
    const StoreGuard store;
    store->getParamDIB(-1);
    store->getParamDIB(-1);

    store->removeParamDIB(1);
    store->removeParamDIB(2);

    QCOMPARE(store->getParamDIB(-1)->getID(), 3);
}

void StoreRecordsTest::knownIdsSurviveClean()
{
    const StoreGuard store;
    store->getParamDIB(-1);
    store->getParamPoints(3);
    store->reserveID(5);

    store->clean();

    QCOMPARE(store->getParamDIB(-1)->getID(), 2);
    QCOMPARE(store->getParamLines(-1)->getID(), 4);
    QCOMPARE(store->getParamAreas(-1)->getID(), 6);
}

void StoreRecordsTest::storesCountOnTheirOwn()
{
    const StoreGuard first;
    const StoreGuard second;
    first->getParamDIB(-1);
    first->reserveID(2);

    QCOMPARE(second->getParamDIB(-1)->getID(), 1);
    QCOMPARE(second->getParamDIB(-1)->getID(), 2);
    QCOMPARE(first->getParamDIB(-1)->getID(), 3);
}

QTEST_GUILESS_MAIN(StoreRecordsTest)
#include "storeRecordsTest.moc"
