#pragma once

#include <cstddef>
#include <limits>

/// Counts and fails the allocations of operator new in a test executable that is built with
/// AllocationProbe.cpp. Thread-safe.
namespace allocations {

/// Returns the bytes that are allocated now.
[[nodiscard]] std::size_t liveBytes();

/// Starts a new measurement of peakBytes().
void resetPeak();

/// Returns the most bytes that were allocated at a time since resetPeak().
[[nodiscard]] std::size_t peakBytes();

/// Makes allocations throw std::bad_alloc as long as it exists: the one of this number, counted from 1, and
/// all that are larger than a size. At most one object at a time.
class Failing {
public:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    explicit Failing(std::size_t number, std::size_t largestSize = kNone);
    ~Failing();

    Failing(const Failing&) = delete;
    Failing& operator=(const Failing&) = delete;

    /// Returns whether an allocation has failed.
    [[nodiscard]] bool hasFailed() const;
};

} // namespace allocations
