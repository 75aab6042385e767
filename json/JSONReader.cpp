#include "json/JSONReader.h"

#include "platform/os/FileSystem.h"
#include "json/JSONBuilder.h"
#include "json/JSONScanner.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string_view>

KeltoMutex jsonEngineLock;

namespace {

/// Ends the scan that was begun, on every way out.
class ScanEnd {
public:
    ScanEnd() = default;
    ~ScanEnd() { endScan(); }

    ScanEnd(const ScanEnd&) = delete;
    ScanEnd& operator=(const ScanEnd&) = delete;
};

JSONValue parseScan() {
    const ScanEnd end;
    JSONBuilder builder;
    return jsonparse(builder) == 0 ? builder.takeResult() : JSONValue();
}

struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); } // it was only read
};

unsigned hexDigits(std::string_view digits) {
    unsigned code = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
    return code;
}

void appendUtf8(std::string& text, unsigned code) {
    const auto append = [&text](unsigned byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | code >> 6);
        append(0x80 | (code & 0x3F));
    } else {
        append(0xE0 | code >> 12);
        append(0x80 | (code >> 6 & 0x3F));
        append(0x80 | (code & 0x3F));
    }
}

/// Appends what the escape at the beginning of @p rest stands for. Returns the length of the escape.
std::size_t appendUnescaped(std::string& text, std::string_view rest) {
    static constexpr std::string_view kLetters = "\"/\\bfnrt";
    static constexpr std::string_view kMeanings = "\"/\\\b\f\n\r\t";
    if (rest.size() < 2)
        return rest.size();
    if (rest[1] == 'u') {
        const std::string_view digits = rest.substr(2, 4);
        appendUtf8(text, hexDigits(digits));
        return 2 + digits.size();
    }
    if (const std::size_t letter = kLetters.find(rest[1]); letter != std::string_view::npos)
        text += kMeanings[letter];
    return 2;
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
    return point - first > -exponent;
}

} // namespace

JSONValue parseJsonText(const char* text) {
    beginTextScan(text);
    return parseScan();
}

JSONValue parseJsonFile(const char* path) {
    if (os::isFolder(path)) // it would open
        return {};
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path, "r"));
    if (file == nullptr)
        return {};
    beginFileScan(file.get());
    return parseScan();
}

void unescapeText(std::string& text) {
    std::size_t backslash = text.find('\\');
    if (backslash == std::string::npos)
        return;
    std::string unescaped;
    unescaped.reserve(text.size());
    std::string_view rest = text;
    while (backslash != std::string_view::npos) {
        unescaped += rest.substr(0, backslash);
        rest.remove_prefix(backslash);
        rest.remove_prefix(appendUnescaped(unescaped, rest));
        backslash = rest.find('\\');
    }
    unescaped += rest;
    text = std::move(unescaped);
}

double parseFloat(JSONTokenText text) {
    std::string_view digits(text.bytes, text.size);
    const bool isNegative = digits.starts_with('-');
    if (isNegative || digits.starts_with('+'))
        digits.remove_prefix(1);
    double number = 0; // what is no number at all stays 0
    if (std::from_chars(digits.begin(), digits.end(), number).ec == std::errc::result_out_of_range)
        number = isLarge(digits) ? std::numeric_limits<double>::infinity() : 0;
    return isNegative ? -number : number;
}
