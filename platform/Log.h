#pragma once

#include <string_view>

/// Writes @p message, @p detail and a line end to the standard error stream, which the service manager
/// records. For rare conditions that a person has to act on. Allocates nothing, so it works when memory has
/// run out. Thread-safe.
void logLine(std::string_view message, std::string_view detail = "") noexcept;
