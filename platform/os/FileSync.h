#pragma once

#include <string>
#include <system_error>

/// Brings files to the medium, by the paths that hostPath() gives. Thread-safe; blocks as the medium does.
namespace os {

/// Syncs the data of the file @p path and its entry in its folder, so that both survive a power cut. Returns
/// the reason of a failure.
[[nodiscard]] std::error_code syncFile(const std::string& path);

/// Syncs the folder that contains @p path, so that a file made or removed there survives a power cut. A
/// folder that cannot be synced (no right to read it, or a file system without this operation) is no failure.
/// Returns the reason of any other failure.
[[nodiscard]] std::error_code syncFolderOf(const std::string& path);

} // namespace os
