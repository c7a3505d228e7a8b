#include "taskMgr/taskMgr.h"
#include "wholeProgram.h"

#define main kiosk
#include "kiosk.cpp"
#undef main

#include <csignal>

namespace {

bool s_bEndIsTaken = false;  ///< Seen before the test library takes the signals for itself.

bool isTaken(int signal)
{
    struct sigaction action = {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_DFL;
}

}  // namespace

/// The program of a machine that does nothing else, as a whole.
class TestKiosk : public WholeProgram::Test
{
    Q_OBJECT

private slots:
    void windowHasNoFrame()
    {
        QVERIFY(WholeProgram::window()->windowFlags().testFlag(Qt::FramelessWindowHint));
        QVERIFY(WholeProgram::window()->isFullScreen());
    }

    void tasksRunFromTheStart()
    {
        QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 1);
        QVERIFY(TaskMgr::getInstance()->getTask(0)->IsRunning());
    }

    void requestToEndIsTaken() { QVERIFY(s_bEndIsTaken); }
};

int main(int /*argc*/, char* argv[])
{
    WholeProgram::s_pfnTest = [] {
        s_bEndIsTaken = isTaken(SIGTERM) && isTaken(SIGINT) && isTaken(SIGHUP);
        TestKiosk test;
        return QTest::qExec(&test);
    };
    return WholeProgram::start(kiosk, argv[0]);
}
#include "testKiosk.moc"
