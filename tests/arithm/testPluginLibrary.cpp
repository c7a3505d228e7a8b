#include "pluginLibrary.h"

#include "brokenLibraries.h"
#include "runAtOnce.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <atomic>
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

    /// Refused, for this very reason when one is given.
    void refused(const QByteArray& content, const QString& reason = {}) const
    {
        const QString path = write("refused.so", content);
        PluginLibrary library(path, m_vecNames);
        if (!reason.isEmpty())
            QCOMPARE(library.errorString(), QStringLiteral("Cannot load library %1: (%2)").arg(path, reason));
        QCOMPARE(int(library.state()), int(State::Unloadable));
        QVERIFY2(library.errorString().contains(path), qPrintable(library.errorString()));
        QVERIFY(library.errorString().size() > path.size() + 5);
        QVERIFY(!library.takeLibrary());
        QVERIFY(!PluginFolders::isLoaded(path));
    }

    /// A library whose last segment reaches so many bytes over the end of the file.
    static QByteArray withLastSegmentOver(const QByteArray& library, int bytes)
    {
        return withSegment(library, [&](ElfW(Phdr) & segment) {
            segment.p_filesz = static_cast<decltype(segment.p_filesz)>(library.size() + bytes) - segment.p_offset;
            segment.p_memsz = std::max(segment.p_memsz, segment.p_filesz);
        });
    }

    static QByteArray withFirstTooLong(QByteArray library)
    {
        library = withLoadableFirst(library);
        ElfW(Ehdr) header;
        std::memcpy(&header, library.constData(), sizeof header);
        ElfW(Phdr) segment;
        std::memcpy(&segment, library.constData() + header.e_phoff, sizeof segment);
        segment.p_filesz = static_cast<decltype(segment.p_filesz)>(library.size());
        segment.p_offset = 1;
        std::memcpy(library.data() + header.e_phoff, &segment, sizeof segment);
        return library;
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

    void manyThreadsMayMeetIncompleteLibrariesAtOnce()
    {
        // Two registries may be made at the same moment, each under a lock of its own.
        std::atomic<int> incomplete{0};
        runAtOnce(8, [&](int index) {
            for (int i = 0; i < 10; ++i) {
                const QString name = QLatin1String(m_vecNames.at((index + i) % m_vecNames.size()));
                const PluginLibrary library(PluginFolders::built(QStringLiteral("algorithmLacks_") + name), m_vecNames);
                incomplete += library.state() == State::Incomplete ? 1 : 0;
            }
        });
        QCOMPARE(incomplete.load(), 80);
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

    void libraryThatIsOnlyUnusualIsTried_data()
    {
        using Header = ElfW(Ehdr);
        QTest::addColumn<QByteArray>("content");
        const QByteArray plain = libraryBytes("algorithmUnresolved");
        const auto header = [&plain](auto edit) { return withHeader(plain, edit); };
        constexpr auto Far = std::numeric_limits<decltype(Header::e_shoff)>::max() - 8;
        const auto sections = [](Header& h, decltype(h.e_shoff) offset, int names) {
            h.e_shoff = offset;
            h.e_shnum = 0;
            h.e_shstrndx = static_cast<decltype(h.e_shstrndx)>(names);
        };
        QTest::newRow("no table of sections") << header([&](Header& h) { sections(h, 0, 0); });
        QTest::newRow("no sections but a place of their names") << header([&](Header& h) { sections(h, 0, 5); });
        QTest::newRow("no sections but a table far away") << header([&](Header& h) { sections(h, Far, 0); });
        QTest::newRow("no names of sections") << header([](Header& h) { h.e_shstrndx = SHN_UNDEF; });
        QTest::newRow("too many sections to say where") << header([](Header& h) { h.e_shstrndx = SHN_XINDEX; });
        QTest::newRow("stack behind the end") << withStackBehindTheEnd(plain);
        QTest::newRow("segment up to the very end") << withLastSegmentOver(plain, 0);
        QTest::newRow("table of segments at the end") << withSegmentsAtTheEnd(plain);
    }

    void libraryThatIsOnlyUnusualIsTried()
    {
        QFETCH(QByteArray, content);
        // The loader itself refuses it, for what it lacks. One that stayed loaded would hide the names of all functions
        // from a sanitizer.
        PluginLibrary library(write("unusual.so", content), m_vecNames);
        QVERIFY2(library.errorString().contains("lumivantTestFunctionThatNobodyHas"),
                 qPrintable(library.errorString()));
    }

    void libraryOfOneSegmentIsTried()
    {
        const QByteArray content = withHeader(withLoadableFirst(libraryBytes("algorithmEcho")),
                                              [](ElfW(Ehdr) & header) { header.e_phnum = 1; });
        PluginLibrary library(write("oneSegment.so", content), m_vecNames);
        QVERIFY2(library.errorString().contains("no dynamic section"), qPrintable(library.errorString()));
    }

    void whatIsNoLibraryForThisMachineIsRefused_data()
    {
        using Header = ElfW(Ehdr);
        using Segment = ElfW(Phdr);
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("reason");
        const QByteArray good = libraryBytes("algorithmEcho");
        const auto row = [](const char* name, const QByteArray& content, const char* reason) {
            QTest::newRow(name) << content << reason;
        };
        const auto header = [&](const char* name, const char* reason, auto edit) {
            row(name, withHeader(good, edit), reason);
        };
        constexpr auto Far = std::numeric_limits<decltype(Header::e_phoff)>::max() - 8;
        row("empty", QByteArray(), "file is too short");
        row("text", "This is no library.\n", "file is too short");
        row("long text", QByteArray(100000, 'x'), "not a library");
        row("zeros", QByteArray(100000, '\0'), "not a library");
        row("magic and garbage", QByteArray(ELFMAG) + QByteArray(100000, '\xA5'), "wrong word size");
        row("header and garbage", good.left(sizeof(Header)) + QByteArray(good.size(), '\xA5'), "no segments to load");
        row("other machine", libraryOfAnotherMachine(), "made for another machine");
        header("other word size", "wrong word size", [](Header& h) { h.e_ident[EI_CLASS] ^= 3; });
        header("other byte order", "wrong byte order", [](Header& h) { h.e_ident[EI_DATA] ^= 3; });
        header("object file", "not a shared library", [](Header& h) { h.e_type = ET_REL; });
        header("program", "not a shared library", [](Header& h) { h.e_type = ET_EXEC; });
        header("no segments", "no segments to load", [](Header& h) { h.e_phnum = 0; });
        header("too many segments", "file is cut off", [](Header& h) { h.e_phnum = 0xFFFF; });
        header("segment size", "no segments to load", [](Header& h) { h.e_phentsize = 1; });
        header("segments far away", "file is cut off", [](Header& h) { h.e_phoff = Far; });
        header("sections far away", "file is cut off", [](Header& h) { h.e_shoff = Far; });
        header("one section far away", "file is cut off", [](Header& h) {
            h.e_shoff = Far;
            h.e_shnum = 1;
            h.e_shstrndx = SHN_UNDEF;
        });
        header("section names elsewhere", "file is damaged", [](Header& h) { h.e_shstrndx = 1; });
        header("one section and the names elsewhere", "file is damaged", [](Header& h) {
            h.e_shnum = 1;
            h.e_shstrndx = 1;
        });
        const auto tooLong = [](Segment& s) { s.p_filesz = std::numeric_limits<decltype(s.p_filesz)>::max(); };
        row("segment too long", withSegment(good, tooLong), "file is cut off");
        row("first segment too long", withFirstTooLong(good), "file is cut off");
        row("segment one byte too long", withLastSegmentOver(good, 1), "file is cut off");
        row("segment behind the end", withSegment(good, [](Segment& s) { s.p_offset = Far; }), "file is cut off");
    }

    void whatIsNoLibraryForThisMachineIsRefused()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        refused(content, reason);
    }

    void nothingToLoadAtAllIsRefused()
    {
        const QByteArray content = withHeader(libraryBytes("algorithmEcho"), [](ElfW(Ehdr) & header) {
            // The program headers now describe zeros: no segment of any known kind.
            header.e_phoff = sizeof header;
        });
        QByteArray zeros = content;
        std::memset(zeros.data() + sizeof(ElfW(Ehdr)), 0, 64 * sizeof(ElfW(Phdr)));
        refused(zeros, "no segments to load");
    }

    void missingFileAndFolderAreRefused()
    {
        for (const QString& path : {m_cFolder.filePath("missing.so"), m_cFolder.path()}) {
            PluginLibrary library(path, m_vecNames);
            QCOMPARE(int(library.state()), int(State::Unloadable));
            QVERIFY(library.errorString().startsWith(QStringLiteral("Cannot load library %1: (").arg(path)));
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
