#pragma once

#include <cstdint>
#include <memory>

/// An owned array of bytes of one capacity, into which a file is read (FileStream::readInto()).
class ByteBuffer {
public:
    /// A buffer of @p capacity bytes of unknown value. Requires: @p capacity is not negative.
    explicit ByteBuffer(std::int32_t capacity)
        : m_bytes(new std::uint8_t[static_cast<std::size_t>(capacity)]), m_capacity(capacity) {}

    [[nodiscard]] std::uint8_t* data() { return m_bytes.get(); }
    [[nodiscard]] const std::uint8_t* data() const { return m_bytes.get(); }
    [[nodiscard]] std::int32_t capacity() const { return m_capacity; }

private:
    std::unique_ptr<std::uint8_t[]> m_bytes;
    std::int32_t m_capacity;
};
