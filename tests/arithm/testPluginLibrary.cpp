#include "pluginLibrary.h"

#include "brokenLibraries.h"

#include <QTemporaryDir>
#include <QtTest>

#include <limits>

using State = PluginLibrary::State;

class TestPluginLibrary : public QObject
{
    Q_OBJECT

    QTemporaryDir m_cFolder;
    const QVector<const char*> m_vecNames = {"getID", "showConfigWindow", "execute", "getArithmClass", "getArithmName"};

    QString write(const QString& name, const QByteArray& content) const
    {
        const QString path = m_cFolder.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("Cannot write %s", qPrintable(path));
        return path;
    }

    void refused(const QByteArray& content) const
    {
        const QString path = write("refused.so", content);
        PluginLibrary library(path, m_vecNames);
        QCOMPARE(int(library.state()), int(State::Unloadable));
        QVERIFY2(library.errorString().contains(path), qPrintable(library.errorString()));
        QVERIFY(library.errorString().size() > path.size() + 5);
        QVERIFY(!library.takeLibrary());
        QVERIFY(!PluginFolders::isLoaded(path));
    }

private slots:
    void goodLibraryGivesItsEntryPointsInTheOrderAskedFor()
    {
        PluginLibrary library(PluginFolders::built("algorithmEcho"), {"getArithmName", "getID"});
        QCOMPARE(int(library.state()), int(State::Complete));
        QCOMPARE(QByteArray(library.entry<const char* (*)()>(0)()), QByteArray("Echo"));
        QCOMPARE(QByteArray(library.entry<const char* (*)()>(1)()), QByteArray("Test.Echo"));
        const std::unique_ptr<QLibrary> owned = library.takeLibrary();
        QVERIFY(owned->isLoaded());
        QVERIFY(owned->unload());
    }

    void libraryThatLacksAnyEntryPointIsIncompleteAndStaysLoadedOnPurpose_data()
    {
        QTest::addColumn<QString>("library");
        for (const char* name : m_vecNames)
            QTest::newRow(name) << QStringLiteral("algorithmLacks_") + QLatin1String(name);
        QTest::newRow("data source") << QStringLiteral("sourceScripted");
    }

    void libraryThatLacksAnyEntryPointIsIncompleteAndStaysLoadedOnPurpose()
    {
        QFETCH(QString, library);
        const QString path = PluginFolders::built(library);
        {
            PluginLibrary incomplete(path, m_vecNames);
            QCOMPARE(int(incomplete.state()), int(State::Incomplete));
            QVERIFY(!incomplete.takeLibrary());
        }
        QVERIFY(PluginFolders::isLoaded(path));
    }

    void unresolvedSymbolIsRefusedWithItsName()
    {
        PluginLibrary library(PluginFolders::built("algorithmUnresolved"), m_vecNames);
        QCOMPARE(int(library.state()), int(State::Unloadable));
        QVERIFY2(library.errorString().contains("lumivantTestFunctionThatNobodyHas"),
                 qPrintable(library.errorString()));
    }

    void libraryCutAtAnyLengthIsRefusedAndNeverCrashes()
    {
        const QByteArray whole = libraryBytes("algorithmEcho");
        int tried = 0;
        for (int length = 0; length < whole.size(); length += length < 1000 ? 1 : whole.size() / 400) {
            refused(whole.left(length));
            ++tried;
        }
        QVERIFY(tried >= 1300);
        refused(whole.left(whole.size() - 1));
        PluginLibrary library(write("whole.so", whole), m_vecNames);
        QCOMPARE(int(library.state()), int(State::Complete));
        QVERIFY(library.takeLibrary()->unload());
    }

    void libraryWhoseRestWasNeverWrittenIsRefusedAndNeverCrashes_data()
    {
        QTest::addColumn<char>("filler");
        QTest::newRow("zeros") << '\0';
        QTest::newRow("garbage") << '\xA5';
    }

    void libraryWhoseRestWasNeverWrittenIsRefusedAndNeverCrashes()
    {
        QFETCH(char, filler);
        const QByteArray whole = libraryBytes("algorithmEcho");
        for (int length = 0; length < whole.size() - 64; length += length < 20000 ? 101 : whole.size() / 50)
            refused(whole.left(length) + QByteArray(whole.size() - length, filler));
    }

    void libraryWithoutATableOfSectionsIsTried()
    {
        const QByteArray stripped = withHeader(libraryBytes("algorithmUnresolved"), [](ElfW(Ehdr) & header) {
            header.e_shoff = 0;
            header.e_shnum = 0;
            header.e_shstrndx = 0;
        });
        // The loader itself refuses it, for what it lacks. One that stayed loaded would hide the names of all functions
        // from a sanitizer.
        PluginLibrary library(write("stripped.so", stripped), m_vecNames);
        QVERIFY2(library.errorString().contains("lumivantTestFunctionThatNobodyHas"),
                 qPrintable(library.errorString()));
    }

