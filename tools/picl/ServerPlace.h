#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Where a property server listens.
struct ServerPlace {
    static constexpr std::uint16_t kPort = 9102;

    std::string host; ///< Empty: the device "PRN0:" of the device root.
    std::uint16_t port = kPort;

    /// Returns the place as a person finds it: the path of the socket, or host and port.
    [[nodiscard]] std::string description() const;
};

/// Reads "HOST" or "HOST:PORT"; an address with colons of its own stands in brackets where a port follows.
/// Returns nothing where @p text is none of these.
[[nodiscard]] std::optional<ServerPlace> parseServerPlace(std::string_view text);
