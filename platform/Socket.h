#pragma once

#include "platform/IPv4Address.h"
#include "platform/Stream.h"

#include <cstdint>

/// A stream to a peer that is reached by IPv4 address and port.
class Socket : public Stream {
public:
    [[nodiscard]] const IPv4Address& address() const { return m_address; }

    /// Returns the port in the host's order.
    [[nodiscard]] std::uint16_t port() const { return m_port; }

protected:
    Socket(const IPv4Address& address, std::uint16_t port)
        : Stream(kSocketStream), m_address(address), m_port(port) {}

private:
    const IPv4Address m_address;
    const std::uint16_t m_port;
};
