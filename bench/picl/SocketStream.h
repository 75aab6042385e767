#pragma once

#include "platform/Stream.h"
#include "platform/os/InterruptibleDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <utility>

/// A stream over a connected socket.
class SocketStream final : public Stream {
public:
    explicit SocketStream(os::Descriptor socket) : Stream(kSocketStream), m_socket(std::move(socket)) {}

    [[nodiscard]] std::int32_t read(void* buffer, std::int32_t size) override {
        return result(m_socket.read(buffer, static_cast<std::size_t>(size)));
    }
    [[nodiscard]] std::int32_t write(const void* buffer, std::int32_t size) override {
        return result(m_socket.write(buffer, static_cast<std::size_t>(size)));
    }
    void close() override { m_socket.close(); }

private:
    static std::int32_t result(const os::Transfer& transfer) {
        return transfer.failure ? StreamFailed : static_cast<std::int32_t>(transfer.count);
    }

    os::InterruptibleDescriptor m_socket;
};
