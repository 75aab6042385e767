#pragma once

#include "picl/JSONPICL.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Cuts bytes that come in pieces of any size into messages, for who cannot wait inside of a read.
///
/// Holds no more than what came and is not read yet. Belongs to one thread. Does not block.
class FrameReader {
public:
    enum class Result {
        Message,    ///< A message was read.
        Incomplete, ///< More bytes are needed for the next one.
        Refused, ///< The bytes are no message, or exceed a limit of frame:: or the memory; the reading ends.
    };

    /// Takes the next bytes of the stream.
    void take(std::string_view bytes);

    /// Reads the next message into @p message, which stays as it was if there is none.
    [[nodiscard]] Result next(JSONPICL& message);

    /// Returns how many bytes wait to be read.
    [[nodiscard]] std::size_t waiting() const { return m_bytes.size() - m_read; }

    /// Returns the bytes of the next frame if all of it is there, else nothing; of one that is too long, what
    /// is there. They stay until next() or take().
    [[nodiscard]] std::string_view nextFrame() const;

private:
    std::string m_bytes;
    std::size_t m_read = 0; // of m_bytes, in messages that were handed out
};
