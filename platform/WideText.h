#pragma once

#include <string>
#include <string_view>

/// Wide text holds one byte in each character. It is converted character by character, without a code page.

/// Returns @p text with each character cut to 8 bits. Thread: any.
[[nodiscard]] std::string toNarrow(std::wstring_view text);

/// Returns @p text with each byte widened, 0x80 and above to U+0080 and above. Thread: any.
[[nodiscard]] std::wstring toWide(std::string_view text);
