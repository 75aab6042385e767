#pragma once

#include <cstdint>
#include <vector>

// Results of Stream::read() and Stream::write() below 0.
inline constexpr std::int32_t StreamRetry = -1;       ///< The attempt failed, the stream stays usable.
inline constexpr std::int32_t StreamFailed = -2;      ///< The stream failed; a socket now counts as closed.
inline constexpr std::int32_t StreamAtEnd = -3;       ///< A file ended with nothing transferred.
inline constexpr std::int32_t StreamNotWritable = -4; ///< A file was not opened for writing.

// Kinds of streams.
inline constexpr std::uint32_t kFileOrDeviceStream = 0;
inline constexpr std::uint32_t kSocketStream = 1;

/// A pipe of bytes or a file, opened by the constructor of its class.
///
/// Nothing throws: a failure is a negative result. Takes no locks: one thread at a time reads and one at a
/// time writes, and the owner sees to that.
class Stream {
public:
    virtual ~Stream();

    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    /// Reads at most @p size bytes. Returns their number, or one of the results above. Requires: @p size is
    /// not negative. Blocks as the medium does.
    [[nodiscard]] virtual std::int32_t read(void* buffer, std::int32_t size) = 0;

    /// Writes all of @p bytes. Returns as write() does. Requires: at most 2^31 - 1 bytes. Blocks as the
    /// medium does.
    [[nodiscard]] virtual std::int32_t writeBytes(const std::vector<std::uint8_t>& bytes);

    /// Reads at most @p size bytes from @p source, once, and writes what came. Returns the failure of the
    /// reading or the result of the writing. Requires: @p size is not negative. Blocks as both media do.
    [[nodiscard]] virtual std::int32_t copyFrom(Stream& source, std::int32_t size);

    /// Writes @p size bytes. Returns how many the medium took, or one of the results above. Requires: @p size
    /// is not negative. Blocks as the medium does.
    [[nodiscard]] virtual std::int32_t write(const void* buffer, std::int32_t size) = 0;

    /// Releases the medium. May be repeated.
    virtual void close() = 0;

    /// Returns the number of this stream, which no other stream of the process ever has.
    [[nodiscard]] virtual std::uint32_t getId() const;

    [[nodiscard]] virtual std::uint32_t getKind() const;

    /// Returns 1.
    [[nodiscard]] virtual std::uint32_t getStatus() const;

protected:
    Stream();
    explicit Stream(std::uint32_t kind);

private:
    const std::uint32_t m_id;
    const std::uint32_t m_kind;
    const std::uint32_t m_status = 1;
};
