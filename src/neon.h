#pragma once

// For sources with a form for NEON: HAS_NEON where the compiler knows it, NEON before each of its functions, and
// whether this processor has it. A 32-bit build asks for it function by function, for not every such processor has it.
#if defined(__ARM_ARCH) && (defined(__aarch64__) || __ARM_ARCH >= 7)

#include <arm_neon.h>

#define HAS_NEON

#if defined(__aarch64__)
#define NEON
#else
#include <sys/auxv.h>
#define NEON __attribute__((target("fpu=neon")))
#endif

inline bool processorHasNeon()
{
#if defined(__aarch64__)
    return true;  // part of the architecture
#else
    constexpr unsigned long Neon = 1UL << 12;  // of AT_HWCAP, on 32-bit ARM
    return (::getauxval(AT_HWCAP) & Neon) != 0;
#endif
}

#endif
