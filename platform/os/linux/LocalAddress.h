#pragma once

#include <cstring>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>

/// Linux only: how a Unix socket is named to the system.
namespace os {

/// Returns the address of the Unix socket at @p path, or nothing where the path is too long for one.
inline std::optional<sockaddr_un> localAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return {};
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

/// Returns @p address as the system's calls take it, with the size of a sockaddr_un.
inline const sockaddr* generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

} // namespace os
