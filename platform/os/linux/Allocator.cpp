#include "platform/os/Allocator.h"

#include <malloc.h>

namespace os {

void returnFreedBlocks() {
    // The default value, but once it is set it no longer grows.
    ::mallopt(M_MMAP_THRESHOLD, 128 << 10); // NOLINT(concurrency-mt-unsafe): there is no other thread yet
}

} // namespace os
