// An algorithm that answers null to everything.
#include <lumivant/algorithm.h>

const char* getID()
{
    return nullptr;
}

const char* getArithmClass()
{
    return nullptr;
}

const char* getArithmName()
{
    return nullptr;
}

char* showConfigWindow(char*, ArithmParamMgr*, bool)
{
    return nullptr;
}

char* execute(char*, ArithmParamMgr*)
{
    return nullptr;
}