    void whatIsNoLibraryForThisMachineIsRefused_data()
    {
        using Header = ElfW(Ehdr);
        using Segment = ElfW(Phdr);
        QTest::addColumn<QByteArray>("content");
        const QByteArray good = libraryBytes("algorithmEcho");
        const auto header = [&good](auto edit) { return withHeader(good, edit); };
        const auto segment = [&good](auto edit) { return withSegment(good, edit); };
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("This is no library.\n");
        QTest::newRow("long text") << QByteArray(100000, 'x');
        QTest::newRow("zeros") << QByteArray(100000, '\0');
        QTest::newRow("magic and garbage") << QByteArray(
                                                  "\x7f"
                                                  "ELF") +
                                                  QByteArray(100000, '\xA5');
        QTest::newRow("header and garbage") << good.left(sizeof(Header)) + QByteArray(good.size(), '\xA5');
        QTest::newRow("other machine") << libraryOfAnotherMachine();
        QTest::newRow("other word size") << header([](Header& h) { h.e_ident[EI_CLASS] ^= 3; });
        QTest::newRow("other byte order") << header([](Header& h) { h.e_ident[EI_DATA] ^= 3; });
        QTest::newRow("object file") << header([](Header& h) { h.e_type = ET_REL; });
        QTest::newRow("program") << header([](Header& h) { h.e_type = ET_EXEC; });
        QTest::newRow("no segments") << header([](Header& h) { h.e_phnum = 0; });
        QTest::newRow("too many segments") << header([](Header& h) { h.e_phnum = 0xFFFF; });
        QTest::newRow("segment size") << header([](Header& h) { h.e_phentsize = 1; });
        QTest::newRow("segments far away")
            << header([](Header& h) { h.e_phoff = std::numeric_limits<decltype(h.e_phoff)>::max() - 8; });
        QTest::newRow("sections far away")
            << header([](Header& h) { h.e_shoff = std::numeric_limits<decltype(h.e_shoff)>::max() - 8; });
        QTest::newRow("section names elsewhere") << header([](Header& h) { h.e_shstrndx = 1; });
        QTest::newRow("segment too long")
            << segment([](Segment& s) { s.p_filesz = std::numeric_limits<decltype(s.p_filesz)>::max(); });
        QTest::newRow("segment behind the end")
            << segment([](Segment& s) { s.p_offset = std::numeric_limits<decltype(s.p_offset)>::max(); });
    }

    void whatIsNoLibraryForThisMachineIsRefused()
    {
        QFETCH(QByteArray, content);
        refused(content);
    }

    void nothingToLoadAtAllIsRefused()
    {
        const QByteArray content = withHeader(libraryBytes("algorithmEcho"), [](ElfW(Ehdr) & header) {
            // The program headers now describe zeros: no segment of any known kind.
            header.e_phoff = sizeof header;
        });
        QByteArray zeros = content;
        std::memset(zeros.data() + sizeof(ElfW(Ehdr)), 0, 64 * sizeof(ElfW(Phdr)));
        refused(zeros);
    }

    void missingFileAndFolderAreRefused()
    {
        for (const QString& path : {m_cFolder.filePath("missing.so"), m_cFolder.path()}) {
            PluginLibrary library(path, m_vecNames);
            QCOMPARE(int(library.state()), int(State::Unloadable));
            QVERIFY(library.errorString().contains(path));
        }
    }

    void runningProgramItselfIsRefused()
    {
        PluginLibrary library(QFileInfo("/proc/self/exe").canonicalFilePath(), m_vecNames);
        QCOMPARE(int(library.state()), int(State::Unloadable));
        QVERIFY(!library.errorString().isEmpty());
    }

    void filesEndInSoInAnyCaseAndAreSortedIgnoringCase()
    {
        QTemporaryDir folder;
        for (const char* name : {"b.so", "A.so", "C.SO", "d.So", ".so", "x.so.1", "lib.txt", "so", "zso", "a2.so"}) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QVERIFY(QDir(folder.path()).mkdir("folder.so"));
        QStringList names;
        for (const QString& path : PluginLibrary::filesIn(folder.path() + "/")) {
            QVERIFY(QFileInfo(path).isAbsolute());
            names += QFileInfo(path).fileName();
        }
        QCOMPARE(names, QStringList({"A.so", "a2.so", "b.so", "C.SO", "d.So"}));
    }

    void missingFolderHasNoFiles() { QVERIFY(PluginLibrary::filesIn(m_cFolder.filePath("missing")).isEmpty()); }

    void applicationFolderIsKnownWithoutAnApplicationObject()
    {
        QVERIFY(!QCoreApplication::instance());
        QCOMPARE(PluginLibrary::applicationFolder(), PluginFolders::folder());
        QVERIFY(!QCoreApplication::instance());
        int argumentCount = 1;
        char name[] = "testPluginLibrary";
        char* arguments[] = {name, nullptr};
        const QCoreApplication application(argumentCount, arguments);
        QCOMPARE(PluginLibrary::applicationFolder(), PluginFolders::folder());
    }
};

QTEST_APPLESS_MAIN(TestPluginLibrary)
#include "testPluginLibrary.moc"
