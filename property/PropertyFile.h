#pragma once

#include "property/PropertyFileEntries.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

class Property;

/// The format of a property file: lines of bytes, each ended by 0x0A, and behind them a check of 16 bits, low
/// byte first. A line is
///
///     <group GUID>:<GUID>|<group name>:<name>=<value>
///
/// What stands before the first "=" behind the first "|" is the prefix of the line. Nothing is escaped or
/// converted: a value may hold any byte but 0x0A. Loading and writing share what is told here. Thread: any,
/// for all of it.

/// Bytes of the check at the end of a file.
constexpr std::size_t kFileCheckSize = 2;

/// Returns the check of @p bytes: CRC-16/MAXIM-DOW (polynomial 0x8005 reflected, initial value 0,
/// complemented).
std::uint16_t fileCheck(std::string_view bytes);

/// Returns @p lines with their check behind them.
std::string withFileCheck(std::string lines);

/// Returns whether @p file ends with the check of what stands before it, and something does.
bool hasGoodFileCheck(std::string_view file);

/// Reads the lines of @p file into @p entries, which keep the bytes; a later line replaces an earlier one of
/// the same key. Returns false if the check is wrong, and then leaves @p entries as they were, or if a line
/// has no key: then the others are read. Text behind the last 0x0A is not read.
bool parsePropertyFile(std::string file, PropertyFileEntries& entries);

/// Returns whether parsePropertyFile() would accept @p file.
bool isGoodPropertyFile(std::string_view file);

/// Returns the bytes of the file at @p path, no bytes if it is absent or larger than os::kMaxFileSize, or
/// nothing if it exists and cannot be read or is not a regular file. A relative path starts at the folder of
/// the program. Blocks for the medium.
std::optional<std::string> readPropertyFile(const std::wstring& path);

/// Returns the prefix of the line of @p property.
std::string propertyLinePrefix(const Property& property);

/// A line that is to stand in a file, without its 0x0A.
struct PropertyFileLine {
    PropertyFileLine(std::string_view linePrefix, std::string_view value);

    [[nodiscard]] std::string_view prefix() const { return std::string_view(text).substr(0, prefixSize); }

    std::string text;
    std::size_t prefixSize;
};

/// What became of lines that were put into a file.
struct MergedLines {
    std::string lines;
    bool hasNewLine = false; ///< Whether a line had to be added.
};

/// Returns the lines of @p file, which may be damaged, that have a key; not what stands behind the last 0x0A.
std::string linesWithKeys(std::string_view file);

/// Puts @p changes into @p lines, one after the other: each takes the place of the first line that begins
/// with its prefix, or of a later one with the same key, which would count instead; or it goes to the end.
/// A change with which the file would have more than os::kMaxFileSize bytes is left out. All other lines stay
/// as they are.
MergedLines mergeLines(std::string_view lines, std::span<const PropertyFileLine> changes);
