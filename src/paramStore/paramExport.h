#pragma once

// Marks what the store library exports; everything else in it stays hidden.
#if defined(ARITHM_PARAM_BUILD)
#    define ARITHM_PARAM_API __attribute__((visibility("default")))
#else
#    define ARITHM_PARAM_API
#endif
