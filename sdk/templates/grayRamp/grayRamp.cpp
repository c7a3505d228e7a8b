// A complete data source to copy: a grey ramp that moves one pixel with every picture, 25 pictures a second.
//
// Configuration text: "<Width>640</Width><Height>480</Height>".
#include <lumivant/dataSource.h>
#include <pictureLayout.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds PicturePeriod{40};
constexpr std::chrono::milliseconds LongestWait{200};  // A stop is seen between two requests only.
constexpr int LargestSide = 8192;

/// One configured source. Used by one thread at a time, as the interface promises.
struct Instance
{
    int width = 640;   // Pixels.
    int height = 480;  // Pixels.
    bool running = false;
    int shift = 0;  // Pixels that the ramp has moved.
    Clock::time_point due;
    std::vector<unsigned char> pixels;
    std::string error;
};

// Several tasks use their instances at the same time: the map needs a lock, what is in it does not.
std::mutex s_cMtxForInstances;
std::map<int, std::shared_ptr<Instance>> s_mapInstances;

std::shared_ptr<Instance> instanceOf(int number)
{
    const std::lock_guard<std::mutex> lock(s_cMtxForInstances);
    std::shared_ptr<Instance>& found = s_mapInstances[number];
    if (!found)
        found = std::make_shared<Instance>();
    return found;
}

/// Keeps a returned text alive until the next call on the same thread, as the interface asks for.
char* keepText(const std::string& text)
{
    thread_local std::string s_strKept;
    s_strKept = text;
    return s_strKept.data();
}

/// The number in an element of the configuration text; fallback when it is absent or no possible side of a picture.
int readSide(const std::string& config, const std::string& tag, int fallback)
{
    const std::string opening = "<" + tag + ">";
    const std::size_t start = config.find(opening);
    const int side = start == std::string::npos ? 0 : std::atoi(config.c_str() + start + opening.size());
    return side < 1 || side > LargestSide ? fallback : side;
}

/// Waits until the next picture is due, but not longer than a stop may be delayed; whether it is due.
bool waitForPicture(Instance& instance)
{
    const Clock::time_point now = Clock::now();
    std::this_thread::sleep_until(std::min(instance.due, now + LongestWait));
    if (Clock::now() < instance.due)
        return false;
    instance.due = std::max(instance.due + PicturePeriod, now);
    return true;
}

/// False when there is no memory. Nothing that is thrown may leave a plug-in.
bool makeRoom(Instance& instance, std::int64_t bytes)
{
    try {
        instance.pixels.resize(static_cast<std::size_t>(bytes));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

bool drawRamp(Instance& instance, bool colour)
{
    const std::int64_t stride = colour ? PictureLayout::colourStride(instance.width) : instance.width;
    const int samples = colour ? 3 : 1;
    if (!makeRoom(instance, stride * instance.height))
        return false;
    unsigned char* row = instance.pixels.data();
    for (int y = 0; y < instance.height; ++y, row += stride) {
        for (int x = 0; x < instance.width; ++x)
            std::memset(row + x * samples, (x + instance.shift) & 255, static_cast<std::size_t>(samples));
    }
    instance.shift = (instance.shift + 1) & 255;
    return true;
}

}  // namespace

const char* getDataSourceName()
{
    return "Gray Ramp";
}

unsigned char* requestPicture(int instance, const char* type, int* width, int* height)
{
    *width = 0;
    *height = 0;
    const std::shared_ptr<Instance> source = instanceOf(instance);
    const bool colour = std::strcmp(type, "RGB") == 0;
    if (!colour && std::strcmp(type, "Gray8") != 0) {
        source->error = "不支持的图像类型.";
        std::this_thread::sleep_for(LongestWait);
        return nullptr;
    }
    if (!source->running) {
        source->error = "没有启动.";
        std::this_thread::sleep_for(LongestWait);
        return nullptr;
    }
    if (!waitForPicture(*source))
        return nullptr;
    if (!drawRamp(*source, colour)) {
        source->error = "内存不足.";
        return nullptr;
    }
    *width = source->width;
    *height = source->height;
    return source->pixels.data();
}

// The buffer belongs to the instance and is drawn into only by the next request: nothing to give back.
void releasePicture(int) {}

// A real plug-in shows a dialog here. This one writes its defaults down, where they can be edited.
char* showConfigDlg(char* config, bool)
{
    const int width = readSide(config, "Width", 640);
    const int height = readSide(config, "Height", 480);
    return keepText("<Width>" + std::to_string(width) + "</Width><Height>" + std::to_string(height) + "</Height>");
}

void setConfig(int instance, char* config)
{
    const std::shared_ptr<Instance> source = instanceOf(instance);
    source->width = readSide(config, "Width", 640);
    source->height = readSide(config, "Height", 480);
}

void start(int instance)
{
    const std::shared_ptr<Instance> source = instanceOf(instance);
    source->error.clear();
    source->shift = 0;
    source->due = Clock::now();
    source->running = true;
}

void stop(int instance)
{
    instanceOf(instance)->running = false;
}

void removeInstance(int instance)
{
    const std::lock_guard<std::mutex> lock(s_cMtxForInstances);
    s_mapInstances.erase(instance);
}

char* getLastError(int instance)
{
    return keepText(instanceOf(instance)->error);
}
