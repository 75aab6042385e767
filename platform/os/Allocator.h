#pragma once

namespace os {

/// Makes the allocator return every freed block of more than 128 KiB to the host at once. By default it keeps
/// such blocks after the first one is freed, and the gaps between them add to the memory of the process.
/// Requires: no other thread exists yet.
void returnFreedBlocks();

} // namespace os
