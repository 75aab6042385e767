#pragma once

#include <array>
#include <cstdint>
#include <string>

/// An IPv4 address from its text: four decimal numbers with points between them, such as "192.168.0.1". Zeros
/// in front of a number mean nothing, and one point may follow the last.
class IPv4Address {
public:
    /// Any other @p text gives an address that is not valid and has the octets 0.
    explicit IPv4Address(std::string text);

    [[nodiscard]] bool isValid() const { return m_valid; }

    /// Returns the octets as one word that holds them in the order of the text in memory, as the address
    /// record of a socket does.
    [[nodiscard]] std::uint32_t toUInt32() const;

private:
    std::array<std::uint8_t, 4> m_octets{};
    bool m_valid = false;
};
