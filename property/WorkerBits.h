#pragma once

#include <cstdint>

/// The two bits of the event on which a worker thread of the property system waits.
constexpr std::uint32_t WorkBit = 1; ///< There is something to do.
constexpr std::uint32_t StopBit = 2; ///< End.
