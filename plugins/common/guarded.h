#pragma once

/**
 * Calls a function on behalf of a C entry point: what it throws ends here and becomes a null, zero or nothing.
 *
 * @return what the function returns
 */
template <typename Function>
auto guarded(Function function) -> decltype(function())
{
    try {
        return function();
    } catch (...) {
        return decltype(function())();
    }
}
