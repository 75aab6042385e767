#pragma once

#include <cstddef>

namespace os {

/// Lets this process open as many files and sockets as the host ever permits it. Returns how many. Thread:
/// any.
std::size_t raiseDescriptorLimit();

} // namespace os
