#include "platform/FileStream.h"

#include "platform/ByteBuffer.h"
#include "platform/WideText.h"
#include "platform/os/DeviceRoot.h"
#include "platform/os/FileBuffer.h"
#include "platform/os/FileSync.h"

#include <algorithm>

namespace {

std::ios::openmode standardMode(std::uint8_t mode) {
    std::ios::openmode result = std::ios::binary;
    if ((mode & FileRead) != 0)
        result |= std::ios::in;
    if ((mode & FileWrite) != 0)
        result |= std::ios::out;
    if ((mode & FileAppend) != 0)
        result |= std::ios::app;
    if ((mode & FileTruncate) != 0)
        result |= std::ios::trunc;
    if ((mode & FileAtEnd) != 0)
        result |= std::ios::ate;
    return result;
}

} // namespace

FileStream::FileStream(const std::wstring& path, std::uint8_t mode)
    : m_hostPath(os::hostPath(toNarrow(path))),
      m_buffer(os::openFileBuffer(m_hostPath, standardMode(mode))),
      m_file(m_buffer.get()),
      m_openMode(mode) {}

FileStream::~FileStream() { FileStream::close(); }

bool FileStream::isGood() const { return !m_file.fail(); }

std::int32_t FileStream::read(void* buffer, std::int32_t size) {
    m_file.read(static_cast<char*>(buffer), size);
    const auto count = static_cast<std::int32_t>(m_file.gcount());
    if (m_file.eof() && m_file.fail())
        return count; // the ordinary short read
    if (m_file.eof() && count == 0)
        return StreamAtEnd;
    return m_file.fail() ? StreamFailed : count;
}

std::int32_t FileStream::readInto(ByteBuffer& buffer, std::int32_t size) {
    return read(buffer.data(), std::min(size, buffer.capacity()));
}

std::int32_t FileStream::write(const void* buffer, std::int32_t size) {
    const std::int32_t result = (m_openMode & FileWrite) != 0 ? writeBlock(buffer, size) : StreamNotWritable;
    m_file.flush();
    return result;
}

std::int32_t FileStream::writeBlock(const void* buffer, std::int32_t size) {
    if ((m_openMode & FileAppend) != 0)
        m_file.seekp(0, std::ios::end); // where the host puts the block, but the stream does not know it
    const std::streamoff before = m_file.tellp();
    m_file.write(static_cast<const char*>(buffer), size);
    // Before the look at the state: what the host refuses now must not count as written.
    m_file.flush();
    const std::streamoff count = m_file.tellp() - before;
    if (m_file.eof() && count == 0)
        return StreamAtEnd;
    return m_file.fail() ? StreamFailed : static_cast<std::int32_t>(count);
}

// Uses the buffer: the stream itself does not seek after it has met the end.
std::uint32_t FileStream::size() {
    if (!m_buffer)
        return 0;
    const std::streamoff position = m_buffer->pubseekoff(0, std::ios::cur, std::ios::in);
    const std::streamoff length = m_buffer->pubseekoff(0, std::ios::end, std::ios::in);
    m_buffer->pubseekoff(position, std::ios::beg, std::ios::in);
    return length < 0 ? 0 : static_cast<std::uint32_t>(length);
}

bool FileStream::sync() {
    m_file.flush();
    return m_buffer && m_buffer->is_open() && !m_file.bad() && !os::syncFile(m_hostPath);
}

void FileStream::close() {
    if (!m_buffer || !m_buffer->is_open())
        return;
    m_file.flush();
    if (m_buffer->close() == nullptr)
        m_file.setstate(std::ios::failbit);
}
