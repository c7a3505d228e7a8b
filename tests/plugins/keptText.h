#pragma once

#include <string>

/// Keeps a text until the next call on the same thread, as the C interfaces ask of a returned text.
inline char* keptText(const std::string& text)
{
    thread_local std::string kept;
    kept = text;
    return kept.data();
}
