#include "taskMgr/taskMgr.h"
#include "wholeProgram.h"

#define main workbench
#include "main.cpp"
#undef main

/// The workbench as a whole.
class TestWorkbench : public WholeProgram::Test
{
    Q_OBJECT

private slots:
    void tasksWaitForTheirUser()
    {
        QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 1);
        QVERIFY(!TaskMgr::getInstance()->getTask(0)->IsRunning());
    }
};

int main(int /*argc*/, char* argv[])
{
    WholeProgram::s_pfnTest = [] {
        TestWorkbench test;
        return QTest::qExec(&test);
    };
    return WholeProgram::start(workbench, argv[0]);
}
#include "testWorkbench.moc"
