// An algorithm whose result is its option text. Built many times with other names, and with one entry point left out.
#include "keptText.h"

#include <lumivant/algorithm.h>

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace {

std::mutex s_cMutex;  // Guards what follows.
std::map<std::string, int> s_mapCalls;
std::map<std::string, int> s_mapFirstCalls;  // Entry point -> the number of its first call among all calls.
int s_nCalls = 0;
std::optional<std::string> s_strConfigResult;
std::string s_strConfigOption;
bool s_bConfigFlag = false;

constexpr int SlowCalls = 8;

/// The number of calls so far, with this one.
[[maybe_unused]] int count(const char* what)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_mapFirstCalls.emplace(what, ++s_nCalls);
    return ++s_mapCalls[what];
}

[[maybe_unused]] void takeTime()
{
#ifdef TEST_LOADING_MS
    std::this_thread::sleep_for(std::chrono::milliseconds(TEST_LOADING_MS));
#endif
}

}  // namespace

#ifndef LACKS_getID
const char* getID()
{
    if (count("getID") <= SlowCalls)
        takeTime();
    return TEST_ID;
}
#endif

#ifndef LACKS_getArithmClass
const char* getArithmClass()
{
    count("getArithmClass");
    takeTime();
    return TEST_CLASS;
}
#endif

#ifndef LACKS_getArithmName
const char* getArithmName()
{
    count("getArithmName");
    return TEST_NAME;
}
#endif

#ifndef LACKS_showConfigWindow
char* showConfigWindow(char* option, ArithmParamMgr*, bool reserved)
{
    count("showConfigWindow");
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_strConfigOption = option;
    s_bConfigFlag = reserved;
    return keptText(s_strConfigResult.value_or(option));
}
#endif

#ifndef LACKS_execute
char* execute(char* option, ArithmParamMgr*)
{
    count("execute");
    char* result = keptText(option);
    if (*option)
        *option = '#';  // The buffer may be scribbled on.
    return result;
}
#endif

LUMIVANT_EXPORT int testCalls(const char* what)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return s_mapCalls[what];
}

/// The number of an entry point's first call among all calls; 0 when it was never called.
LUMIVANT_EXPORT int testFirstCall(const char* what)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    const auto found = s_mapFirstCalls.find(what);
    return found == s_mapFirstCalls.end() ? 0 : found->second;
}

LUMIVANT_EXPORT void testSetConfigResult(const char* result)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_strConfigResult = result ? std::optional<std::string>(result) : std::nullopt;
}

LUMIVANT_EXPORT const char* testConfigOption()
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return keptText(s_strConfigOption);
}

LUMIVANT_EXPORT bool testConfigFlag()
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return s_bConfigFlag;
}
