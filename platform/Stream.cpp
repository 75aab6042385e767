#include "platform/Stream.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>

namespace {

std::atomic<std::uint32_t> nextId = 0;

} // namespace

Stream::Stream() : Stream(kFileOrDeviceStream) {}

Stream::Stream(std::uint32_t kind) : m_id(nextId++), m_kind(kind) {}

Stream::~Stream() = default;

std::int32_t Stream::writeBytes(const std::vector<std::uint8_t>& bytes) {
    return write(bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

std::int32_t Stream::copyFrom(Stream& source, std::int32_t size) {
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[static_cast<std::size_t>(size)]);
    if (!buffer)
        return StreamFailed; // no stream throws
    const std::int32_t count = source.read(buffer.get(), size);
    return count < 0 ? count : write(buffer.get(), std::min(count, size));
}

std::uint32_t Stream::getId() const { return m_id; }

std::uint32_t Stream::getKind() const { return m_kind; }

std::uint32_t Stream::getStatus() const { return m_status; }
