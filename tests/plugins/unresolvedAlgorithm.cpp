// An algorithm that calls a function which no library has.
#include <lumivant/algorithm.h>

extern "C" char* lumivantTestFunctionThatNobodyHas();

const char* getID()
{
    return "Test.Unresolved";
}

const char* getArithmClass()
{
    return "Test";
}

const char* getArithmName()
{
    return "Unresolved";
}

char* showConfigWindow(char* option, ArithmParamMgr*, bool)
{
    return option;
}

char* execute(char*, ArithmParamMgr*)
{
    return lumivantTestFunctionThatNobodyHas();
}
