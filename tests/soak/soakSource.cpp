// A source of numbered pictures that misbehaves as its configuration text says: "key=value;…" with
//   wait=ms        before each picture
//   sizes=WxH,…    in turn (160x120)
//   null=n         every n-th request gives a size and no picture
//   bad=n          every n-th request gives a picture and a size that no picture has
#include "soakNumber.h"

#include <lumivant/dataSource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Size
{
    int width = 160;
    int height = 120;
};

struct Instance
{
    int waitMs = 0;
    int nullEvery = 0;
    int badEvery = 0;
    std::vector<Size> sizes{Size()};
    std::uint64_t requests = 0;
    std::uint64_t given = 0;
    std::vector<unsigned char> pixels;
};

std::mutex s_cMutex;  // Guards the map; an instance is used by one thread at a time.
std::map<int, std::shared_ptr<Instance>> s_mapInstances;

std::string valueOf(const std::string& config, const std::string& key)
{
    const std::string text = ";" + config + ";";
    const std::size_t begin = text.find(";" + key + "=");
    if (begin == std::string::npos)
        return {};
    const std::size_t value = begin + key.size() + 2;
    return text.substr(value, text.find(';', value) - value);
}

std::vector<Size> sizesOf(const std::string& list)
{
    std::vector<Size> sizes;
    for (std::size_t at = 0; at < list.size();) {
        Size size;
        std::sscanf(list.c_str() + at, "%dx%d", &size.width, &size.height);
        sizes.push_back(size);
        const std::size_t comma = list.find(',', at);
        at = comma == std::string::npos ? list.size() : comma + 1;
    }
    return sizes.empty() ? std::vector<Size>{Size()} : sizes;
}

std::shared_ptr<Instance> instanceOf(int number)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    std::shared_ptr<Instance>& instance = s_mapInstances[number];
    if (!instance)
        instance = std::make_shared<Instance>();
    return instance;
}

bool isTurn(std::uint64_t count, int every)
{
    return every > 0 && count % static_cast<std::uint64_t>(every) == 0;
}

}  // namespace

const char* getDataSourceName()
{
    return "Soak Source";
}

unsigned char* requestPicture(int number, const char* type, int* width, int* height)
{
    const std::shared_ptr<Instance> instance = instanceOf(number);
    std::this_thread::sleep_for(std::chrono::milliseconds(instance->waitMs));
    const Size size = instance->sizes[instance->requests % instance->sizes.size()];
    ++instance->requests;
    *width = size.width;
    *height = size.height;
    if (isTurn(instance->requests, instance->nullEvery))
        return nullptr;

    SoakNumber stamp;
    stamp.m_nSource = static_cast<std::uint32_t>(number);
    stamp.m_nSequence = ++instance->given;
    const bool colour = std::strcmp(type, "RGB") == 0;
    instance->pixels.assign(soakBytes(colour, size.width, size.height), stamp.fill());
    stamp.write(instance->pixels.data());
    if (isTurn(instance->requests, instance->badEvery)) {
        const bool flat = instance->requests % 2 == 0;
        *width = flat ? 0 : -size.width;
        *height = flat ? size.height : 0x7FFFFFFF;
    }
    return instance->pixels.data();
}

void releasePicture(int number)
{
    const std::shared_ptr<Instance> instance = instanceOf(number);
    if (!instance->pixels.empty())
        std::memset(instance->pixels.data(), 0xDD, sizeof(SoakNumber));
}

char* showConfigDlg(char* config, bool)
{
    return config;
}

void setConfig(int number, char* config)
{
    const std::shared_ptr<Instance> instance = instanceOf(number);
    instance->waitMs = std::atoi(valueOf(config, "wait").c_str());
    instance->nullEvery = std::atoi(valueOf(config, "null").c_str());
    instance->badEvery = std::atoi(valueOf(config, "bad").c_str());
    instance->sizes = sizesOf(valueOf(config, "sizes"));
}

void start(int) {}

void stop(int) {}

void removeInstance(int number)
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    s_mapInstances.erase(number);
}

char* getLastError(int)
{
    thread_local char t_achError[] = "the soak's source is out of order";
    return t_achError;
}

/// Instances that are known: none may be left once their tasks are gone.
LUMIVANT_EXPORT int soakInstances()
{
    const std::lock_guard<std::mutex> guard(s_cMutex);
    return static_cast<int>(s_mapInstances.size());
}
