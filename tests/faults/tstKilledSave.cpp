#include "../window/windowFixture.h"
#include "childProcess.h"
#include "savedText.h"

#include <QApplication>
#include <QtTest>

#include <sys/prctl.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

namespace {

constexpr int Kills = 100;
constexpr int StepNum = 4000;
constexpr int ShortestUs = 30000;  // of the longest time until a kill.
constexpr int LongestUs = 4000000;

/// One of the two projects that the child saves in turn; about a megabyte, so that a kill meets the writing.
QByteArray projectOf(int which)
{
    const QByteArray name = which == 0 ? "first" : "second";
    return taskWithoutSource(name, stepOf("Id." + name, name, "7", name + " described").repeated(StepNum));
}

/// What saving one of them writes.
QByteArray savedTextOf(int which)
{
    TaskMgr::getInstance()->fromString(QString::fromUtf8(projectOf(which)));
    return savedText();
}

/// What the child is asked to do once.
struct KillRequest
{
    int m_nFirst;  ///< The project that is saved first.
    int m_nUs;     ///< From the beginning of the first saving until the kill.
};

/// The real window's save command overwrites the file again and again, in turn with either project.
[[noreturn]] void saveForever(const WindowFixture& fixture, int which, int output)
{
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [output] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        // The answer is what begins the saving: now the kill may come.
        if (box != nullptr && ::write(output, "s", 1) == 1)
            box->button(QMessageBox::Yes)->click();
    });
    answer.start(0);
    for (;; which = 1 - which) {
        TaskMgr::getInstance()->fromString(QString::fromUtf8(projectOf(which)));
        fixture.trigger("saveOption");
    }
}

/// Lets a copy of this process save, and kills it; whether it had begun to save and was still at it.
bool killOneSave(const WindowFixture& fixture, const KillRequest& request)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const pid_t child = ::getpid();
    const pid_t saving = ::fork();
    if (saving == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // or it would save for ever should the child itself be ended
        if (::getppid() != child)
            ::_exit(1);
        saveForever(fixture, request.m_nFirst, ends[1]);
    }
    ::close(ends[1]);
    char sign = 0;
    const bool begun = ::read(ends[0], &sign, 1) == 1;
    std::this_thread::sleep_for(std::chrono::microseconds(begun ? request.m_nUs : 0));
    int status = 0;
    const bool ended = saving > 0 && ::kill(saving, SIGKILL) == 0 && ::waitpid(saving, &status, 0) == saving;
    ::close(ends[0]);
    return begun && ended && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

/**
 * The child: opens the window and the project once, which takes far longer than a saving, and has a copy of itself
 * killed for each request.
 */
int killSavesOnRequest(const QString& path, int requests)
{
    const WindowFixture fixture;
    if (!fixture.open(path))
        return 1;
    KillRequest request;
    while (::read(requests, &request, sizeof request) == sizeof request) {
        if (!killOneSave(fixture, request) || ::write(STDOUT_FILENO, "k", 1) != 1)
            return 1;
    }
    return 0;
}

}  // namespace

/// The program may be killed at any moment while it saves: the project is the old or the new one, whole.
class tstKilledSave : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void projectIsTheOldOrTheNewOneAfterAHundredKills();
};

void tstKilledSave::projectIsTheOldOrTheNewOneAfterAHundredKills()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("project.lmv"));
    const QByteArray texts[] = {savedTextOf(0), savedTextOf(1)};
    QVERIFY(texts[0] != texts[1] && texts[0].size() > 500000);
    writeFile(path, texts[0]);
    int requests[2];
    std::signal(SIGPIPE, SIG_IGN);  // a child that has ended is told by what it did not do
    QVERIFY(::pipe2(requests, O_CLOEXEC) == 0);
    QVERIFY(::fcntl(requests[0], F_SETFD, 0) == 0);  // the child's end
    ChildProcess child({QStringLiteral("save"), path, QString::number(requests[0])});
    QVERIFY(child.isStarted());
    ::close(requests[0]);
    std::mt19937 chance(20240307);
    int last = 0;
    int replaced = 0;
    int leftBehind = 0;
    int mostUs = ShortestUs;  // follows how long saving takes here, so that kills meet all of it
    for (int kill = 0; kill < Kills; ++kill) {
        const KillRequest request{1 - last, static_cast<int>(chance() % static_cast<unsigned>(mostUs))};
        QVERIFY(::write(requests[1], &request, sizeof request) == sizeof request);
        QVERIFY(child.waitForSign());

        const QByteArray found = readFile(path);
        const int which = found == texts[0] ? 0 : 1;
        QVERIFY2(found == texts[which],
                 qPrintable(QStringLiteral("after kill %1: %2 bytes").arg(kill).arg(found.size())));
        replaced += which != last ? 1 : 0;
        mostUs = which != last ? qMax(mostUs / 2, ShortestUs) : qMin(mostUs * 2, LongestUs);
        last = which;
        leftBehind += QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size() - 1;
        for (const QString& name : QDir(folder.path()).entryList(QDir::Files | QDir::Hidden)) {
            if (name != QStringLiteral("project.lmv"))
                QVERIFY(QFile::remove(folder.filePath(name)));
        }
    }
    qInfo("%d kills: %d times the new project, else the old one; %d times a part beside it", Kills, replaced,
          leftBehind);
    QVERIFY(replaced > 0);
    ::close(requests[1]);
    QCOMPARE(child.wait(), 0);
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc == 4 && qstrcmp(argv[1], "save") == 0)
        return killSavesOnRequest(QFile::decodeName(argv[2]), QByteArray(argv[3]).toInt());
    tstKilledSave test;
    return QTest::qExec(&test, argc, argv);
}
#include "tstKilledSave.moc"
