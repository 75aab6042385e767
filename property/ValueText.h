#pragma once

#include <cstdint>
#include <string_view>

/// How the text of a value is read: by whoever sets it, from a file and from the wire alike.

/// Returns false for "false" in whatever case of its letters, true for every other text. Thread: any.
[[nodiscard]] bool parseBoolean(std::string_view text);

/// Reads @p text as strtoul() does in base 10 where an unsigned long has 32 bits: white space and a sign may
/// lead, what follows the digits is ignored, "-1" is 4294967295. Throws std::invalid_argument where there is
/// no number and std::out_of_range where its digits say more than 4294967295. Thread: any.
[[nodiscard]] std::uint32_t parseUInt32(std::string_view text);
