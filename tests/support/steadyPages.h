#pragma once

#include <cstdlib>
#include <cstring>
#include <vector>

#include <sys/resource.h>

/// Does malloc keep what steps free, or does each step get its pictures' pages from the system?
namespace SteadyPages {

constexpr std::size_t PictureBytes = 6 << 20;
constexpr int Pictures = 4;

inline long touchedFirst()
{
    rusage use{};
    getrusage(RUSAGE_THREAD, &use);
    return use.ru_minflt;
}

/// What a step does that needs some pictures for itself: allocates, writes and frees them.
inline void useAndFree()
{
    std::vector<void*> pictures;
    for (int i = 0; i < Pictures; ++i) {
        pictures.push_back(std::malloc(PictureBytes));
        std::memset(pictures.back(), i + 1, PictureBytes);
    }
    for (void* picture : pictures)
        std::free(picture);
}

/// Pages that one more such step gets from the system, once there were some.
inline long ofOneMoreStep()
{
    for (int i = 0; i < 10; ++i)
        useAndFree();
    const long before = touchedFirst();
    useAndFree();
    return touchedFirst() - before;
}

}  // namespace SteadyPages
