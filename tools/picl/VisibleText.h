#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts of other programs, for people and their terminals.

/// Returns @p text with its letters A to Z as small ones.
[[nodiscard]] std::string withoutCase(std::string_view text);

/// Returns whether @p text is UTF-8, RFC 3629.
[[nodiscard]] bool isUtf8(std::string_view text);

/// Returns @p text as UTF-8 on one line that does nothing to a terminal: control characters are escaped as in
/// "\n" or "\u001b", marks that turn the direction of writing too, and bytes that are no UTF-8 as in "\xff".
/// Every other character, a backslash too, stays.
[[nodiscard]] std::string visibleText(std::string_view text);

/// Returns how many columns of a terminal @p text takes. Requires: it is visible.
[[nodiscard]] std::size_t columnsOf(std::string_view text);

/// Returns @p text, or where it takes more than @p columns its beginning with "…" behind it. Requires: it is
/// visible.
[[nodiscard]] std::string cutToColumns(std::string_view text, std::size_t columns);
