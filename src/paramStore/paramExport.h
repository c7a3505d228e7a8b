#pragma once

// What the store library exports, and what stays inside it although it belongs to an exported class.
#if defined(ARITHM_PARAM_BUILD)
#define ARITHM_PARAM_API __attribute__((visibility("default")))
#else
#define ARITHM_PARAM_API
#endif
#define ARITHM_PARAM_LOCAL __attribute__((visibility("hidden")))
