// A data source that waits at a point of the pass that the test names, until it is let go: "start", "request",
// "release" (when the picture has been copied) or "stop".
#include <lumivant/dataSource.h>

#include <condition_variable>
#include <mutex>
#include <string>

namespace {

std::mutex s_cMutex;  // Guards what follows.
std::condition_variable s_cChanged;
std::string s_strHoldAt;
bool s_bHeld = false;
std::string s_strTrace;
unsigned char s_achPicture[3 * 4 * 2] = {};  // one picture for all: nobody changes it

void pass(const char* point)
{
    std::unique_lock<std::mutex> lock(s_cMutex);
    s_strTrace += std::string(s_strTrace.empty() ? "" : ",") + point;
    if (s_strHoldAt != point)
        return;
    s_bHeld = true;
    s_cChanged.wait(lock, [point] { return s_strHoldAt != point; });
    s_bHeld = false;
}

}  // namespace

const char* getDataSourceName()
{
    return "Test Holding";
}

unsigned char* requestPicture(int, const char*, int* width, int* height)
{
    pass("request");
    *width = 4;
    *height = 2;
    return s_achPicture;
}

void releasePicture(int)
{
    pass("release");
}

char* showConfigDlg(char* config, bool)
{
    return config;
}

void setConfig(int, char*) {}

void start(int)
{
    pass("start");
}

void stop(int)
{
    pass("stop");
}

void removeInstance(int) {}

char* getLastError(int)
{
    return nullptr;
}

/// From now on the calls wait at this point; an empty text lets go who waits.
LUMIVANT_EXPORT void testHoldAt(const char* point)
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    s_strHoldAt = point;
    s_strTrace.clear();
    s_cChanged.notify_all();
}

LUMIVANT_EXPORT void testLetGo()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    s_strHoldAt.clear();
    s_cChanged.notify_all();
}

LUMIVANT_EXPORT int testHeld()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    return s_bHeld ? 1 : 0;
}

LUMIVANT_EXPORT const char* testTrace()
{
    const std::lock_guard<std::mutex> lock(s_cMutex);
    thread_local std::string t_strKept;
    t_strKept = s_strTrace;
    return t_strKept.c_str();
}
