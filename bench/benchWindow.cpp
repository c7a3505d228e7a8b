// How long is the window's event loop away while four tasks draw full HD pictures as fast as they can?
#include "mainwindow.h"
#include "taskMgr/taskMgr.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <vector>

namespace {

constexpr int WarmUpMs = 1000;  // starting threads and first allocations are not what is asked about
constexpr int MeasuredMs = 5000;

void addTasks()
{
    for (int view = 0; view < 4; ++view) {
        auto* task = new TaskInfo(QStringLiteral("task %1").arg(view), nullptr);
        task->fromString(
            QStringLiteral("<-View->%1</-View-><-DataSource-><DSName>Bench Still</DSName><OutputName>p</OutputName>"
                           "<OutputDescribe></OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID>"
                           "<Config>1920x1080</Config></-DataSource->"
                           "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->KW_Drawing</-ArithmID->"
                           "<-OptionStr-><DataType>0</DataType><DataID>1</DataID><Config><Scale>1</Scale></Config>"
                           "</-OptionStr-></-TaskItem->")
                .arg(view));
        TaskMgr::getInstance()->addTask(task, view);
    }
}

/**
 * The absence that a user meets who acts at a random moment: that share of the time lies in absences no longer.
 * Counting absences instead would let the many idle turns of the loop hide the few long ones.
 */
double percentileOfTime(const std::vector<double>& sorted, double share)
{
    double left = share * std::accumulate(sorted.begin(), sorted.end(), 0.0);
    for (const double gap : sorted) {
        left -= gap;
        if (left <= 0)
            return gap;
    }
    return sorted.back();
}

}  // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    MainWindow window;
    window.resize(1920, 1080);
    window.show();
    addTasks();

    std::vector<double> gaps;
    QElapsedTimer sinceLast;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        if (sinceLast.isValid())
            gaps.push_back(static_cast<double>(sinceLast.nsecsElapsed()) / 1e6);
        sinceLast.start();
    });
    window.findChild<QPushButton*>(QStringLiteral("btnStartAll"))->click();
    QTimer::singleShot(WarmUpMs, &tick, [&tick] { tick.start(0); });
    QTimer::singleShot(WarmUpMs + MeasuredMs, &application, &QApplication::quit);
    QApplication::exec();
    tick.stop();
    long long passes = 0;
    for (int id = 0; id < TaskMgr::getInstance()->getTaskNum(); ++id)
        passes += TaskMgr::getInstance()->getTask(id)->getPassNum();
    window.findChild<QPushButton*>(QStringLiteral("btnStopAll"))->click();

    if (gaps.empty() || passes == 0) {
        std::fprintf(stderr, "The window never answered or no task made a pass.\n");
        return 1;
    }
    std::sort(gaps.begin(), gaps.end());
    std::printf("passes %lld\nmedian_ms %.2f\np99_ms %.2f\nlongest_ms %.2f\n", passes, percentileOfTime(gaps, 0.5),
                percentileOfTime(gaps, 0.99), gaps.back());
    return 0;
}
