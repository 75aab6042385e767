#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdint>
#include <cwchar>
#include <optional>

namespace {

struct Character {
    char32_t code = 0;
    std::size_t size = 1;
    bool isValid = false;
};

bool continues(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Requires: there is a byte.
Character firstOf(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80)
        return {.code = lead, .size = 1, .isValid = true};
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size ||
        !std::ranges::all_of(text.substr(1, size - 1), continues))
        return {};
    char32_t code = lead & (0x7FU >> size);
    for (const char c : text.substr(1, size - 1))
        code = code << 6 | (static_cast<unsigned char>(c) & 0x3FU);
    static constexpr std::array<char32_t, 5> kLowest{0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < kLowest[size] || isSurrogate || code > 0x10FFFF)
        return {};
    return {.code = code, .size = size, .isValid = true};
}

std::string hexadecimal(std::string_view prefix, std::uint32_t number, unsigned digits) {
    std::string text(prefix);
    while (digits-- > 0)
        text += "0123456789abcdef"[number >> (4 * digits) & 0xF];
    return text;
}

bool isControl(char32_t code) {
    const bool turns = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    const bool breaksLines = code == 0x2028 || code == 0x2029;
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || turns || breaksLines;
}

std::string escapeOf(char32_t code) {
    static constexpr std::string_view kControls = "\b\t\n\f\r";
    static constexpr std::string_view kLetters = "btnfr";
    const std::size_t index = code < 0x20 ? kControls.find(static_cast<char>(code)) : std::string_view::npos;
    if (index != std::string_view::npos)
        return {'\\', kLetters[index]};
    return hexadecimal("\\u", code, 4);
}

/// The widths of characters, which the host knows for each of its locales.
class Widths {
public:
    Widths() : m_locale(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}
    ~Widths() {
        if (m_locale != nullptr)
            ::freelocale(m_locale);
    }
    Widths(const Widths&) = delete;
    Widths& operator=(const Widths&) = delete;

    [[nodiscard]] std::size_t of(char32_t code) const {
        if (m_locale == nullptr || code < 0x80)
            return 1;
        const locale_t before = ::uselocale(m_locale);
        const int width = ::wcwidth(static_cast<wchar_t>(code));
        ::uselocale(before);
        return width < 0 ? 1 : static_cast<std::size_t>(width);
    }

private:
    locale_t m_locale;
};

std::size_t widthOf(char32_t code) {
    static const Widths kWidths;
    return kWidths.of(code);
}

} // namespace

std::string withoutCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const Character first = firstOf(text);
        if (!first.isValid)
            return false;
        text.remove_prefix(first.size);
    }
    return true;
}

std::string visibleText(std::string_view text) {
    std::string visible;
    while (!text.empty()) {
        const Character first = firstOf(text);
        if (!first.isValid)
            visible += hexadecimal("\\x", static_cast<unsigned char>(text.front()), 2);
        else if (isControl(first.code))
            visible += escapeOf(first.code);
        else
            visible += text.substr(0, first.size);
        text.remove_prefix(first.size);
    }
    return visible;
}

std::size_t columnsOf(std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) {
        const Character first = firstOf(text);
        columns += widthOf(first.code);
        text.remove_prefix(first.size);
    }
    return columns;
}

std::string cutToColumns(std::string_view text, std::size_t columns) {
    if (columnsOf(text) <= columns)
        return std::string(text);
    std::size_t size = 0;
    for (std::size_t used = 1; size < text.size();) { // the first column is that of the mark
        const Character next = firstOf(text.substr(size));
        used += widthOf(next.code);
        if (used > columns)
            break;
        size += next.size;
    }
    return std::string(text.substr(0, size)) + "…";
}
