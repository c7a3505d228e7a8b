// An algorithm that does nothing but command the pass to go on with the next step.
#include <lumivant/algorithm.h>

const char* getID()
{
    return "BENCH_Skip";
}

const char* getArithmClass()
{
    return "bench";
}

const char* getArithmName()
{
    return "skip";
}

char* showConfigWindow(char* option, ArithmParamMgr*, bool)
{
    return option;
}

char* execute(char*, ArithmParamMgr*)
{
    static char command[] = "<CMD>skip:1</CMD>";
    return command;
}
