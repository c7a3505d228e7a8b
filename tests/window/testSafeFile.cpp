#include "safeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <csignal>

#include <dlfcn.h>
#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// What the disk was asked to keep, in order: "file" or "folder", and what the watched file held at that moment.
QStringList s_lstKept;
QString s_strWatched;
bool s_bFileRefused = false;
bool s_bFolderRefused = false;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

}  // namespace

/// Stands in front of the C library's: a disk that refuses to keep what it was given cannot be had otherwise.
extern "C" int fsync(int handle)
{
    struct stat what
    {
    };
    const bool folder = ::fstat(handle, &what) == 0 && S_ISDIR(what.st_mode);
    if (!s_strWatched.isEmpty())
        s_lstKept += (folder ? "folder: " : "file: ") + contentOf(s_strWatched);
    if (folder ? s_bFolderRefused : s_bFileRefused) {
        errno = EIO;
        return -1;
    }
    return reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "fsync"))(handle);
}

/// Project files are read up to the first NUL and replaced in one step or not at all.
class TestSafeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsUpToTheFirstNul_data();
    void readsUpToTheFirstNul();
    void refusesWhatIsNoReadableFile_data();
    void refusesWhatIsNoReadableFile();
    void makesANewFile();
    void replacesAnOldFileAndKeepsItsPermissions();
    void followsALinkToTheFile();
    void failureLeavesTheOldFile_data();
    void failureLeavesTheOldFile();
    void writeThatFailsMidwayLeavesTheOldFile();
    void piecesFollowEachOther();
    void writerThatGivesUpLeavesTheOldFile();
    void leavesNoTemporaryBehind();
    void refusesWhatMayNotBeRead();
    void bytesAreKeptBeforeTheFileIsReplacedAndItsFolderAfterwards();
    void diskThatRefusesToKeepTheBytesLeavesTheOldFile();
    void folderThatCannotBeKeptIsNoFailure();
    void everyHandleIsClosed();

private:
    QString at(const char* name) const { return m_cFolder.filePath(QString::fromUtf8(name)); }
    static void write(const QString& path, const QByteArray& bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), static_cast<qint64>(bytes.size()));
    }

    QTemporaryDir m_cFolder;
};

void TestSafeFile::readsUpToTheFirstNul_data()
{
    const QByteArray big(200000, 'x');
    const QByteArray nul(1, '\0');
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("no NUL") << QByteArray("abc\n") << QByteArray("abc\n");
    QTest::newRow("NUL first") << nul + "abc" << QByteArray();
    QTest::newRow("NUL within") << QByteArray("abc") + nul + "def" + nul << QByteArray("abc");
    QTest::newRow("long") << big << big;
    QTest::newRow("NUL far behind") << big + nul + big << big;
    QTest::newRow("NUL where a piece begins") << big.left(65536) + nul + big << big.left(65536);
}

void TestSafeFile::readsUpToTheFirstNul()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, expected);
    write(at("read"), content);
    QByteArray bytes("old");
    QVERIFY(SafeFile::readUpToNul(at("read"), bytes));
    QCOMPARE(bytes, expected);
}

void TestSafeFile::refusesWhatIsNoReadableFile_data()
{
    QCOMPARE(::mkfifo(QFile::encodeName(at("pipe")).constData(), 0600), 0);
    QTest::addColumn<QString>("path");
    QTest::newRow("absent") << at("absent");
    QTest::newRow("folder") << m_cFolder.path();
    QTest::newRow("pipe") << at("pipe");
    QTest::newRow("device") << QStringLiteral("/dev/zero");
    QTest::newRow("reading fails") << QStringLiteral("/proc/self/mem");
    QTest::newRow("empty name") << QString();
}

void TestSafeFile::refusesWhatIsNoReadableFile()
{
    QFETCH(QString, path);
    QByteArray bytes("old");
    QVERIFY(!SafeFile::readUpToNul(path, bytes));
    QCOMPARE(bytes, QByteArray("old"));
}

void TestSafeFile::makesANewFile()
{
    QVERIFY(SafeFile::replaceFile(at("new"), "content"));
    QCOMPARE(contentOf(at("new")), QByteArray("content"));
    QVERIFY(SafeFile::replaceFile(at("new"), QByteArray()));
    QCOMPARE(contentOf(at("new")), QByteArray());
}

void TestSafeFile::replacesAnOldFileAndKeepsItsPermissions()
{
    write(at("old"), "old content, longer than the new");
    const QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(at("old"), permissions));
    const QFile::Permissions before = QFileInfo(at("old")).permissions();
    QVERIFY(SafeFile::replaceFile(at("old"), "new"));
    QCOMPARE(contentOf(at("old")), QByteArray("new"));
    QCOMPARE(QFileInfo(at("old")).permissions(), before);
}

void TestSafeFile::followsALinkToTheFile()
{
    write(at("target"), "old");
    QVERIFY(QFile::link(at("target"), at("link")));
    QVERIFY(SafeFile::replaceFile(at("link"), "new"));
    QVERIFY(QFileInfo(at("link")).isSymLink());
    QCOMPARE(contentOf(at("target")), QByteArray("new"));
}

