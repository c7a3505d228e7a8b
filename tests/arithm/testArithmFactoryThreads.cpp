#include "arithm/arithm.h"
#include "arithm/arithmFactory.h"
#include "arithm/arithmMgr.h"
#include "pluginFolders.h"
#include "runAtOnce.h"

#include <QtTest>

class TestArithmFactoryThreads : public QObject
{
    Q_OBJECT

    static constexpr int Builtins = 4;

private slots:
    void initTestCase()
    {
        PluginFolders::clear();
        // The one that loads late keeps the registry in the making until every thread has come.
        for (const char* library :
             {"algorithmEcho", "algorithmTrace", "algorithmSlow", "algorithmChinese", "algorithmLateLoading"})
            PluginFolders::addBase(library);
    }

    void manyThreadsThatComeFirstGetOneRegistryAndOneManager()
    {
        std::vector<ArithmFactory*> factories(8, nullptr);
        std::vector<ArithmMgr*> managers(8, nullptr);
        runAtOnce(8, [&](int index) {
            factories[static_cast<std::size_t>(index)] = ArithmFactory::getInstance();
            managers[static_cast<std::size_t>(index)] = ArithmMgr::getInstance();
        });
        QVERIFY(ArithmFactory::s_pcAF.load());
        QVERIFY(ArithmMgr::s_pcInstance.load());
        QCOMPARE(factories, std::vector<ArithmFactory*>(8, ArithmFactory::s_pcAF.load()));
        QCOMPARE(managers, std::vector<ArithmMgr*>(8, ArithmMgr::s_pcInstance.load()));
        QCOMPARE(ArithmFactory::getInstance()->getArithms()->size(), Builtins + 5);
    }

    void manyThreadsLookTheSameIdentifiersUpForTheFirstTimeAtOnce()
    {
        const QStringList ids = {"KW_Drawing", "测试.中值", "Test.Echo", "Test.Slow", "Test.Trace"};
        std::vector<int> wrong(8, 0);
        runAtOnce(8, [&](int index) {
            for (int round = 0; round < 500; ++round) {
                const QString id = ids[(round + index) % 5];
                const Arithm* found = ArithmMgr::getInstance()->getArithm(id);
                const bool good = found && found->getID() == id && !ArithmMgr::getInstance()->getArithm("Nobody");
                wrong[static_cast<std::size_t>(index)] += good ? 0 : 1;
            }
        });
        QCOMPARE(wrong, std::vector<int>(8, 0));
    }

    void oneAlgorithmRunsOnManyThreadsAtOnceEachWithItsOwnText()
    {
        Arithm* echo = ArithmMgr::getInstance()->getArithm("Test.Echo");
        std::vector<int> wrong(4, 0);
        runAtOnce(4, [&](int index) {
            for (int round = 0; round < 500; ++round) {
                QString option = QStringLiteral("线程 %1 次 %2").arg(index).arg(round);
                wrong[static_cast<std::size_t>(index)] += echo->execute(option, nullptr) == option ? 0 : 1;
            }
        });
        QCOMPARE(wrong, std::vector<int>(4, 0));
    }
};

QTEST_GUILESS_MAIN(TestArithmFactoryThreads)
#include "testArithmFactoryThreads.moc"
