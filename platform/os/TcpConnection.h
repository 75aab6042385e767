#pragma once

#include "platform/os/Descriptor.h"

#include <chrono>
#include <cstdint>

namespace os {

/// How long a peer may take to answer. It is short because a user waits meanwhile, and long enough for a
/// request that was lost once to be repeated.
inline constexpr std::chrono::milliseconds kConnectLimit{3000};

/// Connects by TCP to the IPv4 @p address, which holds the octets in the order of its text in memory, and to
/// @p port, in the host's order. Small writes go out at once. Returns an absent descriptor if the peer
/// refuses, cannot be reached or does not answer within @p limit, and for the address 0.0.0.0.
/// Thread: any. Blocks at most for @p limit.
[[nodiscard]] Descriptor openTcpConnection(std::uint32_t address, std::uint16_t port,
                                           std::chrono::milliseconds limit = kConnectLimit);

/// Has the connection @p socket fail within about a minute after its peer was lost without a word, as by a
/// cable that is pulled. Where the host refuses, it takes hours.
void noticeLostPeer(int socket);

} // namespace os
