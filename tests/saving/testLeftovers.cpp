#include "pictureSupport.h"
#include "saving/leftovers.h"
#include "saving/pictureFile.h"

#include <QtTest>

#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>

using namespace PictureSupport;

namespace {

constexpr int NoOtherUser = 3;  // How a child ends that cannot become an ordinary user.

/// The number of a process that has ended.
int endedProcess()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return child;
}

QString partOf(int process, int count = 0)
{
    return QStringLiteral(".lumivant-%1-%2.part").arg(process).arg(count);
}

/// Has a file, or a link itself, be written to for the last time so long ago.
void setAge(const QString& path, int secondsAgo)
{
    const timespec then{std::time(nullptr) - secondsAgo, 0};
    const timespec times[] = {then, then};
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, AT_SYMLINK_NOFOLLOW), 0);
}

void makeFile(const QString& path, int minutesAgo)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("half a picture") > 0);
    file.close();
    setAge(path, minutesAgo * 60);
}

int openFiles()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
}

bool savePicture(const Folder& folder)
{
    QImage picture(8, 4, QImage::Format_RGB888);
    picture.fill(Qt::red);
    return PictureFile::write(picture, folder.path("cam.bmp"));
}

}  // namespace

class TestLeftovers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyWhatNobodyWillEverCompleteIsRemoved_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("minutesAgo");
        QTest::addColumn<bool>("isRemoved");
        const int ended = endedProcess();
        QTest::newRow("killed two hours ago") << partOf(ended) << 120 << true;
        QTest::newRow("killed, many pictures") << partOf(ended, 999999999) << 120 << true;
        QTest::newRow("an earlier program had our number") << partOf(::getpid(), 7) << 120 << true;
        QTest::newRow("killed half an hour ago") << partOf(ended) << 30 << false;
        QTest::newRow("from the future") << partOf(ended) << -120 << false;
        QTest::newRow("our own, now") << partOf(::getpid(), 7) << 0 << false;
        QTest::newRow("that process lives") << partOf(::getppid()) << 120 << false;
        QTest::newRow("no process") << partOf(0) << 120 << false;
        QTest::newRow("not a process") << ".lumivant--5-1.part" << 120 << false;
        QTest::newRow("number too large") << ".lumivant-99999999999-1.part" << 120 << false;
        QTest::newRow("no count") << QStringLiteral(".lumivant-%1.part").arg(ended) << 120 << false;
        QTest::newRow("something behind") << partOf(ended) + ".bak" << 120 << false;
        QTest::newRow("something in front") << "a" + partOf(ended) << 120 << false;
        QTest::newRow("zeros in front") << QStringLiteral(".lumivant-0%1-0.part").arg(ended) << 120 << false;
        QTest::newRow("not hidden") << partOf(ended).mid(1) << 120 << false;
        QTest::newRow("a user's picture") << "other.bmp" << 120 << false;
    }

    void onlyWhatNobodyWillEverCompleteIsRemoved()
    {
        QFETCH(QString, name);
        QFETCH(int, minutesAgo);
        QFETCH(bool, isRemoved);
        const Folder folder;
        makeFile(folder.path(qPrintable(name)), minutesAgo);

        QVERIFY(savePicture(folder));

        QCOMPARE(QFile::exists(folder.path(qPrintable(name))), !isRemoved);
        QCOMPARE(QImage(folder.path("cam.bmp")).size(), QSize(8, 4));
    }

    void folderOfThatNameStays()
    {
        const Folder folder;
        const QString path = folder.path(qPrintable(partOf(endedProcess())));
        QVERIFY(QDir().mkdir(path));
        setAge(path, 7200);
        QVERIFY(savePicture(folder));
        QVERIFY(QFileInfo(path).isDir());
    }

    void linkOfThatNameStays()
    {
        const Folder folder;
        makeFile(folder.path("picture.bmp"), 120);
        const QString link = folder.path(qPrintable(partOf(endedProcess())));
        QVERIFY(QFile::link(folder.path("picture.bmp"), link));
        setAge(link, 7200);
        QVERIFY(savePicture(folder));
        QVERIFY(QFileInfo(link).isSymLink());
        QVERIFY(QFile::exists(folder.path("picture.bmp")));
    }

    void folderIsLookedThroughWhenItsFirstPictureIsSaved()
    {
        const Folder folder;
        const Folder other;
        QVERIFY(savePicture(folder));
        QVERIFY(savePicture(other));
        const QString late = folder.path(qPrintable(partOf(endedProcess())));
        makeFile(late, 120);
        QVERIFY(savePicture(folder));
        QVERIFY(QFile::exists(late));
    }

    void folderIsLookedThroughAgainAfterThousandsOfOthers()
    {
        const Folder folder;
        QVERIFY(savePicture(folder));
        const QString late = folder.path(qPrintable(partOf(endedProcess())));
        makeFile(late, 120);
        for (int i = 0; i < 5000; ++i)
            Leftovers::removeBeside(folder.path(QStringLiteral("no such folder %1/cam.bmp").arg(i)));
        QVERIFY(savePicture(folder));
        QVERIFY(!QFile::exists(late));
    }

    void hourIsOver()
    {
        const Folder folder;
        const QString path = folder.path(qPrintable(partOf(endedProcess())));
        makeFile(path, 60);
        setAge(path, 3601);
        QVERIFY(savePicture(folder));
        QVERIFY(!QFile::exists(path));
    }

    void processThatIsAskedForGoesOn()
    {
        const Folder folder;
        const pid_t child = ::fork();
        if (child == 0) {
            std::signal(SIGHUP, SIG_DFL);
            ::pause();
            ::_exit(0);
        }
        auto endIt = qScopeGuard([child] { ::kill(child, SIGKILL); });  // should the test end before
        // Among others, whatever the order that the folder has them in.
        const int ended = endedProcess();
        for (int i = 0; i < 20; ++i) {
            makeFile(folder.path(partOf(child, i)), 120);
            makeFile(folder.path(partOf(ended, i)), 120);
        }
        QVERIFY(savePicture(folder));
        const QStringList names = folder.names();
        endIt.dismiss();
        ::kill(child, SIGKILL);
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(WTERMSIG(status), SIGKILL);
        QCOMPARE(names.size(), 20 + 1);
        for (int i = 0; i < 20; ++i)
            QVERIFY(names.contains(partOf(child, i)));
    }

    void processOfAnotherUserLives()
    {
        // The first process of all belongs to the super user; an ordinary one may not even ask for it.
        const Folder folder;
        const QString ofFirst = folder.path(qPrintable(partOf(1)));
        const QString ofEnded = folder.path(qPrintable(partOf(endedProcess())));
        makeFile(ofFirst, 120);
        makeFile(ofEnded, 120);
        const QByteArray made = QFile::encodeName(folder.write("picture", "cam.bmp"));
        QCOMPARE(::chmod(QFile::encodeName(folder.path()).constData(), 0777), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            constexpr uid_t Nobody = 65534;
            if (::geteuid() == 0 && ::setresuid(Nobody, Nobody, Nobody) != 0)
                ::_exit(NoOtherUser);
            Leftovers::removeBeside(QString::fromLocal8Bit(made));
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        if (WIFEXITED(status) && WEXITSTATUS(status) == NoOtherUser)
            QSKIP("This name space of users has no other than the super user.");
        QCOMPARE(status, 0);
        QVERIFY(!QFile::exists(ofEnded));
        QVERIFY(QFile::exists(ofFirst));
    }

    void lookingThroughAFolderLeavesNoFileOpen()
    {
        const int before = openFiles();
        for (int i = 0; i < 20; ++i) {
            const Folder folder;
            QVERIFY(savePicture(folder));
        }
        QCOMPARE(openFiles(), before);
    }

    void allOfThemGo()
    {
        const Folder folder;
        const int ended = endedProcess();
        for (int i = 0; i < 300; ++i)
            makeFile(folder.path(qPrintable(partOf(ended, i))), 120);
        QVERIFY(savePicture(folder));
        QCOMPARE(QDir(folder.path("")).entryList(QDir::Files | QDir::Hidden), QStringList{"cam.bmp"});
    }
};

QTEST_GUILESS_MAIN(TestLeftovers)
#include "testLeftovers.moc"
