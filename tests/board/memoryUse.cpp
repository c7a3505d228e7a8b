// What memory the demo takes, and what each task, view and memory disk adds: lumivantMemory SECONDS, in the demo's
// folder.
#include "../window/windowFixture.h"
#include "drawing/drawing.h"
#include "memoryArenas.h"
#include "memoryDisk/memoryDisk.h"
#include "paramStore/arithmParamMgr.h"
#include "processShare.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int Width = 1920;
constexpr int Height = 1080;
constexpr double KiB = 1024.0;

struct Sample
{
    qint64 m_nHeap = ProcessShare::heapBytes();
    qint64 m_nResident = ProcessShare::residentBytes();
};

/// What is there now, without what malloc only keeps.
Sample settled()
{
    malloc_trim(0);
    return {};
}

void row(const char* what, const Sample& sample)
{
    std::printf("%-58s %10.0f %10.0f\n", what, static_cast<double>(sample.m_nHeap) / KiB,
                static_cast<double>(sample.m_nResident) / KiB);
    std::fflush(stdout);
}

void rowForEach(const char* what, const Sample& before, int count)
{
    Sample each = settled();
    each.m_nHeap = (each.m_nHeap - before.m_nHeap) / count;
    each.m_nResident = (each.m_nResident - before.m_nResident) / count;
    row(what, each);
}

void wait(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

bool anyRuns(int count)
{
    for (int id = 0; id < count; ++id) {
        if (TaskMgr::getInstance()->getTask(id) && TaskMgr::getInstance()->getTask(id)->IsRunning())
            return true;
    }
    return false;
}

void stopAll(const WindowFixture& window)
{
    window.child<QPushButton>("btnStopAll")->click();
    while (anyRuns(window.tabs()->count() + 1))
        wait(50);
}

/// Runs all tasks of the window for so long; the most that was seen.
Sample runAll(const WindowFixture& window, int seconds)
{
    window.child<QPushButton>("btnStartAll")->click();
    Sample most;
    for (int i = 0; i < seconds * 5; ++i) {
        wait(200);
        const Sample now;
        most.m_nHeap = std::max(most.m_nHeap, now.m_nHeap);
        most.m_nResident = std::max(most.m_nResident, now.m_nResident);
    }
    stopAll(window);
    return most;
}

void open(const WindowFixture& window, const QString& path)
{
    if (!window.open(path) || window.tabs()->count() == 0)
        qFatal("%s was not opened", qPrintable(path));
    wait(500);
}

void measureDemo(int seconds)
{
    const WindowFixture window;
    window.m_pcWindow->resize(1024, 600);
    wait(500);
    row("window shown", settled());
    open(window, QFileInfo(QStringLiteral("demo.lmv")).absoluteFilePath());
    row("demo opened", settled());
    row("demo while it runs, the most", runAll(window, seconds));
    row("demo stopped", settled());
}

// ---- What each adds ------------------------------------------------------------------------------------------------

QString taskText(int number)
{
    return QStringLiteral(
               "<=TaskInfo=><-TaskName->t%1</-TaskName-><-Kernel->0</-Kernel-><-View->0</-View->"
               "<-DataSource-><DSName>Memory Disk 5</DSName><OutputName>p</OutputName><OutputDescribe>"
               "</OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID><Config></Config>"
               "</-DataSource-></=TaskInfo=>")
        .arg(number);
}

void measureTasks(int count)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("tasks.lmv"));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    for (int i = 0; i < count; ++i)
        file.write(taskText(i).toUtf8());
    file.close();
    const WindowFixture window;
    window.m_pcWindow->resize(1024, 600);
    wait(500);
    const Sample before = settled();
    open(window, path);
    rowForEach(qPrintable(QStringLiteral("each of %1 tasks").arg(count)), before, count);
    const Sample stopped = settled();
    window.child<QPushButton>("btnStartAll")->click();
    wait(1500);
    rowForEach(qPrintable(QStringLiteral("each of %1 tasks, more while it runs").arg(count)), stopped, count);
    stopAll(window);
}

void measureDisks()
{
    std::vector<unsigned char> picture(std::size_t{Width} * Height * 3);
    const Sample before = settled();
    for (int disk = 0; disk < 3; ++disk) {
        for (int slot = 0; slot < 6; ++slot)
            MemoryDisk::getInstance(disk)->addDIB(picture.data(), Width, Height);
    }
    rowForEach("each memory disk full of colour pictures 1920x1080", before, 3);
}

void measureViews()
{
    constexpr int MostQueued = 10;
    const WindowFixture window;
    window.m_pcWindow->resize(1024, 600);
    wait(500);
    ArithmParamMgr* store = ArithmParamMgr::newInstance();
    store->getParamDIB(1)->resize(Width, Height);
    std::fill_n(store->getParamDIB(1)->getDIB(), std::size_t{Width} * Height * 3, static_cast<unsigned char>(7));
    const Sample before = settled();
    for (int view = 0; view < 4; ++view) {
        for (int i = 0; i < MostQueued; ++i) {
            QByteArray option =
                QStringLiteral("<View>%1</View><DataType>0</DataType><DataID>1</DataID>").arg(view).toUtf8();
            Drawing::execute(option.data(), store);
        }
    }
    rowForEach("each view with ten colour pictures 1920x1080 waiting", before, 4);
    ArithmParamMgr::deleteInstance(store);
    wait(15000);  // each paint takes one
    rowForEach("each view when they are drawn", before, 4);
}

}  // namespace

int main(int argc, char* argv[])
{
    if (argc != 2 || std::atoi(argv[1]) < 1) {
        std::fprintf(stderr, "usage: %s SECONDS\n", argv[0]);
        return 2;
    }
    MemoryArenas::setUp();
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    std::printf("%-58s %10s %10s\n", "KiB", "heap", "resident");
    row("application without a window", settled());
    measureDemo(std::atoi(argv[1]));
    row("window closed", settled());
    measureTasks(8);
    measureTasks(32);
    measureDisks();
    measureViews();
    return 0;
}
