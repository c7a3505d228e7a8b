// An algorithm whose results come from the program that loads it.
#include <lumivant/algorithm.h>

/// Offered by the fuzz target: what the algorithm answers to this option text; may be null.
extern "C" const char* fuzzResultOf(const char* option);

const char* getID()
{
    return "Fuzz.Results";
}

const char* getArithmClass()
{
    return "Fuzz";
}

const char* getArithmName()
{
    return "Results";
}

char* showConfigWindow(char*, ArithmParamMgr*, bool)
{
    return nullptr;
}

char* execute(char* option, ArithmParamMgr*)
{
    const char* result = fuzzResultOf(option);
    option[0] = '\0';  // the buffer is ours during the call
    return const_cast<char*>(result);
}
