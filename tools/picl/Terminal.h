#pragma once

#include <cstddef>
#include <optional>

/// Returns whether the standard output goes to a terminal.
[[nodiscard]] bool outputIsTerminal();

/// Returns how many columns the terminal has that the standard output goes to; nothing where it goes
/// elsewhere.
[[nodiscard]] std::optional<std::size_t> terminalWidth();
