#pragma once

#include "platform/Stream.h"

#include <cstdint>
#include <fstream>
#include <istream>
#include <memory>
#include <string>

class ByteBuffer;

/// Bits of the mode of a FileStream. Those in use are FileRead, and FileWrite with FileTruncate.
enum FileMode : std::uint8_t {
    FileRead = 1,
    FileWrite = 2,
    FileAppend = 4,   ///< Every write goes to the end.
    FileTruncate = 8, ///< A file that exists is emptied at opening.
    FileAtEnd = 16,   ///< Starts at the end.
};

/// A file of bytes. Each write has left the program when it returns; sync() brings it to the medium.
class FileStream final : public Stream {
public:
    /// Opens the file at @p path, as the printer spells it (os::hostPath()), with the bits @p mode of
    /// FileMode.
    FileStream(const std::wstring& path, std::uint8_t mode);

    /// As close().
    ~FileStream() override;

    /// Returns whether no operation has failed so far, the opening included; reading beyond the end counts as
    /// one.
    [[nodiscard]] bool isGood() const;

    /// Reads on from the read position. Returns the bytes that came, fewer or none at the end of the file;
    /// StreamAtEnd where the end alone stopped it; StreamFailed.
    [[nodiscard]] std::int32_t read(void* buffer, std::int32_t size) override;

    /// As read(), at most the capacity of @p buffer.
    [[nodiscard]] std::int32_t readInto(ByteBuffer& buffer, std::int32_t size);

    /// Writes and hands all to the host. Returns the number of bytes; StreamNotWritable without FileWrite;
    /// StreamAtEnd for a stream that has read to its end; StreamFailed, also where the host takes only a
    /// part.
    [[nodiscard]] std::int32_t write(const void* buffer, std::int32_t size) override;

    /// Returns the length of the file in bytes, 0 if it could not be opened; the read position stays.
    [[nodiscard]] std::uint32_t size();

    /// Brings what was written, and the file's entry in its folder, to the medium. Returns whether it is
    /// there. Blocks as the medium does.
    [[nodiscard]] bool sync();

    /// Closes the file; if that fails, isGood() is false from then on.
    void close() override;

private:
    [[nodiscard]] std::int32_t writeBlock(const void* buffer, std::int32_t size);

    const std::string m_hostPath;
    const std::unique_ptr<std::filebuf> m_buffer; // null if the file could not be opened
    std::iostream m_file;
    const std::uint8_t m_openMode;
};
