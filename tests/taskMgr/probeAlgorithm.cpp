// An algorithm that says how it is called. Option: "name|result"; the result is returned, the name goes into a trace of
// all tasks together. A name that starts with "gate" waits inside until the gate opens.
#include <lumivant/algorithm.h>

#include <sched.h>
#include <sys/resource.h>
#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

namespace {

std::mutex s_cMutex;  // Guards what follows.
std::condition_variable s_cChanged;
std::string s_strTrace;
std::string s_strAffinity;
int s_nPriority = 0;
bool s_bGateOpen = false;
int s_nAtGate = 0;
int s_nConfigWindows = 0;
std::string s_strTraceAtConfig;
std::string s_strConfigOption;
std::string s_strConfigResult;

bool s_bNeedsItsStatics = false;
bool s_bStaticsAreGone = false;

/// A static made by the first call, as algorithms have them; it dies before what was made earlier.
struct LateStatic
{
    ~LateStatic() { s_bStaticsAreGone = true; }
};

char* kept(const std::string& text)
{
    thread_local std::string t_strKept;
    t_strKept = text;
    return t_strKept.data();
}

std::string affinityOfThread()
{
    cpu_set_t set;
    sched_getaffinity(0, sizeof(set), &set);
    std::string text;
    for (std::size_t cpu = 0; cpu < 1024; ++cpu) {
        if (CPU_ISSET(cpu, &set))
            text += (text.empty() ? "" : ",") + std::to_string(cpu);
    }
    return text;
}

}  // namespace

const char* getID()
{
    return PROBE_ID;
}

const char* getArithmClass()
{
    return PROBE_CLASS;
}

const char* getArithmName()
{
    return PROBE_NAME;
}

char* showConfigWindow(char* option, ArithmParamMgr*, bool)
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    ++s_nConfigWindows;
    s_strTraceAtConfig = s_strTrace;
    s_strConfigOption = option;
    return kept(s_strConfigResult);
}

char* execute(char* option, ArithmParamMgr*)
{
    static const LateStatic s_cLate;
    if (s_bNeedsItsStatics && s_bStaticsAreGone)
        std::abort();
    const std::string text = option;
    std::memset(option, '#', text.size());  // the buffer is the callee's to scribble on
    const std::size_t bar = std::min(text.find('|'), text.size());
    const std::string name = text.substr(0, bar);
    std::unique_lock<std::mutex> lock(s_cMutex);
    s_strTrace += (s_strTrace.empty() ? "" : ",") + name;
    s_strAffinity = affinityOfThread();
    s_nPriority = getpriority(PRIO_PROCESS, 0);
    if (name.rfind("gate", 0) == 0) {
        ++s_nAtGate;
        s_cChanged.wait(lock, [] { return s_bGateOpen; });
        --s_nAtGate;
    }
    return kept(bar < text.size() ? text.substr(bar + 1) : std::string());
}

LUMIVANT_EXPORT const char* testTrace()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    return kept(s_strTrace);
}

/// How often a name stands in the trace; also once the thread-local texts of a thread that ends have gone.
LUMIVANT_EXPORT int testTraceCount(const char* name)
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    int count = 0;
    for (std::size_t at = s_strTrace.find(name); at != std::string::npos; at = s_strTrace.find(name, at + 1))
        ++count;
    return count;
}

LUMIVANT_EXPORT const char* testTraceAtConfig()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    return kept(s_strTraceAtConfig);
}

LUMIVANT_EXPORT const char* testConfigOption()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    return kept(s_strConfigOption);
}

LUMIVANT_EXPORT const char* testAffinity()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    return kept(s_strAffinity);
}

/// The nice value of the thread that ran the step last.
LUMIVANT_EXPORT int testPriority()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    return s_nPriority;
}

LUMIVANT_EXPORT int testAtGate()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    return s_nAtGate;
}

LUMIVANT_EXPORT void testOpenGate()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    s_bGateOpen = true;
    s_cChanged.notify_all();
}

/// From now on a call that comes after the algorithm's statics have died ends the process.
LUMIVANT_EXPORT void testNeedStatics()
{
    s_bNeedsItsStatics = true;
}

LUMIVANT_EXPORT int testConfigWindows()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    return s_nConfigWindows;
}

/// Empties the trace and the counts; the gate closes; configuration windows return result from now on.
LUMIVANT_EXPORT void testReset(const char* result)
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    s_strTrace.clear();
    s_strTraceAtConfig.clear();
    s_strConfigOption.clear();
    s_strAffinity.clear();
    s_bGateOpen = false;
    s_nConfigWindows = 0;
    s_strConfigResult = result;
}
