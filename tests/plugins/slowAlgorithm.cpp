// An algorithm that takes its time. Option: "milliseconds;result".
#include "keptText.h"

#include <lumivant/algorithm.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {
std::atomic<int> s_nCalls{0};
std::atomic<int> s_nRunning{0};
}  // namespace

const char* getID()
{
    return "Test.Slow";
}

const char* getArithmClass()
{
    return "Test";
}

const char* getArithmName()
{
    return "Slow";
}

char* showConfigWindow(char* option, ArithmParamMgr*, bool)
{
    return keptText(option);
}

char* execute(char* option, ArithmParamMgr*)
{
    ++s_nCalls;
    ++s_nRunning;
    std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(option)));
    --s_nRunning;
    const char* semicolon = std::strchr(option, ';');
    return keptText(semicolon ? semicolon + 1 : "");
}

LUMIVANT_EXPORT int testCalls(const char* what)
{
    return std::strcmp(what, "execute") == 0 ? s_nCalls.load() : 0;
}

/// How many calls are inside execute right now.
LUMIVANT_EXPORT int testRunning()
{
    return s_nRunning;
}
