#pragma once

#include <cstddef>
#include <vector>

/// The forms of the operations in pixels.h, one table for each kind of processor.
struct PixelKernels
{
    using Operation = void (*)(const unsigned char* source, unsigned char* target, std::size_t count);

    const char* m_pchName;
    Operation m_pfnExchange;
    Operation m_pfnGreyOfRgb;
    Operation m_pfnGreyOfBgrx;
    Operation m_pfnRgbOfBgrx;
    Operation m_pfnRgbOfGrey;

    /// Plain C++: what the others have to equal, and what they leave the last pixels of a row to.
    static const PixelKernels& plain();

    // Null where this build or this processor does not have them.
    static const PixelKernels* ssse3();
    static const PixelKernels* avx2();
    static const PixelKernels* avx512();
    static const PixelKernels* neon();

    /// All that this processor has, the plain one first and the fastest last.
    static std::vector<const PixelKernels*> available();
};
