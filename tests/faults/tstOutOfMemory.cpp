#include "childProcess.h"
#include "memoryLimit.h"
#include "pluginFolders.h"
#include "taskMgr/taskMgr.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <cstdio>
#include <thread>

namespace {

enum ChildStatus
{
    Good = 0,
    NoPasses = 10,
    EndedByItself = 11,
};

QString stepText(const char* id, const QString& option)
{
    return QStringLiteral(
               "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->%1</-ArithmID-><-OptionStr->%2"
               "</-OptionStr-></-TaskItem->")
        .arg(QLatin1String(id), option);
}

/// A task whose pictures have these sizes in turn, with every step that copies one.
QString taskText(const QString& sizes, const QString& type, const QString& folder)
{
    const bool colour = type == QStringLiteral("RGB");
    const QString kind = colour ? QStringLiteral("RGB") : QStringLiteral("Gray");
    return QStringLiteral(
               "<-DataSource-><DSName>Test Scripted</DSName><OutputName>p</OutputName><OutputDescribe>"
               "</OutputDescribe><OutputType>%1</OutputType><OutputID>1</OutputID>"
               "<Config>wait=5;size=4x3;report=%2</Config></-DataSource->")
               .arg(type, sizes) +
           stepText("KW_Drawing", QStringLiteral("<DataType>%1</DataType><DataID>1</DataID>").arg(colour ? 0 : 1)) +
           stepText("KW_MemoryDisk",
                    QStringLiteral("<MemDisk>0</MemDisk><InputID>1</InputID><InputType>%1</InputType>").arg(type)) +
           stepText("KW_Saving", QStringLiteral("<BasePath>%1</BasePath><StringID>a</StringID><Identity>2</Identity>"
                                                "<Format>2</Format><Wnd>4</Wnd><PicType>%2</PicType><PicID>1</PicID>")
                                     .arg(folder, kind));
}

/// The child: runs the task with little memory to be had. What its pictures claim to be, nobody could copy.
int runWithLittleMemory(const QString& sizes, const QString& type, const QString& folder)
{
    constexpr std::size_t LittleMore = 400 * 1024 * 1024;
    PluginFolders::clear();
    PluginFolders::addSource(QStringLiteral("sourceScripted"));
    TaskInfo task(QStringLiteral("t"), nullptr);
    task.fromString(taskText(sizes, type, folder));
    const MemoryLimit limit(LittleMore);
    task.startTask();
    QElapsedTimer timer;
    timer.start();
    while (task.getPassNum() < 5 && timer.elapsed() < 30000 && task.IsRunning())
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const bool running = task.IsRunning();
    const bool passes = task.getPassNum() >= 5;
    task.stopTask();
    return !running ? EndedByItself : passes ? Good : NoPasses;
}

}  // namespace

/// Pictures of absurd size where there is little memory: they are left out, and the task goes on with the next.
class tstOutOfMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void absurdPicturesAreLeftOutAndTheTaskGoesOn_data();
    void absurdPicturesAreLeftOutAndTheTaskGoesOn();
};

void tstOutOfMemory::absurdPicturesAreLeftOutAndTheTaskGoesOn_data()
{
    QTest::addColumn<QString>("sizes");
    QTest::addColumn<QString>("type");
    for (const QString& type : {QStringLiteral("RGB"), QStringLiteral("Gray8")}) {
        const auto row = [&type](const char* name, const QString& sizes) {
            QTest::newRow(qPrintable(type + QStringLiteral(": ") + QLatin1String(name))) << sizes << type;
        };
        // Every second one is real, so that passes are made.
        row("more than the memory", QStringLiteral("40000x30000,4x3"));
        row("more than an int counts", QStringLiteral("60000x60000,4x3"));
        row("the largest that can be named", QStringLiteral("2147483647x2147483647,4x3"));
        row("wide", QStringLiteral("2147483647x1,4x3"));
        row("high", QStringLiteral("1x2147483647,4x3"));
    }
}

void tstOutOfMemory::absurdPicturesAreLeftOutAndTheTaskGoesOn()
{
    if (!MemoryLimit::works())
        QSKIP("a sanitizer needs the address space that the test takes away");
    QFETCH(QString, sizes);
    QFETCH(QString, type);
    const QTemporaryDir folder;
    ChildProcess child({QStringLiteral("run"), sizes, type, folder.path()});
    QVERIFY(child.isStarted());
    const int status = child.wait();
    QVERIFY2(WIFEXITED(status), qPrintable(QStringLiteral("ended by signal %1").arg(WTERMSIG(status))));
    QCOMPARE(WEXITSTATUS(status), static_cast<int>(Good));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("a.bmp")});
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == QStringLiteral("run"))
        return runWithLittleMemory(arguments.value(2), arguments.value(3), arguments.value(4));
    tstOutOfMemory test;
    return QTest::qExec(&test, argc, argv);
}
#include "tstOutOfMemory.moc"
