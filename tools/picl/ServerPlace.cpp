#include "tools/picl/ServerPlace.h"

#include "platform/os/DeviceRoot.h"

#include <algorithm>
#include <charconv>

namespace {

std::optional<std::uint16_t> parsePort(std::string_view text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [behind, failure] = std::from_chars(text.data(), end, port);
    if (failure != std::errc{} || behind != end || port == 0)
        return {};
    return port;
}

} // namespace

std::string ServerPlace::description() const {
    if (host.empty())
        return os::devicePath("PRN0:");
    return (host.find(':') == std::string::npos ? host : '[' + host + ']') + ':' + std::to_string(port);
}

std::optional<ServerPlace> parseServerPlace(std::string_view text) {
    std::string_view host = text;
    std::string_view behind;
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == std::string_view::npos)
            return {};
        host = text.substr(1, end - 1);
        behind = text.substr(end + 1);
    } else if (std::ranges::count(text, ':') == 1) {
        host = text.substr(0, text.find(':'));
        behind = text.substr(host.size());
    }
    ServerPlace place{.host = std::string(host)};
    if (!behind.empty()) {
        const std::optional<std::uint16_t> port =
            behind.starts_with(':') ? parsePort(behind.substr(1)) : std::nullopt;
        if (!port)
            return {};
        place.port = *port;
    }
    return host.empty() ? std::nullopt : std::optional(place);
}
