#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Paths as the printer spells them, and what stands at them.
///
/// Either slash separates, and a relative path starts at the folder of the running program, never at the
/// current directory. Paths are mapped to the host's here, at the last moment, and text is converted
/// character by character. Nothing is kept between calls: a disk mounted later is seen by the next one.
/// No operation reports an error. Thread: any.

/// Returns @p path as an absolute path: one that holds a ':' or begins with a slash as it stands, any other
/// from the folder of the running program, with the kind of slash that it brought.
[[nodiscard]] std::wstring absolutePath(std::wstring_view path);
[[nodiscard]] std::string absolutePath(std::string_view path);

/// The rule behind absolutePath(), from @p folder. Each "..\" anywhere in @p path takes the last component
/// from @p folder for as long as it has one; only those at the beginning, and the ".\" there, are left out
/// of the result.
[[nodiscard]] std::wstring absolutePathFrom(std::wstring_view folder, std::wstring_view path);

/// Returns the folder of the running program, spelled with '\' and with none at its end; empty where the
/// host does not tell.
[[nodiscard]] std::wstring programFolder();

/// Returns whether something stands at @p path, of whatever kind.
[[nodiscard]] bool pathExists(std::wstring_view path);

/// Returns whether @p path is a folder. The empty path is none.
[[nodiscard]] bool isFolder(std::wstring_view path);

/// Returns the names in @p folder but for "." and "..", in byte order; none if it cannot be read.
[[nodiscard]] std::vector<std::wstring> listFolder(std::wstring_view folder);

/// Returns whether @p path is a regular file that opens for input.
[[nodiscard]] bool fileIsReadable(std::string_view path);

/// Returns the bytes of a file, or nothing if it is not a regular file or cannot be read. A file of more than
/// os::kMaxFileSize bytes counts as empty. Never waits for a FIFO or a device. Blocks for the medium.
[[nodiscard]] std::optional<std::string> readFile(std::wstring_view path);

/// Makes one folder. Returns whether it did: not if the path exists.
[[nodiscard]] bool createFolder(std::wstring_view path);

/// Copies as copyFileWhole() does, whatever comes of it. Returns whether @p destination exists afterwards,
/// which says nothing of its content.
bool copyFile(std::wstring_view source, std::wstring_view destination, bool overwrite);

/// Copies a file in place, over an existing one only where @p overwrite says so. Returns whether the whole
/// copy is on the medium. A copy for which there is no room leaves an existing destination as it was where
/// the host can tell beforehand; any other failure may leave a part of it.
/// Blocks until the medium has it.
[[nodiscard]] bool copyFileWhole(std::wstring_view source, std::wstring_view destination, bool overwrite);

/// Copies a file over another in one step: @p destination has its old content or the whole copy, also after a
/// failure or a power cut. Returns whether the copy is on the medium. Blocks until it is.
[[nodiscard]] bool replaceByCopy(std::wstring_view source, std::wstring_view destination);

/// Rewrites a file in place: passes its content, empty if it is absent, to @p edit and replaces it by the
/// result. A file of more than os::kMaxFileSize bytes counts as empty. A full medium leaves the file
/// unchanged where the file system can reserve room. Returns whether all of it is on the medium. Blocks until
/// it is.
[[nodiscard]] bool rewriteFile(std::wstring_view path,
                               const std::function<std::string(std::string_view)>& edit);

/// Removes a file. Returns whether it is gone from the medium. Blocks until the medium knows.
[[nodiscard]] bool removeFile(std::wstring_view path);
