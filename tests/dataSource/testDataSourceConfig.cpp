#include "memoryDisk/memoryDisk.h"
#include "scriptedSource.h"

#include <QtTest>

/// Instances and their configuration text.
class TestDataSourceConfig : public QObject
{
    Q_OBJECT

    ScriptedSource m_cSource;

private slots:
    void initTestCase() { m_cSource.install(); }
    void init() { m_cSource.newStore(); }
    void cleanup() { PluginFolders::setDialogResult(m_cSource.path(), nullptr); }

    void savedTextRebuildsAMemoryDiskSource()
    {
        const Instance instance = m_cSource.create(
            "<DSName>Memory Disk 2</DSName><OutputName>img</OutputName><OutputDescribe>cam</OutputDescribe>"
            "<OutputType>RGB</OutputType><OutputID>3</OutputID><Config></Config>");
        QVERIFY(instance);
        const ParamDIB* record = m_cSource.store()->findParamDIB(3);
        QVERIFY(record);
        QCOMPARE(record->getName(), QString("img"));
        QCOMPARE(record->getDescribe(), QString("cam"));
        QCOMPARE(instance->getDataType(), QString("RGB"));
        QCOMPARE(instance->getDataID(), 3);

        QByteArray picture("sixteen bytes: x", 16);
        QVERIFY(MemoryDisk::getInstance(2)->addDIB(reinterpret_cast<unsigned char*>(picture.data()), 5, 1));
        QVERIFY(instance->execute());
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(record->getDIB()), 16), picture);
        QCOMPARE(MemoryDisk::getInstance(2)->getDIBIdleNum(), 6);
    }

    void elementsAreReadInAnyOrderAndCase()
    {
        const Instance instance = m_cSource.create(
            "x<config>size=2x2</CONFIG>y<OUTPUTID>8</OUTPUTID><outputtype>Gray8</outputtype>"
            "<outputDescribe>d</outputDescribe><outputname>n</outputname><dsname>Test Scripted</dsname>");
        QVERIFY(instance);
        QCOMPARE(instance->getConfigString(), QString("size=2x2"));
        QCOMPARE(instance->getDataID(), 8);
        QCOMPARE(m_cSource.store()->findParamGray8(8)->getName(), QString("n"));
        QCOMPARE(m_cSource.store()->findParamGray8(8)->getDescribe(), QString("d"));
        QVERIFY(instance->execute());
    }

    void unknownKindGivesNothing_data()
    {
        QTest::addColumn<QString>("text");
        const QString tail = "<OutputType>RGB</OutputType><OutputID>1</OutputID>";
        QTest::newRow("unknown") << "<DSName>Nobody</DSName>" + tail;
        QTest::newRow("other case") << "<DSName>test scripted</DSName>" + tail;
        QTest::newRow("blank around") << "<DSName> Test Scripted</DSName>" + tail;
        QTest::newRow("not closed") << "<DSName>Nobody" + tail;
        QTest::newRow("binary") << QString::fromLatin1("\x01\x02<DSName>\xff</DSName>", 20);
    }

    void unknownKindGivesNothing()
    {
        QFETCH(QString, text);
        // The library that has no name is listed under the empty one and takes texts without a name.
        const bool named = text.contains("</DSName>");
        QCOMPARE(m_cSource.create(text) == nullptr, named);
        QCOMPARE(m_cSource.store()->requestParamDIBMap()->isEmpty(), named);
    }

    void sourceThatAnswersNullHasEmptyTexts()
    {
        const DataSource::DataSourceInfo* kind = DataSource::getInstance()->getKinds()->value(QString());
        QVERIFY(kind);
        QCOMPARE(kind->showConfigWindow("config"), QString());
        const Instance instance(kind->newInstance("config", m_cSource.store()));
        QCOMPARE(instance->getLastError(), QString());
        instance->showConfigWindow();
        QCOMPARE(instance->getConfigString(), QString());
        instance->setDataID(1);
        instance->setDataType("RGB");
        QVERIFY(!instance->execute());
    }

    void unusableOutputIdIsKeptAsASourceThatDeliversNothingOnPurpose_data()
    {
        QTest::addColumn<QString>("id");
        for (const char* id : {"0", "-1", "-7", "", "three", "3x", "0x3", "2147483648", "1.5"})
            QTest::newRow(*id ? id : "empty") << QString(id);
    }

    void unusableOutputIdIsKeptAsASourceThatDeliversNothingOnPurpose()
    {
        QFETCH(QString, id);
        const Instance instance = m_cSource.create(ScriptedSource::text("RGB", id, "size=2x2"));
        QVERIFY(instance);
        QCOMPARE(instance->getConfigString(), QString("size=2x2"));
        QCOMPARE(instance->getDataID(), 0);
        QCOMPARE(instance->getDataType(), QString());
        QVERIFY(!instance->execute());
        QVERIFY(!instance->execute());
        QCOMPARE(m_cSource.calls("requestPicture"), 0);
        QCOMPARE(m_cSource.calls("releasePicture"), 0);
        QVERIFY(m_cSource.store()->requestParamDIBMap()->isEmpty());
    }

    void gray16OutputIsLabelledButNeverDelivers()
    {
        const Instance instance = m_cSource.create("Gray16", "");
        QCOMPARE(m_cSource.store()->findParamGray16(3)->getName(), QString("img"));
        QCOMPARE(m_cSource.store()->findParamGray16(3)->getDescribe(), QString("cam"));
        QCOMPARE(instance->getDataType(), QString("Gray16"));
        QVERIFY(!instance->execute());
        QCOMPARE(m_cSource.calls("requestPicture"), 0);
        QCOMPARE(m_cSource.calls("releasePicture"), 0);
    }

    void otherTypesTouchNoRecordAndNeverDeliver_data()
    {
        QTest::addColumn<QString>("type");
        for (const char* type : {"rgb", "Rgb", "RGB ", "gray8", "Gray", "", "Points"})
            QTest::newRow(*type ? type : "empty") << QString(type);
    }

    void otherTypesTouchNoRecordAndNeverDeliver()
    {
        QFETCH(QString, type);
        const Instance instance = m_cSource.create(type, "");
        QCOMPARE(instance->getDataID(), 3);
        QCOMPARE(instance->getDataType(), type);
        QVERIFY(!instance->execute());
        QCOMPARE(m_cSource.calls("requestPicture"), 0);
        QCOMPARE(m_cSource.calls("releasePicture"), 0);
        QVERIFY(m_cSource.store()->requestParamDIBMap()->isEmpty());
        QVERIFY(m_cSource.store()->requestParamGray8Map()->isEmpty());
        QVERIFY(m_cSource.store()->requestParamGray16Map()->isEmpty());
    }

    void configurationReachesTheLibraryAsUtf8AndStaysUnchanged()
    {
        const Instance instance = m_cSource.create("RGB", "error=镜头盖");
        const auto config = PluginFolders::function<const char* (*)(int)>(m_cSource.path(), "testConfig");
        QCOMPARE(QString::fromUtf8(config(PluginFolders::lastInstance(m_cSource.path()))), QString("error=镜头盖"));
        QCOMPARE(instance->getLastError(), QString("镜头盖"));
        // The library scribbles on the buffer that it gets; the text itself stays.
        QCOMPARE(instance->getConfigString(), QString("error=镜头盖"));
    }

    void everyInstanceGetsTheNextNumber()
    {
        const Instance first = m_cSource.create("RGB", "");
        const int number = PluginFolders::lastInstance(m_cSource.path());
        const Instance second = m_cSource.create("RGB", "");
        QCOMPARE(PluginFolders::lastInstance(m_cSource.path()), number + 1);
        QCOMPARE(DataSource::DataSourceInstance::BaseID.load(), number + 2);
    }

    void dialogOfAnInstanceAppliesWhatItReturns()
    {
        const Instance instance = m_cSource.create("RGB", "size=6x6");
        PluginFolders::setDialogResult(m_cSource.path(), "size=5x2;标签=甲");
        instance->showConfigWindow();
        const auto config = PluginFolders::function<const char* (*)()>(m_cSource.path(), "testDialogConfig");
        QCOMPARE(QByteArray(config()), QByteArray("size=6x6"));
        QVERIFY(PluginFolders::function<bool (*)()>(m_cSource.path(), "testDialogFlag")());
        QCOMPARE(instance->getConfigString(), QString("size=5x2;标签=甲"));
        QCOMPARE(m_cSource.calls("setConfig"), 2);
        QVERIFY(instance->execute());
        QCOMPARE(m_cSource.store()->findParamDIB(3)->getWidth(), 5);
    }

    void dialogOfAKindReturnsItsTextAndAppliesNothing()
    {
        const DataSource::DataSourceInfo* kind = DataSource::getInstance()->getKinds()->value("Test Scripted");
        const int before = PluginFolders::lastInstance(m_cSource.path());
        QCOMPARE(kind->showConfigWindow("文本=一"), QString("文本=一"));
        PluginFolders::setDialogResult(m_cSource.path(), "其他");
        QCOMPARE(kind->showConfigWindow("文本=一"), QString("其他"));
        QVERIFY(PluginFolders::function<bool (*)()>(m_cSource.path(), "testDialogFlag")());
        QCOMPARE(PluginFolders::lastInstance(m_cSource.path()), before);
    }

    void startStopAndRemovalReachTheLibrary()
    {
        Instance instance = m_cSource.create("RGB", "needsStart=1");
        QVERIFY(!instance->execute());
        instance->start();
        QVERIFY(instance->execute());
        instance->stop();
        QVERIFY(!instance->execute());
        QCOMPARE(m_cSource.calls("start"), 1);
        QCOMPARE(m_cSource.calls("stop"), 1);
        QCOMPARE(m_cSource.calls("removeInstance"), 0);
        instance.reset();
        QCOMPARE(m_cSource.calls("removeInstance"), 1);
    }
};

QTEST_GUILESS_MAIN(TestDataSourceConfig)
#include "testDataSourceConfig.moc"
