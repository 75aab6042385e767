#pragma once

#include "platform/os/Descriptor.h"

#include <cstdint>

/// A free TCP port of 127.0.0.1, kept from everybody else. Connections are refused until listen().
class LoopbackPort {
public:
    LoopbackPort();

    /// Takes @p waiting connections and one more before they are accepted.
    void listen(int waiting = 1);

    [[nodiscard]] std::uint16_t number() const { return m_number; }

    /// Returns the other side of the connection that has waited longest. Blocks until there is one.
    [[nodiscard]] os::Descriptor accept() const;

private:
    os::Descriptor m_socket;
    std::uint16_t m_number = 0;
};
