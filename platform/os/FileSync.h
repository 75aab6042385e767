#pragma once

#include <string>
#include <system_error>

namespace os {

/// Brings the data of the file at @p path, a path of the host, and its entry in its folder to the medium, so
/// that both survive a power cut. Returns what went wrong, if anything. Thread: any. Blocks as the medium
/// does.
[[nodiscard]] std::error_code syncFile(const std::string& path);

} // namespace os
