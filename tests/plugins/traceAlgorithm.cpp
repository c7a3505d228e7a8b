// An algorithm that leaves a trace in the store: appends its option to the strings record 900; its result is empty.
#include "keptText.h"

#include <lumivant/algorithm.h>

#include <arithmParamMgr.h>

const char* getID()
{
    return "Test.Trace";
}

const char* getArithmClass()
{
    return "Test";
}

const char* getArithmName()
{
    return "Trace";
}

char* showConfigWindow(char* option, ArithmParamMgr*, bool)
{
    return keptText(option);
}

char* execute(char* option, ArithmParamMgr* store)
{
    store->getParamStrings(900)->append(option);
    return keptText("");
}
