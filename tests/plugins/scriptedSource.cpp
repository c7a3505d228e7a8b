// A data source that does what its configuration text says; see tests/support/pluginFolders.h for the keys.
#include "keptText.h"

#include <lumivant/dataSource.h>

#include <sys/resource.h>
#include <chrono>
#include <cstdio>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace {

struct Size
{
    int width = 0;
    int height = 0;
};

struct Instance
{
    std::string config;
    bool started = false;
    int given = 0;  // Pictures handed out.
    std::vector<unsigned char> pixels;
};

std::mutex s_cMutex;  // Guards what follows.
std::map<int, Instance> s_mapInstances;
std::map<std::pair<std::string, int>, int> s_mapCalls;
std::optional<std::string> s_strDialogResult;
std::string s_strDialogConfig;
bool s_bDialogFlag = false;
int s_nLastInstance = 0;
int s_nPriorityAtStart = 0;

[[maybe_unused]] void count(const char* what, int instance)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    ++s_mapCalls[{what, instance}];
}

/// The value of a key in "key=value;key=value"; other when the key is absent.
[[maybe_unused]] std::string valueOf(const std::string& config, const std::string& key, const std::string& other)
{
    const std::string text = ";" + config + ";";
    const std::size_t begin = text.find(";" + key + "=");
    if (begin == std::string::npos)
        return other;
    const std::size_t value = begin + key.size() + 2;
    return text.substr(value, text.find(';', value) - value);
}

/// The index-th of "WxH,WxH,…", from the first again after the last.
[[maybe_unused]] Size sizeOf(const std::string& list, int index)
{
    std::vector<Size> sizes;
    for (std::size_t at = 0; at < list.size();
         at = list.find(',', at) == std::string::npos ? list.size() : list.find(',', at) + 1) {
        Size size;
        std::sscanf(list.c_str() + at, "%dx%d", &size.width, &size.height);
        sizes.push_back(size);
    }
    return sizes.empty() ? Size() : sizes[static_cast<std::size_t>(index) % sizes.size()];
}

[[maybe_unused]] void paint(std::vector<unsigned char>& pixels, Size size, bool colour, int number)
{
    const int rowBytes = colour ? size.width * 3 : size.width;
    const int stride = colour ? (rowBytes + 3) / 4 * 4 : rowBytes;
    pixels.assign(static_cast<std::size_t>(stride) * static_cast<std::size_t>(size.height), 0xEE);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < rowBytes; ++x)
            pixels[static_cast<std::size_t>(y * stride + x)] = static_cast<unsigned char>(number + 7 * y + 3 * x);
    }
}

[[maybe_unused]] unsigned char* nextPicture(Instance& instance, bool colour, int* width, int* height)
{
    const std::string& config = instance.config;
    const int number = instance.given;
    if (number >= std::stoi(valueOf(config, "count", "2000000000")))
        return nullptr;
    if (!instance.started && valueOf(config, "needsStart", "0") == "1")
        return nullptr;
    ++instance.given;
    const std::string sizes = valueOf(config, "size", "4x3");
    const Size reported = sizeOf(valueOf(config, "report", sizes), number);
    *width = reported.width;
    *height = reported.height;
    if (valueOf(config, "null", "0") == "1")
        return nullptr;
    paint(instance.pixels, sizeOf(sizes, number), colour, number);
    return instance.pixels.data();
}

}  // namespace

#ifndef LACKS_getDataSourceName
const char* getDataSourceName()
{
#ifdef TEST_LOADING_MS
    std::this_thread::sleep_for(std::chrono::milliseconds(TEST_LOADING_MS));
#endif
#ifdef TEST_NAME_GB18030
    return "\xCF\xE0\xBB\xFA";
#else
    return TEST_NAME;
#endif
}
#endif

#ifndef LACKS_requestPicture
unsigned char* requestPicture(int instance, const char* type, int* width, int* height)
{
    count("requestPicture", instance);
    count(type, instance);
    std::unique_lock<std::mutex> guard(s_cMutex);
    Instance& state = s_mapInstances[instance];
    const int waitMs = std::stoi(valueOf(state.config, "wait", "0"));
    if (waitMs > 0) {
        guard.unlock();
        std::this_thread::sleep_for(std::chrono::milliseconds(waitMs));
        guard.lock();
    }
    return nextPicture(state, std::string(type) == "RGB", width, height);
}
#endif

#ifndef LACKS_releasePicture
void releasePicture(int instance)
{
    count("releasePicture", instance);
    const std::lock_guard<std::mutex> guard(s_cMutex);
    // Whoever still reads the picture afterwards sees other bytes.
    for (unsigned char& byte : s_mapInstances[instance].pixels)
        byte = 0xDD;
}
#endif

#ifndef LACKS_showConfigDlg
char* showConfigDlg(char* config, bool reserved)
{
    count("showConfigDlg", 0);
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_strDialogConfig = config;
    s_bDialogFlag = reserved;
    char* result = keptText(s_strDialogResult.value_or(config));
    if (*config)
        *config = '#';  // The buffer may be scribbled on.
    return result;
}
#endif

#ifndef LACKS_setConfig
void setConfig(int instance, char* config)
{
    count("setConfig", instance);
    count((std::string("setConfig to ") + config).c_str(), instance);
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_mapInstances[instance].config = config;
    s_nLastInstance = instance;
    if (*config)
        *config = '#';
}
#endif

#ifndef LACKS_start
void start(int instance)
{
    count("start", instance);
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_nPriorityAtStart = getpriority(PRIO_PROCESS, 0);
    s_mapInstances[instance].started = true;
}
#endif

#ifndef LACKS_stop
void stop(int instance)
{
    count("stop", instance);
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_mapInstances[instance].started = false;
}
#endif

#ifndef LACKS_removeInstance
void removeInstance(int instance)
{
    count("removeInstance", instance);
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_mapInstances.erase(instance);
}
#endif

#ifndef LACKS_getLastError
char* getLastError(int instance)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return keptText(valueOf(s_mapInstances[instance].config, "error", TEST_MARK));
}
#endif

LUMIVANT_EXPORT int testCalls(const char* what, int instance)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return s_mapCalls[{what, instance}];
}

/// The nice value of the thread that started an instance last, which threads that it makes inherit.
LUMIVANT_EXPORT int testPriorityAtStart()
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return s_nPriorityAtStart;
}

LUMIVANT_EXPORT int testLastInstance()
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return s_nLastInstance;
}

LUMIVANT_EXPORT const char* testConfig(int instance)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return keptText(s_mapInstances[instance].config);
}

LUMIVANT_EXPORT void testSetDialogResult(const char* result)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_strDialogResult = result ? std::optional<std::string>(result) : std::nullopt;
}

LUMIVANT_EXPORT const char* testDialogConfig()
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return keptText(s_strDialogConfig);
}

LUMIVANT_EXPORT bool testDialogFlag()
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return s_bDialogFlag;
}