void TestSafeFile::failureLeavesTheOldFile_data()
{
    QVERIFY(QDir(m_cFolder.path()).mkpath(QStringLiteral("folder")));
    QTest::addColumn<QString>("path");
    QTest::newRow("folder in place of the file") << at("folder");
    QTest::newRow("folder that is not there") << at("nowhere/file");
    QTest::newRow("file in place of the folder") << at("plain/file");
    QTest::newRow("folder that takes no files") << QStringLiteral("/proc/file");
    QTest::newRow("name too long") << at(QByteArray(300, 'n').constData());
    QTest::newRow("empty name") << QString();
}

void TestSafeFile::failureLeavesTheOldFile()
{
    QFETCH(QString, path);
    write(at("plain"), "plain");
    QVERIFY(!SafeFile::replaceFile(path, "new"));
    QCOMPARE(contentOf(at("plain")), QByteArray("plain"));
    QVERIFY(QFileInfo(at("folder")).isDir());
}

void TestSafeFile::writeThatFailsMidwayLeavesTheOldFile()
{
    write(at("midway"), "old content");
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit small = old;
    small.rlim_cur = 4096;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool big = SafeFile::replaceFile(at("midway"), QByteArray(100000, 'n'));
    // Fits into the stream's buffer: fails only when that is flushed.
    const bool justOver = SafeFile::replaceFile(at("midway"), QByteArray(5000, 'n'));
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);

    QVERIFY(!big);
    QVERIFY(!justOver);
    QCOMPARE(contentOf(at("midway")), QByteArray("old content"));
}

void TestSafeFile::piecesFollowEachOther()
{
    const QByteArray piece(100000, 'p');
    QVERIFY(SafeFile::replaceFile(at("pieces"), [&piece](const SafeFile::Sink& sink) {
        return sink("first") && sink(piece) && sink(QByteArray()) && sink("last");
    }));
    QCOMPARE(contentOf(at("pieces")), "first" + piece + "last");
}

void TestSafeFile::writerThatGivesUpLeavesTheOldFile()
{
    QVERIFY(SafeFile::replaceFile(at("given up"), "old"));
    QVERIFY(!SafeFile::replaceFile(at("given up"), [](const SafeFile::Sink& sink) { return sink("new") && false; }));
    QCOMPARE(contentOf(at("given up")), QByteArray("old"));
}

void TestSafeFile::leavesNoTemporaryBehind()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    QVERIFY(SafeFile::replaceFile(path, "one"));
    QVERIFY(!SafeFile::replaceFile(folder.filePath(QStringLiteral("nowhere/file")), "two"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("file")});
}

void TestSafeFile::refusesWhatMayNotBeRead()
{
    constexpr uid_t Nobody = 65534;
    write(at("secret"), "secret");
    QVERIFY(QFile::setPermissions(at("secret"), {}));
    QCOMPARE(::chmod(QFile::encodeName(m_cFolder.path()).constData(), 0711), 0);
    QByteArray bytes("old");

    ::setfsuid(Nobody);  // The superuser may read anything.
    const bool isThere = QFileInfo(at("secret")).isFile();
    const bool read = SafeFile::readUpToNul(at("secret"), bytes);
    ::setfsuid(::geteuid());

    QVERIFY(isThere);
    QVERIFY(!read);
    QCOMPARE(bytes, QByteArray("old"));
}

void TestSafeFile::bytesAreKeptBeforeTheFileIsReplacedAndItsFolderAfterwards()
{
    write(at("watched"), "old");
    s_lstKept.clear();
    s_strWatched = at("watched");

    const bool replaced = SafeFile::replaceFile(at("watched"), "new");

    s_strWatched.clear();
    QVERIFY(replaced);
    QCOMPARE(s_lstKept, (QStringList{"file: old", "folder: new"}));
}

void TestSafeFile::diskThatRefusesToKeepTheBytesLeavesTheOldFile()
{
    write(at("refused"), "old");
    const QStringList before = QDir(m_cFolder.path()).entryList(QDir::AllEntries | QDir::Hidden);
    s_bFileRefused = true;

    const bool replaced = SafeFile::replaceFile(at("refused"), "new");

    s_bFileRefused = false;
    QVERIFY(!replaced);
    QCOMPARE(contentOf(at("refused")), QByteArray("old"));
    QCOMPARE(QDir(m_cFolder.path()).entryList(QDir::AllEntries | QDir::Hidden), before);
}

void TestSafeFile::folderThatCannotBeKeptIsNoFailure()
{
    s_bFolderRefused = true;

    const bool replaced = SafeFile::replaceFile(at("kept"), "new");

    s_bFolderRefused = false;
    QVERIFY(replaced);
    QCOMPARE(contentOf(at("kept")), QByteArray("new"));
}

void TestSafeFile::everyHandleIsClosed()
{
    const auto handles = [] { return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size(); };
    QVERIFY(SafeFile::replaceFile(at("once"), "new"));
    const int before = handles();

    QVERIFY(SafeFile::replaceFile(at("once"), "newer"));
    QByteArray bytes;
    QVERIFY(SafeFile::readUpToNul(at("once"), bytes));

    QCOMPARE(handles(), before);
}

QTEST_GUILESS_MAIN(TestSafeFile)
#include "testSafeFile.moc"
