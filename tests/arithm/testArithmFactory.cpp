#include "arithm/arithmFactory.h"

#include "arithm/arithm.h"
#include "arithm/arithmMgr.h"
#include "pluginFolders.h"

#include <QtTest>

/// What discovery makes of folders of good and half-fitting libraries.
class TestArithmFactory : public QObject
{
    Q_OBJECT

    static constexpr int Builtins = 4;  ///< They come before every library.

    QString m_strEcho;
    QString m_strImpostor;
    QStringList m_lstLacking;

    static ArithmFactory* factory() { return ArithmFactory::getInstance(); }

    static QStringList registered()
    {
        QStringList lines;
        for (const ArithmFactory::ArithmInfo& info : qAsConst(*factory()->getArithms()))
            lines += info.m_strClass + "/" + info.m_strName + (info.m_pcArithm->IsExtLib() ? "/ext" : "");
        return lines;
    }

private slots:
    void initTestCase()
    {
        PluginFolders::clear();
        m_strEcho = PluginFolders::addBase("algorithmEcho", "LIBFOO.SO");
        PluginFolders::addBase("algorithmTrace", "libfoo.so.1");
        m_strImpostor = PluginFolders::addBase("algorithmDrawingID", "b.so");
        PluginFolders::addBase("algorithmTwinA", "TWIN1.so");
        PluginFolders::addBase("algorithmTwinB", "twin2.so");
        PluginFolders::addBase("algorithmChinese", "A.so");
        PluginFolders::addBase("algorithmNull", "zero.so");
        for (const char* symbol : {"getID", "showConfigWindow", "execute", "getArithmClass", "getArithmName"}) {
            const QString library = QStringLiteral("algorithmLacks_") + QLatin1String(symbol);
            m_lstLacking += PluginFolders::addBase(library);
            m_lstLacking += PluginFolders::addExtension(library);
        }
        PluginFolders::addExtension("algorithmSameIDB", "second.so");
        PluginFolders::addExtension("algorithmSameIDA", "First.so");
        PluginFolders::addExtension("algorithmSlow", "a.so");
        PluginFolders::addExtension("algorithmUnresolved", "unresolved.so");
        PluginFolders::write("extArithm", "garbage.so", "This is no library.");
        PluginFolders::write("extArithm", "empty.so", "");
        ArithmFactory::getInstance();
    }

    void builtinsComeFirstThenBaseThenExtensionEachByNameIgnoringCase()
    {
        const QStringList expected = {
            "系统/写内存盘",        "系统/绘制对象",  "系统/保存图像",  "系统/加载图像", "滤波/中值滤波",
            "Impostor/Not Drawing", "Test/Echo",      "Twins/Twin",     "Twins/Twin",    "/",
            "Test/Slow/ext",        "Same/First/ext", "Same/Second/ext"};
        QCOMPARE(registered(), expected);
    }

    void classesAreListedOnceInOrderOfRegistration()
    {
        const QStringList expected = {"系统", "滤波", "Impostor", "Test", "Twins", "", "Same"};
        QCOMPARE(factory()->getArithmClassNames(), expected);
    }

    void namesOfAClassAreListedOnceInOrderOfRegistration()
    {
        QCOMPARE(factory()->getArithmNames("系统"), QStringList({"写内存盘", "绘制对象", "保存图像", "加载图像"}));
        QCOMPARE(factory()->getArithmNames("Test"), QStringList({"Echo", "Slow"}));
        QCOMPARE(factory()->getArithmNames("Twins"), QStringList({"Twin"}));
        QCOMPARE(factory()->getArithmNames("Same"), QStringList({"First", "Second"}));
        QCOMPARE(factory()->getArithmNames("test"), QStringList());
        QCOMPARE(factory()->getArithmNames("Lacking"), QStringList());
    }

    void identifierOfABuiltinAlwaysFindsTheBuiltin()
    {
        Arithm* drawing = factory()->getArithm("KW_Drawing");
        QCOMPARE(drawing, factory()->getArithms()->at(1).m_pcArithm);
        QCOMPARE(factory()->getArithm("KW_Drawing"), drawing);
        QCOMPARE(factory()->getArithm("Impostor", "Not Drawing"), QString("KW_Drawing"));
        QCOMPARE(PluginFolders::algorithmCalls(m_strImpostor, "execute"), 0);
    }

    void ofTheSameIdentifierTheFirstRegisteredWins()
    {
        QString option = "x";
        QCOMPARE(factory()->getArithm("Same", "Second"), QString("Test.Same"));
        QCOMPARE(factory()->getArithm("Test.Same"), factory()->getArithms()->at(Builtins + 7).m_pcArithm);
        QCOMPARE(factory()->getArithm("Test.Same")->execute(option, nullptr), QString("x"));
    }

    void ofTheSameClassAndNameTheFirstIsFound()
    {
        QCOMPARE(factory()->getArithm("Twins", "Twin"), QString("Test.TwinA"));
        QVERIFY(factory()->getArithm("Test.TwinB"));
    }

