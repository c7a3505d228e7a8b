// Ends while tasks run, without deleting anything: no task thread may run on while the program's statics die.
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

constexpr int TaskNum = 3;

/// Runs after the tasks have gone and before the libraries do.
void checkNothingRuns()
{
    const int passes = Probes::traceCount("pass");
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (!TaskMgr::s_pcInstance.load() && passes == Probes::traceCount("pass") && Probes::traceCount("end") == TaskNum)
        return;
    std::fputs("a task runs on while the program ends\n", stderr);
    std::_Exit(1);
}

void addTask(int id)
{
    TaskMgr* tasks = TaskMgr::getInstance();
    tasks->addTask(makeTask({probeStep(QStringLiteral("pass")), probeStep(QStringLiteral("end"), {}, 999999999)},
                            QStringLiteral("wait=2"))
                       .release(),
                   id);
}

}  // namespace

// With an argument the program ends by exit(), and the application object never does.
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    Probes::install();
    addTask(0);
    std::atexit(checkNothingRuns);
    if (argc < 2)
        Probes::needStatics();
    TaskMgr::getInstance()->getTask(0)->startTask();
    for (const int id : {0, 1}) {  // the first task is replaced and runs on
        addTask(id);
        TaskMgr::getInstance()->getTask(id)->startTask();
    }
    while (Probes::traceCount("pass") < 10)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    if (argc > 1)
        std::exit(0);
    return 0;
}
