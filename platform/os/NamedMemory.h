#pragma once

#include "platform/os/Descriptor.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <system_error>

namespace os {

/// Named memory of a fixed size that processes share: a file, accessed by reads and writes at offsets.
///
/// If a process truncates the file, an access fails; with a mapping it would end the process. Accesses are
/// coherent with mappings in other processes. The callers of read() and write() exclude each other with a
/// NamedMutex.
class NamedMemory {
public:
    /// Opens the memory @p name, or creates it with @p size bytes of zero and reserves its room. A file with
    /// any other size, except 0, is left alone. Thread-safe.
    NamedMemory(std::string_view name, std::size_t size);

    /// Copies the memory to @p bytes, which have its size. Returns false if the file is absent or truncated.
    [[nodiscard]] bool read(std::span<std::byte> bytes) const;

    /// Copies @p bytes to @p offset. Returns false if the file is absent or does not have its size, or if the
    /// medium is full. Requires: the bytes are within the size.
    [[nodiscard]] bool write(std::span<const std::byte> bytes, std::size_t offset = 0);

    /// Returns the reason if the memory could not be opened or created; no error otherwise.
    [[nodiscard]] std::error_code failure() const { return m_failure; }

private:
    std::size_t m_size;
    std::error_code m_failure;
    Descriptor m_file;
};

} // namespace os
