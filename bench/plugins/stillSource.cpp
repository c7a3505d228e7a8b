// A source that hands out the same picture at once, every time: "WxH" is its configuration.
#include <lumivant/dataSource.h>

#include <array>
#include <cstdio>
#include <vector>

namespace {

struct Still
{
    int m_nWidth = 8;
    int m_nHeight = 8;
    std::vector<unsigned char> m_vecPixels = std::vector<unsigned char>(8 * 8 * 4);
};

std::array<Still, 64> s_acStills;

Still& stillOf(int instance)
{
    return s_acStills[static_cast<unsigned>(instance) % s_acStills.size()];
}

}  // namespace

const char* getDataSourceName()
{
    return "Bench Still";
}

unsigned char* requestPicture(int instance, const char*, int* width, int* height)
{
    Still& still = stillOf(instance);
    *width = still.m_nWidth;
    *height = still.m_nHeight;
    return still.m_vecPixels.data();
}

void releasePicture(int) {}

char* showConfigDlg(char* config, bool)
{
    return config;
}

void setConfig(int instance, char* config)
{
    Still& still = stillOf(instance);
    if (std::sscanf(config, " %dx%d", &still.m_nWidth, &still.m_nHeight) != 2)
        still.m_nWidth = still.m_nHeight = 8;
    const auto bytes = (static_cast<std::size_t>(still.m_nWidth) * 3 + 3) * static_cast<std::size_t>(still.m_nHeight);
    still.m_vecPixels.resize(bytes);
    for (std::size_t i = 0; i < bytes; ++i)
        still.m_vecPixels[i] = static_cast<unsigned char>(i * 2654435761U >> 24);
}

void start(int) {}
void stop(int) {}
void removeInstance(int instance)
{
    std::vector<unsigned char>().swap(stillOf(instance).m_vecPixels);
}

char* getLastError(int)
{
    return nullptr;
}
