// Ends while tasks run, without deleting anything: no task thread may run on while the program's statics die.
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <cstdio>
#include <thread>

namespace {

/// Registered before the task registry is made, so it runs after the registry has gone and before the libraries do.
void checkNothingRuns()
{
    const QString trace = Probes::trace();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (!TaskMgr::s_pcInstance.load() && trace == Probes::trace() && trace.contains(QStringLiteral("end")))
        return;
    std::fputs("a task runs on while the program ends\n", stderr);
    std::_Exit(1);
}

}  // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    Probes::install();
    std::atexit(checkNothingRuns);
    TaskMgr* tasks = TaskMgr::getInstance();
    for (const int id : {0, 0, 1}) {  // the first is replaced and runs on
        tasks->addTask(makeTask({probeStep(QStringLiteral("a")), probeStep(QStringLiteral("end"), {}, 999999999)},
                                QStringLiteral("wait=2"))
                           .release(),
                       id);
        tasks->getTask(id)->startTask();
    }
    while (Probes::trace().count(QLatin1Char('a')) < 10)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return 0;
}
