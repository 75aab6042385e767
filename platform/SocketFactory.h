#pragma once

#include "platform/WindowsTCPClientSocket.h"

#include <cstdint>
#include <memory>

/// The one way to a connected socket. Its life spans the use of the host's sockets, which on Linux need
/// neither start nor stop.
class SocketFactory {
public:
    /// Returns a socket connected to @p port, in the host's order, of @p address; nothing if the address is
    /// not valid, or the peer refuses, cannot be reached or does not answer. Thread: any. Blocks at most for
    /// os::kConnectLimit.
    [[nodiscard]] std::unique_ptr<WindowsTCPClientSocket> createClientSocket(const IPv4Address& address,
                                                                             std::uint16_t port) const;
};
