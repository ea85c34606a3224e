#pragma once

#include <cstdlib>

// Ends the fuzz target, which keeps the input that led here.
inline void require(bool condition) {
    if (!condition)
        std::abort();
}
