// An algorithm that does nothing: what is left of a pass over it is the engine's own part.
#include <lumivant/algorithm.h>

const char* getID()
{
    return "BENCH_Noop";
}

const char* getArithmClass()
{
    return "bench";
}

const char* getArithmName()
{
    return "noop";
}

char* showConfigWindow(char* option, ArithmParamMgr*, bool)
{
    return option;
}

char* execute(char*, ArithmParamMgr*)
{
    return nullptr;
}
