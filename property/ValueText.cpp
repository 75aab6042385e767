#include "property/ValueText.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r"; // of the C locale, whatever the process has set

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace

bool parseBoolean(std::string_view text) {
    return !std::ranges::equal(text, std::string_view("false"), {}, lowered);
}

std::uint32_t parseUInt32(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);

    std::uint32_t number = 0;
    const std::errc failure = std::from_chars(text.data(), text.data() + text.size(), number).ec;
    if (failure == std::errc::invalid_argument)
        throw std::invalid_argument("invalid stoul argument");
    if (failure == std::errc::result_out_of_range)
        throw std::out_of_range("stoul argument out of range");
    return isNegative ? 0U - number : number;
}
