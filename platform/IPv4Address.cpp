#include "platform/IPv4Address.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <string_view>

namespace {

constexpr char kPoint = '.';

std::optional<std::uint8_t> octet(std::string_view component) {
    constexpr unsigned kLargest = 255;
    unsigned value = 0;
    for (const char digit : component) {
        if (digit < '0' || digit > '9')
            return {};
        value = value * 10 + static_cast<unsigned>(digit - '0');
        if (value > kLargest)
            return {};
    }
    return component.empty() ? std::nullopt : std::optional(static_cast<std::uint8_t>(value));
}

} // namespace

IPv4Address::IPv4Address(std::string text) {
    if (!text.ends_with(kPoint))
        text += kPoint; // so that one follows each component
    std::array<std::uint8_t, 4> octets{};
    if (std::ranges::count(text, kPoint) != static_cast<std::ptrdiff_t>(octets.size()))
        return;
    std::string_view rest = text;
    for (std::uint8_t& place : octets) {
        const std::size_t end = rest.find(kPoint);
        const auto value = octet(rest.substr(0, end));
        if (!value)
            return;
        place = *value;
        rest.remove_prefix(end + 1);
    }
    m_octets = octets;
    m_valid = true;
}

std::uint32_t IPv4Address::toUInt32() const { return std::bit_cast<std::uint32_t>(m_octets); }
