#pragma once

#include <fstream>
#include <ios>
#include <memory>
#include <string>

namespace os {

/// Opens the file @p path, a path of the host, as std::filebuf::open() does, but close-on-exec. Returns null
/// on failure. Thread-safe.
[[nodiscard]] std::unique_ptr<std::filebuf> openFileBuffer(const std::string& path, std::ios::openmode mode);

} // namespace os
