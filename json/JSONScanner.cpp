#include "json/JSONScanner.h"

#include "JSONGrammar.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f'); }

/// Returns the length of the escape that @p rest begins with, or 0 where there is no such escape.
std::size_t escapeLength(std::string_view rest) {
    static constexpr std::size_t kWithCode = 6;
    if (rest.size() < 2)
        return 0;
    if (rest[1] == 'u')
        return rest.size() >= kWithCode && std::ranges::all_of(rest.substr(2, 4), isHexDigit) ? kWithCode : 0;
    return std::string_view("\"/\\bfnrt").find(rest[1]) != std::string_view::npos ? 2 : 0;
}

/// Returns whether a decimal number that no double can hold is too large, not too small.
bool isLarge(std::string_view digits) {
    const std::size_t mark = std::min(digits.find_first_of("eE"), digits.size());
    const std::string_view mantissa = digits.substr(0, mark);
    std::string_view exponentDigits = digits.substr(std::min(mark + 1, digits.size()));
    if (exponentDigits.starts_with('+'))
        exponentDigits.remove_prefix(1);
    std::int64_t exponent = 0;
    const char* const end = exponentDigits.data() + exponentDigits.size();
    if (std::from_chars(exponentDigits.data(), end, exponent).ec == std::errc::result_out_of_range)
        return !exponentDigits.starts_with('-');
    const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
    const auto first = static_cast<std::int64_t>(mantissa.find_first_not_of("0."));
    return exponent > first - point; // not the sum: it may be beyond 64 bits
}

constexpr std::uint64_t repeated(unsigned char byte) { return 0x0101010101010101U * byte; }

/// Returns a word whose lowest bit that is set is in the first byte of @p word that is @p byte; 0 if none is.
constexpr std::uint64_t markBytes(std::uint64_t word, unsigned char byte) {
    word ^= repeated(byte);
    return (word - repeated(0x01)) & ~word & repeated(0x80);
}

/// Returns where the first of the two stands from @p at on, or the end. Strings are most of a message, and
/// most are too short for what a call of memchr() costs: eight bytes at a time.
std::size_t findQuoteOrBackslash(std::string_view text, std::size_t at) {
    std::uint64_t word = 0;
    while (std::endian::native == std::endian::little && at + sizeof word <= text.size()) {
        std::memcpy(&word, text.data() + at, sizeof word);
        if (const std::uint64_t marks = markBytes(word, '"') | markBytes(word, '\\'); marks != 0)
            return at + static_cast<std::size_t>(std::countr_zero(marks)) / 8;
        at += sizeof word;
    }
    while (at < text.size() && text[at] != '"' && text[at] != '\\')
        ++at;
    return at;
}

} // namespace

StringRun::StringRun(std::string_view text)
    : m_text(text), m_hasZeroBytes(text.find('\0') != std::string_view::npos) {}

std::size_t StringRun::scan(std::size_t at) {
    const std::size_t begin = at;
    m_count = m_taken = 0;
    while (m_count < m_tokens.size() && (scanString(at) || scanSeparator(at))) {
    }
    return at - begin;
}

bool StringRun::scanString(std::size_t& at) {
    if (at < m_noneBefore || at == m_text.size() || m_text[at] != '"')
        return false;
    const std::size_t begin = at + 1;
    std::size_t end = findQuoteOrBackslash(m_text, begin);
    const bool hasEscapes = end < m_text.size() && m_text[end] == '\\';
    if (hasEscapes)
        end = endOfBody(end);
    if (end == m_text.size() || m_text[end] != '"') {
        m_noneBefore = end;
        return false;
    }
    add(DoubleQuotedString, {begin, end, hasEscapes || m_hasZeroBytes});
    at = end + 1;
    return true;
}

bool StringRun::scanSeparator(std::size_t& at) {
    if (m_count == 0 || at == m_text.size() || (m_text[at] != ':' && m_text[at] != ','))
        return false;
    add(m_text[at] == ':' ? Colon : Comma, {});
    do
        ++at;
    while (at < m_text.size() && m_text[at] == ' ');
    return true;
}

/// Returns where the closing quote of the string with an escape @p at stands, or what breaks it off: a bad
/// escape or the end.
std::size_t StringRun::endOfBody(std::size_t at) const {
    while (at < m_text.size() && m_text[at] == '\\') {
        const std::size_t length = escapeLength(m_text.substr(at));
        if (length == 0)
            break;
        at = findQuoteOrBackslash(m_text, at + length);
    }
    return at;
}

double parseFloat(std::string_view digits) {
    const bool isNegative = digits.starts_with('-');
    if (isNegative || digits.starts_with('+'))
        digits.remove_prefix(1);
    double number = 0;
    const std::errc failure = std::from_chars(digits.begin(), digits.end(), number).ec;
    if (failure == std::errc::invalid_argument)
        return 0;
    if (failure == std::errc::result_out_of_range)
        number = isLarge(digits) ? std::numeric_limits<double>::infinity() : 0;
    return isNegative ? -number : number;
}
