#pragma once

#include <string>

/// Writes @p message and a line end to the standard error stream, which the service manager records.
/// For rare conditions that a person has to act on. Thread-safe.
void logLine(std::string message);
