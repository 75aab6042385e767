#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// Files and folders of the host, by the paths that hostPath() gives. An empty path names nothing.
namespace os {

/// Returns whether something stands at @p path, of whatever kind. Thread: any.
[[nodiscard]] bool pathExists(const std::string& path);

/// Returns whether @p path is a folder, or a link to one. Thread: any.
[[nodiscard]] bool isFolder(const std::string& path);

/// Returns whether @p path is a regular file that opens for input. Does not wait for the other end of a FIFO.
/// Thread-safe.
[[nodiscard]] bool fileIsReadable(const std::string& path);

/// The size up to which files are read: a larger one counts as empty, so that it cannot exhaust the memory.
inline constexpr std::size_t kMaxFileSize = std::size_t{1} << 20U;

/// Reads the regular file @p path into @p bytes. Returns the reason of a failure, which a path to anything
/// else is too; EIO only if the medium fails. Never waits for a FIFO or a device. Thread-safe. Blocks for the
/// medium.
[[nodiscard]] std::error_code readFile(const std::string& path, std::string& bytes);

/// Returns the names in @p folder but for "." and "..", in byte order, so that what depends on the order is
/// the same on every disk; none for a folder that cannot be read. Thread: any.
[[nodiscard]] std::vector<std::string> listFolder(const std::string& folder);

/// Makes one folder. Returns the reason of a failure, which an existing path is too. Thread: any.
[[nodiscard]] std::error_code createFolder(const std::string& path);

enum class ExistingFile { Refuse, Overwrite };

/// Writes the content of the regular file @p source into @p destination, in place. On success the whole copy
/// is on the medium, content and name. Where the room for it can be told beforehand and is not there,
/// @p destination keeps what it held; after any other failure it may hold part of the copy.
/// Returns the reason of a failure. Thread: any. Blocks until the medium has the copy.
[[nodiscard]] std::error_code copyFile(const std::string& source, const std::string& destination,
                                       ExistingFile existing);

/// Copies the regular file @p source over @p destination in one step: @p destination has its old content or
/// the whole copy, also after a failure or a power cut. Needs room for the temporary file @p destination
/// ".new". Returns the reason of a failure. Thread-safe. Blocks until the medium has the copy.
[[nodiscard]] std::error_code replaceByCopy(const std::string& source, const std::string& destination);

/// Rewrites the regular file @p path in place, through one descriptor: passes its content, as readFile()
/// reads it, to @p edit and replaces it by the result. Creates the file if it is absent. The room is reserved
/// first where the file system can do that, so a full medium leaves the file unchanged. After any other
/// failure to write, the file contains a part of the new content. Returns the reason of a failure.
/// Thread-safe. Blocks until content and name are on the medium.
[[nodiscard]] std::error_code rewriteFile(const std::string& path,
                                          const std::function<std::string(std::string_view)>& edit);

/// Removes the file @p path for good: it does not come back after a power cut.
/// Returns the reason of a failure. Thread: any. Blocks until the medium knows.
[[nodiscard]] std::error_code removeFile(const std::string& path);

} // namespace os
