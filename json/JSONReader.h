#pragma once

#include "platform/KeltoMutex.h"
#include "json/JSONValue.h"

#include <cstddef>
#include <limits>
#include <new>
#include <string>

/// Guards what the engine has once in the process. It is held for one parse or one print of a message, never
/// while a stream is read or written. It is there to the very
/// end of the process.
extern KeltoMutex& jsonEngineLock;

inline constexpr std::size_t kAnyNumberOfValues = std::numeric_limits<std::size_t>::max();

/// Thrown for a text with more values than its reader accepts. Each value takes many times the memory of its
/// text, so this is one way to run out of memory.
class TooManyValues : public std::bad_alloc {
public:
    [[nodiscard]] const char* what() const noexcept override { return "too many values in a JSON text"; }
};

/// Reads a JSON text, up to its first zero byte. More is taken than RFC 8259 allows:
/// strings in single quotes, a comma behind an opening bracket, numbers such as "+5", "007" and ".5", and
/// every byte that begins no token is skipped. Less is given: whole numbers are what atoi() makes of them, of
/// equal keys the first stays, a "\u0000" ends its text, surrogates are not joined.
///
/// Returns null, the value, if the text is not accepted; prints "error: syntax error" on standard error then,
/// or "error: memory exhausted" if brackets are nested too deep (some thousands of them). The time is
/// proportional to the length of the text. Throws TooManyValues if objects and arrays have more than
/// @p maxValues members and items in all, and std::bad_alloc if memory runs out; the next parse works.
/// Thread-safe. Requires: less than 2^31 bytes.
[[nodiscard]] JSONValue parseJsonText(const char* text, std::size_t maxValues = kAnyNumberOfValues)
    KELTO_REQUIRES(jsonEngineLock);

/// Reads the JSON text of a file, as parseJsonText() does; a zero byte is skipped. @p path is one of the
/// host. Returns null, the value, also if there is no such regular file or it has more than os::kMaxFileSize
/// bytes. Ends the process with status 2 if the medium fails. Thread-safe. Blocks for the medium.
[[nodiscard]] JSONValue parseJsonFile(const char* path) KELTO_REQUIRES(jsonEngineLock);

/// Replaces the escapes of a string in double quotes, RFC 8259 section 7, by what they stand for, each "\u"
/// by its own one to three bytes of UTF-8. A backslash before any other byte goes, with that byte.
void unescapeText(std::string& text);
