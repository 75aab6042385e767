#pragma once

#include <cstddef>
#include <string_view>

/// The log of the server: lines on a descriptor that another program reads, or does not.
///
/// Nobody is waited for: a line that cannot be written at once is left out, and the next one that can tells
/// how many were. Belongs to one thread.
class ServerLog {
public:
    /// Who hands in @p descriptor owns it, and keeps it open.
    explicit ServerLog(int descriptor) : m_descriptor(descriptor) {}

    /// Writes the first 1024 bytes of @p sentence, as visibleText() shows them, as a line. Does not block.
    void write(std::string_view sentence);

private:
    const int m_descriptor;
    std::size_t m_lost = 0; // lines since the last one that was written
};
