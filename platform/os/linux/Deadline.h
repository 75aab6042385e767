#pragma once

#include <algorithm>
#include <chrono>
#include <climits>

/// Linux only: the moments until which this floor waits.
namespace os {

using Deadline = std::chrono::steady_clock::time_point;

inline constexpr Deadline kNever = Deadline::max();

/// Returns the milliseconds left until @p deadline, rounded up, as the system's waits take them: never below
/// 0, and -1 for kNever.
inline int remainingMs(Deadline deadline) {
    if (deadline == kNever)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Deadline::clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX));
}

} // namespace os
