#pragma once

#include <cerrno>
#include <system_error>

/// Linux only: how this floor calls the system.
namespace os {

/// Calls @p call again for as long as a signal interrupts it. Returns its result.
template <typename Call>
auto retried(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

/// Returns the reason of the system call that failed last on this thread.
inline std::error_code lastFailure() { return {errno, std::system_category()}; }

} // namespace os
