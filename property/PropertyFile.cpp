#include "property/PropertyFile.h"

#include "platform/os/FileSystem.h"
#include "prefs/FileHelpers.h"
#include "property/Property.h"
#include "property/PropertyKey.h"

#include <boost/crc.hpp>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace {

using MaximDow = boost::crc_optimal<16, 0x8005, 0, 0xFFFF, true, true>;
using Remainder = boost::crc_optimal<16, 0x8005, 0, 0, true, true>; // the same, not complemented

constexpr char kLineEnd = '\n';
constexpr char kKeyEnd = '|';
constexpr char kPrefixEnd = '=';

// Calls @p take with each line; with the piece behind the last line end, too, if @p withRest.
template <typename Take>
void forEachLine(std::string_view text, bool withRest, Take take) {
    while (!text.empty()) {
        const std::size_t end = text.find(kLineEnd);
        if (end == std::string_view::npos) {
            if (withRest)
                take(text);
            return;
        }
        take(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
}

std::string_view keyOf(std::string_view line) {
    const std::size_t keyEnd = line.find(kKeyEnd);
    return keyEnd == std::string_view::npos ? std::string_view() : line.substr(0, keyEnd);
}

bool parseLine(std::string_view line, PropertyFileEntries& entries) {
    const std::string_view key = keyOf(line);
    if (key.empty())
        return false;
    const std::size_t prefixEnd = line.find(kPrefixEnd, key.size());
    const bool hasValue = prefixEnd != std::string_view::npos;
    entries.assign({key, line.substr(0, prefixEnd), hasValue ? line.substr(prefixEnd + 1) : line});
    return true;
}

using Lines = std::vector<std::string_view>;

// Returns the line that @p change is to replace, or the end.
Lines::iterator placeOf(const PropertyFileLine& change, Lines& lines) {
    auto place = std::ranges::find_if(
        lines, [&change](std::string_view line) { return line.starts_with(change.prefix()); });
    const std::string_view key = keyOf(change.text);
    for (auto line = place; line != lines.end() && !key.empty(); ++line) {
        if (keyOf(*line) == key)
            place = line;
    }
    return place;
}

// A CRC depends on the byte before at every byte. A long text is therefore checked in several parts side by
// side, and the checks of the parts are put together: that of a part is multiplied by x to the power of the
// bits behind it.
constexpr std::size_t kParts = 8;
constexpr std::size_t kWorthParts = 256; // bytes

constexpr std::uint16_t kReflectedPolynomial = 0xA001;
constexpr std::uint16_t kOne = 0x8000; // x to the power of 0, reflected
constexpr std::uint16_t kXToTheEighth = 0x80;

constexpr std::uint16_t multiplied(std::uint16_t a, std::uint16_t b) {
    unsigned product = 0;
    unsigned shifted = a;
    for (unsigned bit = kOne; bit != 0; bit >>= 1) {
        if ((b & bit) != 0)
            product ^= shifted;
        shifted = (shifted & 1) != 0 ? (shifted >> 1) ^ kReflectedPolynomial : shifted >> 1;
    }
    return static_cast<std::uint16_t>(product);
}

// Returns x to the power of the bits in @p bytes bytes: what a remainder is multiplied by when so many follow
// it.
constexpr std::uint16_t powerOfBytes(std::size_t bytes) {
    std::uint16_t result = kOne;
    for (std::uint16_t power = kXToTheEighth; bytes != 0; bytes >>= 1) {
        if ((bytes & 1) != 0)
            result = multiplied(result, power);
        power = multiplied(power, power);
    }
    return result;
}

std::uint16_t remainderInParts(std::string_view bytes) {
    const std::size_t length = bytes.size() / kParts;
    std::array<Remainder, kParts> parts;
    for (std::size_t i = 0; i < length; ++i) {
        for (std::size_t part = 0; part < kParts; ++part)
            parts[part].process_byte(static_cast<unsigned char>(bytes[part * length + i]));
    }
    std::uint16_t whole = 0;
    const std::uint16_t onePart = powerOfBytes(length);
    for (const Remainder& part : parts)
        whole = multiplied(whole, onePart) ^ part.checksum();
    const std::string_view behind = bytes.substr(kParts * length);
    Remainder rest;
    rest.process_bytes(behind.data(), behind.size());
    return multiplied(whole, powerOfBytes(behind.size())) ^ rest.checksum();
}

} // namespace

std::uint16_t fileCheck(std::string_view bytes) {
    if (bytes.size() >= kWorthParts)
        return static_cast<std::uint16_t>(~remainderInParts(bytes));
    MaximDow crc;
    crc.process_bytes(bytes.data(), bytes.size());
    return crc.checksum();
}

std::string withFileCheck(std::string lines) {
    const std::uint16_t check = fileCheck(lines);
    lines += static_cast<char>(check & 0xFF);
    lines += static_cast<char>(check >> 8);
    return lines;
}

bool hasGoodFileCheck(std::string_view file) {
    if (file.size() <= kFileCheckSize)
        return false;
    const std::string_view stored = file.substr(file.size() - kFileCheckSize);
    const auto low = static_cast<unsigned char>(stored[0]);
    const auto high = static_cast<unsigned char>(stored[1]);
    return fileCheck(file.substr(0, file.size() - kFileCheckSize)) == (low | high << 8);
}

bool parsePropertyFile(std::string file, PropertyFileEntries& entries) {
    if (!hasGoodFileCheck(file))
        return false;
    std::string_view lines = entries.keep(std::move(file));
    lines.remove_suffix(kFileCheckSize);
    entries.reserve(static_cast<std::size_t>(std::ranges::count(lines, kLineEnd)));
    bool allGood = true;
    forEachLine(lines, false, [&](std::string_view line) { allGood = parseLine(line, entries) && allGood; });
    return allGood;
}

bool isGoodPropertyFile(std::string_view file) {
    if (!hasGoodFileCheck(file))
        return false;
    bool allGood = true;
    forEachLine(file.substr(0, file.size() - kFileCheckSize), false,
                [&](std::string_view line) { allGood = allGood && !keyOf(line).empty(); });
    return allGood;
}

std::optional<std::string> readPropertyFile(const std::wstring& path) {
    std::optional<std::string> bytes = readFile(path);
    if (!bytes && !pathExists(path))
        bytes.emplace();
    return bytes;
}

std::string propertyLinePrefix(const Property& property) {
    return fullKey(property.getGroupGuid(), property.getGuid()) + kKeyEnd + property.getGroupName() + ':' +
           property.getName();
}

std::string linesWithKeys(std::string_view file) {
    std::string lines;
    file.remove_suffix(std::min(file.size(), kFileCheckSize));
    forEachLine(file, false, [&lines](std::string_view line) {
        if (!keyOf(line).empty())
            lines.append(line).append(1, kLineEnd);
    });
    return lines;
}

PropertyFileLine::PropertyFileLine(std::string_view linePrefix, std::string_view value)
    : prefixSize(linePrefix.size()) {
    text.reserve(linePrefix.size() + 1 + value.size());
    text.append(linePrefix).append(1, kPrefixEnd).append(value);
}

MergedLines mergeLines(std::string_view lines, std::span<const PropertyFileLine> changes) {
    Lines result;
    forEachLine(lines, true, [&result](std::string_view line) { result.push_back(line); });
    MergedLines merged;
    std::size_t size = lines.size() + 1 + kFileCheckSize; // the last line may lack its end
    for (const PropertyFileLine& change : changes) {
        const auto place = placeOf(change, result);
        const std::size_t oldSize = place != result.end() ? place->size() + 1 : 0;
        const std::size_t newSize = size - oldSize + change.text.size() + 1;
        if (newSize > os::kMaxFileSize)
            continue;
        size = newSize;
        if (place != result.end()) {
            *place = change.text;
        } else {
            result.emplace_back(change.text);
            merged.hasNewLine = true;
        }
    }
    for (const std::string_view line : result) {
        merged.lines += line;
        merged.lines += kLineEnd;
    }
    return merged;
}
