#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process where a target finds that something does not hold.
inline void check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}
