#pragma once

#include "platform/Stream.h"
#include "platform/os/InterruptibleDescriptor.h"

#include <cstddef>
#include <utility>

/// A stream over a descriptor that is open already, such as the other side of a device. It may be closed
/// while another thread is inside read() or write(), which then fails.
class HandleStream final : public Stream {
public:
    explicit HandleStream(os::Descriptor handle,
                          std::chrono::milliseconds stallLimit = os::InterruptibleDescriptor::kStallLimit)
        : m_handle(std::move(handle), stallLimit) {}

    std::int32_t read(void* buffer, std::int32_t size) override {
        const os::Transfer got = m_handle.read(buffer, static_cast<std::size_t>(size));
        return got.failure ? StreamFailed : static_cast<std::int32_t>(got.count);
    }

    std::int32_t write(const void* buffer, std::int32_t size) override {
        return m_handle.write(buffer, static_cast<std::size_t>(size)).failure ? StreamFailed : size;
    }

    void close() override { m_handle.close(); }

private:
    os::InterruptibleDescriptor m_handle;
};
