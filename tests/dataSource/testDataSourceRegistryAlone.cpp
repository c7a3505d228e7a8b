#include "dataSource/dataSourceInstance.h"
#include "pluginFolders.h"

#include <QCoreApplication>
#include <QtTest>

/// The registry of a program that has no plug-in folder and no application object.
class TestDataSourceRegistryAlone : public QObject
{
    Q_OBJECT

private slots:
    void numbersOfInstancesStartAtOne() { QCOMPARE(DataSource::DataSourceInstance::BaseID.load(), 1); }

    void withoutAFolderThereAreExactlyTheSixMemoryDisks()
    {
        PluginFolders::clear();
        QVERIFY(!QCoreApplication::instance());
        const QStringList expected = {"Memory Disk 0", "Memory Disk 1", "Memory Disk 2",
                                      "Memory Disk 3", "Memory Disk 4", "Memory Disk 5"};
        QCOMPARE(QStringList(DataSource::getInstance()->getKinds()->keys()), expected);
        QVERIFY(!QCoreApplication::instance());
    }
};

QTEST_APPLESS_MAIN(TestDataSourceRegistryAlone)
#include "testDataSourceRegistryAlone.moc"
