#include "pixels/copyKernels.h"

#include "pixels/pixels.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

// What a sanitizer cannot see is left out where there is one: it knows memcpy.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HAS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define HAS_SANITIZER
#endif
#endif

#if defined(__x86_64__) && !defined(HAS_SANITIZER)
#define HAS_COPIES
#include <cpuid.h>
#include <emmintrin.h>
#endif

namespace {

void copyPlainly(const unsigned char* source, unsigned char* target, std::size_t bytes)
{
    if (bytes > 0)
        std::memcpy(target, source, bytes);
}

#if defined(HAS_COPIES)

bool hasFastStrings()
{
    constexpr unsigned Features = 7;
    constexpr unsigned EnhancedStrings = 1U << 9U;  // in ebx
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    return __get_cpuid_count(Features, 0, &eax, &ebx, &ecx, &edx) != 0 && (ebx & EnhancedStrings) != 0;
}

void copyByStrings(const unsigned char* source, unsigned char* target, std::size_t bytes)
{
    asm volatile("rep movsb" : "+S"(source), "+D"(target), "+c"(bytes) : : "memory");
}

void copyPastCache(const unsigned char* source, unsigned char* target, std::size_t bytes)
{
    constexpr std::size_t Line = 64;
    constexpr std::size_t Register = sizeof(__m128i);
    const std::size_t toLine = (Line - reinterpret_cast<std::uintptr_t>(target) % Line) % Line;
    const std::size_t before = std::min(toLine, bytes);
    const std::size_t end = bytes - (bytes - before) % Line;
    copyPlainly(source, target, before);
    for (std::size_t i = before; i < end; i += Line) {
        __m128i line[Line / Register];
        for (std::size_t part = 0; part < Line / Register; ++part)
            line[part] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i + part * Register));
        for (std::size_t part = 0; part < Line / Register; ++part)
            _mm_stream_si128(reinterpret_cast<__m128i*>(target + i + part * Register), line[part]);
    }
    _mm_sfence();  // Whoever is told of the picture finds it: what is released later does not wait for such writes.
    copyPlainly(source + end, target + end, bytes - end);
}

#endif

const CopyKernels& orPlain(const CopyKernels* kernels)
{
    return kernels ? *kernels : CopyKernels::plain();
}

}  // namespace

const CopyKernels& CopyKernels::plain()
{
    static constexpr CopyKernels kernels{"plain", copyPlainly};
    return kernels;
}

const CopyKernels* CopyKernels::strings()
{
#if defined(HAS_COPIES)
    static constexpr CopyKernels kernels{"strings", copyByStrings};
    return hasFastStrings() ? &kernels : nullptr;
#else
    return nullptr;
#endif
}

const CopyKernels* CopyKernels::pastCache()
{
#if defined(HAS_COPIES)
    static constexpr CopyKernels kernels{"pastCache", copyPastCache};
    return &kernels;
#else
    return nullptr;
#endif
}

std::vector<const CopyKernels*> CopyKernels::available()
{
    std::vector<const CopyKernels*> all{&plain()};
    for (const CopyKernels* kernels : {strings(), pastCache()}) {
        if (kernels)
            all.push_back(kernels);
    }
    return all;
}

namespace {

constexpr std::size_t OwnCache = 1 << 20;  ///< Bytes that one processor's own cache holds; for those memcpy is as good.
constexpr std::size_t SharedCache = 16 << 20;  ///< Bytes of which the cache that all share holds too little.

void copyLarge(const CopyKernels& below, const unsigned char* source, unsigned char* target, std::size_t bytes)
{
    static const CopyKernels& pastCache = orPlain(CopyKernels::pastCache());
    (bytes < SharedCache ? below : pastCache).m_pfnCopy(source, target, bytes);
}

}  // namespace

void Pixels::copyPicture(const unsigned char* source, unsigned char* target, std::size_t bytes)
{
    copyLarge(CopyKernels::plain(), source, target, bytes);
}

void Pixels::copyPictureAside(const unsigned char* source, unsigned char* target, std::size_t bytes)
{
    static const CopyKernels& strings = orPlain(CopyKernels::strings());
    copyLarge(bytes < OwnCache ? CopyKernels::plain() : strings, source, target, bytes);
}
