#pragma once

#include <cstddef>
#include <string_view>
#include <system_error>

namespace os {

/// A named piece of memory that processes share. Who reads and writes it brings the exclusion (NamedMutex).
class NamedMemory {
public:
    /// Makes the memory called @p name with @p size bytes of zero, or opens it if it exists, and maps it for
    /// reading and writing. What exists with any other size, but for 0, is left alone and not mapped. Thread:
    /// any.
    NamedMemory(std::string_view name, std::size_t size);
    ~NamedMemory();

    NamedMemory(const NamedMemory&) = delete;
    NamedMemory& operator=(const NamedMemory&) = delete;

    /// Returns the first byte, aligned for any type; null if the memory could not be mapped. Thread: any.
    [[nodiscard]] void* data() const { return m_data; }

    /// Returns why the memory is absent; no error if it is there.
    [[nodiscard]] std::error_code failure() const { return m_failure; }

private:
    std::size_t m_size;
    void* m_data = nullptr;
    std::error_code m_failure;
};

} // namespace os
