#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

class JSONBuilder;

/// How the reader runs the scanner and the parser, which know one text at a time: a scan is begun, parsed and
/// ended. All under jsonEngineLock.

/// What stands between the quotes of a string: a part of the text that is read. One word, since the parser
/// copies it from stack to stack; so a text has less than 2^31 bytes.
class JSONTokenText {
public:
    JSONTokenText() = default;
    JSONTokenText(std::size_t begin, std::size_t end, bool hasEscapes)
        : m_bits(static_cast<std::uint64_t>(begin) << 32 | static_cast<std::uint64_t>(end) << 1 |
                 static_cast<std::uint64_t>(hasEscapes)) {}

    [[nodiscard]] std::size_t begin() const { return m_bits >> 32; }
    [[nodiscard]] std::size_t end() const { return (m_bits & 0xFFFFFFFF) >> 1; }

    /// Or a zero byte, at which the string ends.
    [[nodiscard]] bool hasEscapes() const { return (m_bits & 1) != 0; }

private:
    std::uint64_t m_bits;
};

/// Finds strings between double quotes, and the colons and commas between them: nearly all of a message.
/// The time is proportional to the length of the text.
class StringRun {
public:
    /// Requires: the bytes of @p text outlive this object.
    explicit StringRun(std::string_view text);

    /// Scans what begins with the double quote at @p at, as far as there is room for tokens. Returns how many
    /// bytes that were; 0 if no well-formed string begins there. Requires: all tokens are taken, and @p at
    /// grows from call to call.
    [[nodiscard]] std::size_t scan(std::size_t at);

    /// Takes the next token that was scanned. Returns 0 if there is none.
    int take(JSONTokenText& text) {
        if (m_taken == m_count)
            return 0;
        text = m_tokens[m_taken].text;
        return m_tokens[m_taken++].number;
    }

private:
    struct Token {
        int number;
        JSONTokenText text;
    };

    void add(int number, JSONTokenText text) { m_tokens[m_count++] = {number, text}; }
    [[nodiscard]] bool scanString(std::size_t& at);
    [[nodiscard]] bool scanSeparator(std::size_t& at);
    [[nodiscard]] std::size_t endOfBody(std::size_t at) const;

    std::string_view m_text;
    bool m_hasZeroBytes;
    std::array<Token, 64> m_tokens;
    std::size_t m_count = 0;
    std::size_t m_taken = 0;

    // Where the string that broke off last broke off. Every double quote between its beginning and that place
    // is an escaped one, so that a string from there would run into the same place: it is not tried. Without
    // this a text of quotes and backslashes takes the square of its length.
    std::size_t m_noneBefore = 0;
};

/// Begins a scan of @p text, which ends with two zero bytes. The scanner writes into it until endScan().
void beginScan(std::string& text);
void endScan();

/// Reads the text of the scan. Returns 0 on success.
int jsonparse(JSONBuilder& builder, StringRun& run);

/// Returns the number that the token of a number with a point or an exponent stands for, whatever the locale
/// of the process; 0 where there is no mantissa.
double parseFloat(std::string_view text);
