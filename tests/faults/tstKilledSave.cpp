#include "../window/windowFixture.h"
#include "childProcess.h"

#include <QApplication>
#include <QtTest>

#include <chrono>
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
QByteArray savedText(int which)
{
    TaskMgr::getInstance()->fromString(QString::fromUtf8(projectOf(which)));
    return TaskMgr::getInstance()->toSavedText();
}

/// The child: the real window, whose save command overwrites the file again and again.
int saveForever(const QString& path, int which)
{
    const WindowFixture fixture;
    if (!fixture.open(path))
        return 1;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        // The answer is what begins the saving: now the kill may come.
        if (box != nullptr && ::write(STDOUT_FILENO, "s", 1) == 1)
            box->button(QMessageBox::Yes)->click();
    });
    answer.start(0);
    for (;; which = 1 - which) {
        TaskMgr::getInstance()->fromString(QString::fromUtf8(projectOf(which)));
        fixture.trigger("saveOption");
    }
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
    const QByteArray texts[] = {savedText(0), savedText(1)};
    QVERIFY(texts[0] != texts[1] && texts[0].size() > 500000);
    writeFile(path, texts[0]);
    std::mt19937 chance(20240307);
    int last = 0;
    int replaced = 0;
    int leftBehind = 0;
    int mostUs = ShortestUs;  // follows how long saving takes here, so that kills meet all of it
    for (int kill = 0; kill < Kills; ++kill) {
        ChildProcess child({QStringLiteral("save"), path, QString::number(1 - last)});
        QVERIFY(child.isStarted());
        QVERIFY(child.waitForSign());
        std::this_thread::sleep_for(std::chrono::microseconds(chance() % static_cast<unsigned>(mostUs)));
        child.kill();

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
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc == 4 && qstrcmp(argv[1], "save") == 0)
        return saveForever(QFile::decodeName(argv[2]), QByteArray(argv[3]).toInt());
    tstKilledSave test;
    return QTest::qExec(&test, argc, argv);
}
#include "tstKilledSave.moc"
