#pragma once

#include <cstddef>
#include <vector>

/// The forms of Pixels::copyPicture. All copy what memcpy copies.
struct CopyKernels
{
    using Copy = void (*)(const unsigned char* source, unsigned char* target, std::size_t bytes);

    const char* m_pchName;
    Copy m_pfnCopy;

    /// memcpy: the definition, and best for what fits into the cache of one processor.
    static const CopyKernels& plain();

    // Null where this build or this processor does not have them.
    static const CopyKernels* strings();    ///< The processor's own copy, which does not read what it overwrites.
    static const CopyKernels* pastCache();  ///< Writes straight to memory, for what no cache holds anyway.

    /// All that this processor has, the plain one first.
    static std::vector<const CopyKernels*> available();
};
