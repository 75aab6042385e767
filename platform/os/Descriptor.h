#pragma once

#include <utility>

namespace os {

/// Owns one descriptor of the operating system and closes it at its end.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int value) : m_value(value) {}
    Descriptor(Descriptor&& other) noexcept : m_value(std::exchange(other.m_value, kAbsent)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_value, other.m_value);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();

    [[nodiscard]] bool isOpen() const { return m_value >= 0; }
    [[nodiscard]] int value() const { return m_value; }

    /// Returns another descriptor of the same file, or an absent one where the host has none left.
    [[nodiscard]] Descriptor duplicate() const;

    /// Gives the descriptor away: the caller closes it.
    [[nodiscard]] int release() { return std::exchange(m_value, kAbsent); }

private:
    static constexpr int kAbsent = -1;
    int m_value = kAbsent;
};

} // namespace os
