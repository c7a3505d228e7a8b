#include "dataSource/dataSourceInfo.h"
#include "dataSource/dataSourceInstance.h"
#include "pluginFolders.h"

#include <QTextCodec>
#include <QtTest>

#include <memory>

/// What discovery makes of a folder of good, bad and doubtful libraries. The local encoding of this program is GB18030.
class TestDataSourceRegistry : public QObject
{
    Q_OBJECT

    /// The last error of a new instance of a kind; the suite's libraries answer with their own name.
    static QString errorOf(const QString& kind)
    {
        const DataSource::DataSourceInfo* info = DataSource::getInstance()->getKinds()->value(kind);
        if (!info)
            return QStringLiteral("no such kind");
        const std::unique_ptr<DataSource::DataSourceInstance> instance(info->newInstance(QString(), nullptr));
        return instance->getLastError();
    }

    QStringList m_lstLacking;
    QString m_strTwinA;

private slots:
    void initTestCase()
    {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("GB18030"));
        PluginFolders::clear();
        PluginFolders::addSource("sourceScripted", "LIBSCRIPTED.SO");
        PluginFolders::addSource("sourceUpperCamera");
        PluginFolders::addSource("sourceLowerCamera");
        PluginFolders::addSource("sourceMemoryDisk3");
        PluginFolders::addSource("sourceChineseGb18030");
        m_strTwinA = PluginFolders::addSource("sourceTwinA", "twin1.so");
        PluginFolders::addSource("sourceTwinB", "TWIN2.so");
        PluginFolders::addSource("sourceUnresolved");
        PluginFolders::addSource("sourceTwinA", "twin3.so.1");
        PluginFolders::write("DataSource", "garbage.so", "This is no library.");
        PluginFolders::write("DataSource", "empty.so", "");
        for (const char* symbol : {"getDataSourceName", "requestPicture", "releasePicture", "showConfigDlg",
                                   "setConfig", "start", "stop", "removeInstance", "getLastError"})
            m_lstLacking += PluginFolders::addSource(QStringLiteral("sourceLacks_") + QLatin1String(symbol));
        // An algorithm is no data source.
        m_lstLacking += PluginFolders::addSource("algorithmEcho");
        DataSource::getInstance();
    }

    void kindsAreListedInCodeUnitOrderOfTheirNames()
    {
        const QStringList expected = {"Camera",        "Memory Disk 0", "Memory Disk 1", "Memory Disk 2",
                                      "Memory Disk 3", "Memory Disk 4", "Memory Disk 5", "Test Scripted",
                                      "Test Twin",     "camera",        "相机"};
        QCOMPARE(QStringList(DataSource::getInstance()->getKinds()->keys()), expected);
    }

    void nameIsReadInTheLocalEncoding() { QCOMPARE(errorOf("相机"), QString("sourceChineseGb18030")); }

    void laterLibraryOfTheSameNameWins() { QCOMPARE(errorOf("Test Twin"), QString("sourceTwinB")); }

    void replacedLibraryStaysLoaded() { QVERIFY(PluginFolders::isLoaded(m_strTwinA)); }

    void builtInMemoryDiskReplacesALibraryOfThatName() { QCOMPARE(errorOf("Memory Disk 3"), QString()); }

    void upperCaseSuffixIsALibrary() { QCOMPARE(errorOf("Test Scripted"), QString("sourceScripted")); }

    void libraryThatLacksAnyEntryPointIsLeftOutAndStaysLoadedOnPurpose()
    {
        QCOMPARE(m_lstLacking.size(), 10);
        for (const QString& path : qAsConst(m_lstLacking))
            QVERIFY2(PluginFolders::isLoaded(path), qPrintable(path));
    }

    void registryIsMadeOnceAndSeesNoLaterLibrary()
    {
        PluginFolders::addSource("sourceTwinA", "zlate.so");
        QVERIFY(DataSource::s_pcThis.load());
        QCOMPARE(DataSource::getInstance(), DataSource::s_pcThis.load());
        QCOMPARE(DataSource::getInstance()->getKinds()->size(), 11);
        QCOMPARE(errorOf("Test Twin"), QString("sourceTwinB"));
    }
};

QTEST_GUILESS_MAIN(TestDataSourceRegistry)
#include "testDataSourceRegistry.moc"