    void classAndNameAreComparedExactly()
    {
        QCOMPARE(factory()->getArithm("滤波", "中值滤波"), QString("测试.中值"));
        QCOMPARE(factory()->getArithm("Test", "echo"), QString());
        QCOMPARE(factory()->getArithm("test", "Echo"), QString());
        QCOMPARE(factory()->getArithm("Twins", "Echo"), QString());
        QCOMPARE(factory()->getArithm("", "Nobody"), QString());
    }

    void identifierIsComparedExactly()
    {
        QVERIFY(factory()->getArithm("Test.Echo"));
        QVERIFY(!factory()->getArithm("test.echo"));
        QVERIFY(!factory()->getArithm("Test.Echo "));
        QVERIFY(!factory()->getArithm("Nobody"));
    }

    void secondLookupGivesTheSameWithoutAskingTheLibrary()
    {
        Arithm* echo = factory()->getArithm("Test.Echo");
        QVERIFY(echo);
        const int calls = PluginFolders::algorithmCalls(m_strEcho, "getID");
        for (int round = 0; round < 10; ++round)
            QCOMPARE(factory()->getArithm("Test.Echo"), echo);
        QCOMPARE(PluginFolders::algorithmCalls(m_strEcho, "getID"), calls);
    }

    void missIsNotRemembered()
    {
        const int calls = PluginFolders::algorithmCalls(m_strEcho, "getID");
        QVERIFY(!factory()->getArithm("Nobody at all"));
        QVERIFY(!factory()->getArithm("Nobody at all"));
        QCOMPARE(PluginFolders::algorithmCalls(m_strEcho, "getID"), calls + 2);
    }

    void classAndNameAreAskedForOnceTheClassFirst()
    {
        factory()->getArithmNames("Test");
        factory()->getArithmClassNames();
        QCOMPARE(PluginFolders::algorithmCalls(m_strEcho, "getArithmClass"), 1);
        QCOMPARE(PluginFolders::algorithmCalls(m_strEcho, "getArithmName"), 1);
        const auto firstCall = PluginFolders::function<int (*)(const char*)>(m_strEcho, "testFirstCall");
        QCOMPARE(firstCall("getArithmClass"), 1);
        QCOMPARE(firstCall("getArithmName"), 2);
    }

    void libraryThatAnswersNullIsRegisteredWithEmptyTexts()
    {
        Arithm* null = factory()->getArithm(QString());
        QCOMPARE(null, factory()->getArithms()->at(Builtins + 5).m_pcArithm);
        QString option = "anything";
        QCOMPARE(null->execute(option, nullptr), QString());
        QCOMPARE(null->showConfigWindow(option, nullptr), QString());
    }

    void loadedLibraryRuns()
    {
        QString option = "结果";
        QCOMPARE(factory()->getArithm("Test.Echo")->execute(option, nullptr), QString("结果"));
        PluginFolders::setConfigResult(m_strEcho, "新选项");
        QCOMPARE(factory()->getArithm("Test.Echo")->showConfigWindow("旧选项", nullptr), QString("新选项"));
        const auto given = PluginFolders::function<const char* (*)()>(m_strEcho, "testConfigOption");
        QCOMPARE(QString::fromUtf8(given()), QString("旧选项"));
        QVERIFY(PluginFolders::function<bool (*)()>(m_strEcho, "testConfigFlag")());
    }

    void incompleteLibrariesStayLoadedOnPurpose()
    {
        QCOMPARE(m_lstLacking.size(), 10);
        for (const QString& path : qAsConst(m_lstLacking))
            QVERIFY2(PluginFolders::isLoaded(path), qPrintable(path));
        QVERIFY(!factory()->getArithm("Test.Lacks"));
    }

    void managerAnswersAsTheFactory()
    {
        ArithmMgr* manager = ArithmMgr::getInstance();
        QCOMPARE(manager, ArithmMgr::s_pcInstance.load());
        QCOMPARE(manager, ArithmMgr::getInstance());
        QCOMPARE(manager->getArithm("Test.Echo"), factory()->getArithm("Test.Echo"));
        QVERIFY(!manager->getArithm("Nobody"));
        QCOMPARE(manager->getArithm("Twins", "Twin"), QString("Test.TwinA"));
        QCOMPARE(manager->getArithmNames("Test"), QStringList({"Echo", "Slow"}));
        QCOMPARE(manager->getArithmClassNames().size(), 7);
    }

    void laterLibraryIsNotSeen()
    {
        PluginFolders::addBase("algorithmTrace", "later.so");
        QCOMPARE(ArithmFactory::getInstance(), ArithmFactory::s_pcAF.load());
        QCOMPARE(factory()->getArithms()->size(), Builtins + 9);
        QVERIFY(!factory()->getArithm("Test.Trace"));
    }
};

QTEST_GUILESS_MAIN(TestArithmFactory)
#include "testArithmFactory.moc"
