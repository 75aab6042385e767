#include "json/JSONReader.h"

#include "platform/os/FileSystem.h"
#include "json/JSONBuilder.h"
#include "json/JSONScanner.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>

KeltoMutex& jsonEngineLock = *new KeltoMutex;

namespace {

constexpr std::size_t kLongestText =
    std::numeric_limits<std::int32_t>::max() - 2; // with the scanner's two zeros

/// A scan of a copy of the text, from its begin to its end, on every way out.
class Scan {
public:
    explicit Scan(std::string_view text) {
        m_buffer.reserve(text.size() + 2);
        m_buffer.append(text).append(2, '\0');
        beginScan(m_buffer);
    }
    ~Scan() { endScan(); }

    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;

private:
    std::string m_buffer;
};

JSONValue parse(std::string_view text, std::size_t maxValues) {
    if (text.size() > kLongestText)
        return {};
    const Scan scan(text);
    JSONBuilder builder(text, maxValues);
    StringRun run(text);
    return jsonparse(builder, run) == 0 ? builder.takeValue() : JSONValue();
}

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

} // namespace

JSONValue parseJsonText(const char* text, std::size_t maxValues) { return parse(text, maxValues); }

JSONValue parseJsonFile(const char* path) {
    std::string text;
    const std::error_code failure = os::readFile(path, text);
    if (failure == std::errc::io_error) {
        std::fputs("input in flex scanner failed\n", stderr);
        std::exit(2); // NOLINT(concurrency-mt-unsafe): the documented result, and under the engine's lock
    }
    return failure ? JSONValue() : parse(text, kAnyNumberOfValues);
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
