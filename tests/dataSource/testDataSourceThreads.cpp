#include "dataSource/dataSourceInfo.h"
#include "dataSource/dataSourceInstance.h"
#include "paramStore/arithmParamMgr.h"
#include "pluginFolders.h"
#include "runAtOnce.h"

#include <QtTest>

#include <memory>

class TestDataSourceThreads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        PluginFolders::clear();
        PluginFolders::addSource("sourceScripted");
        // Keeps the registry in the making until every thread has come.
        PluginFolders::addSource("sourceLateLoading");
    }

    void manyThreadsThatComeFirstGetOneRegistry()
    {
        std::vector<DataSource*> got(8, nullptr);
        runAtOnce(8, [&got](int index) { got[static_cast<std::size_t>(index)] = DataSource::getInstance(); });
        QVERIFY(DataSource::s_pcThis.load());
        QCOMPARE(got, std::vector<DataSource*>(8, DataSource::s_pcThis.load()));
        QCOMPARE(DataSource::getInstance()->getKinds()->size(), 8);
    }

    void instancesOfOneKindFetchOnManyThreadsAtOnce()
    {
        constexpr int Rounds = 300;
        const DataSource::DataSourceInfo* kind = DataSource::getInstance()->getKinds()->value("Test Scripted");
        std::vector<int> good(4, 0);
        runAtOnce(4, [kind, &good](int index) {
            ArithmParamMgr* store = ArithmParamMgr::newInstance();
            const std::unique_ptr<DataSource::DataSourceInstance> instance(kind->newInstance("size=8x8", store));
            instance->setDataID(1);
            instance->setDataType("Gray8");
            instance->start();
            for (int round = 0; round < Rounds; ++round) {
                const bool fetched = instance->execute();
                good[static_cast<std::size_t>(index)] +=
                    fetched && store->findParamGray8(1)->getGray8()[0] == round % 256 ? 1 : 0;
            }
            instance->stop();
            ArithmParamMgr::deleteInstance(store);
        });
        QCOMPARE(good, std::vector<int>(4, Rounds));
    }

    void instancesMadeOnManyThreadsHaveNumbersOfTheirOwn()
    {
        const DataSource::DataSourceInfo* kind = DataSource::getInstance()->getKinds()->value("Memory Disk 0");
        const int before = DataSource::DataSourceInstance::BaseID;
        runAtOnce(4, [kind](int) {
            for (int round = 0; round < 100; ++round)
                delete kind->newInstance(QString(), nullptr);
        });
        QCOMPARE(DataSource::DataSourceInstance::BaseID.load(), before + 400);
    }
};

QTEST_GUILESS_MAIN(TestDataSourceThreads)
#include "testDataSourceThreads.moc"
