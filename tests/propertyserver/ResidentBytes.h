#pragma once

#include <cstddef>
#include <fstream>
#include <unistd.h>

/// Returns the memory of this process, 0 where a sanitizer keeps what was freed.
inline std::size_t residentBytes() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 0;
#else
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
#endif
}
