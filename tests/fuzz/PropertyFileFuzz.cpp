#include "property/PropertyFile.h"
#include "tests/fuzz/Check.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

bool readsAs(const PropertyFileEntries& entries, std::string_view key, std::string_view value) {
    const PropertyFileEntry* entry = entries.find(key);
    return entry != nullptr && entry->key == key && entry->value == value;
}

void checkBytes(const std::string& bytes) {
    PropertyFileEntries entries;
    const bool isGood = parsePropertyFile(bytes, entries);
    check(hasGoodFileCheck(bytes) || (!isGood && entries.empty()), "a wrong check gives nothing");
}

void checkKeyedLines(const std::string& lines, const PropertyFileEntries& entries) {
    PropertyFileEntries keyed;
    const std::string keyedLines = linesWithKeys(withFileCheck(lines));
    check(parsePropertyFile(withFileCheck(keyedLines), keyed) != keyedLines.empty(),
          "lines with keys are good");
    check(keyed.size() == entries.size(), "all lines that have a key are there");
    for (const PropertyFileEntry& entry : entries)
        check(readsAs(keyed, entry.key, entry.value), "lines with keys say the same");
}

/// Gives every other entry its key for a value. The piece behind the last line becomes a line then.
void checkMerge(const std::string& lines) {
    PropertyFileEntries entries;
    static_cast<void>(parsePropertyFile(withFileCheck(lines + '\n'), entries));
    std::vector<PropertyFileLine> changes{{"new group:new|n:n", "v"}};
    const auto isChanged = [](const PropertyFileEntry& entry) { return entry.key.size() % 2 != 0; };
    for (const PropertyFileEntry& entry : entries) {
        if (isChanged(entry))
            changes.emplace_back(entry.linePrefix, entry.key);
    }
    PropertyFileEntries merged;
    static_cast<void>(parsePropertyFile(withFileCheck(mergeLines(lines, changes).lines), merged));
    check(merged.find("new group:new") != nullptr, "a new line is there");
    for (const PropertyFileEntry& entry : entries)
        check(readsAs(merged, entry.key, isChanged(entry) ? entry.key : entry.value),
              "what is written reads back, what is not stays");
}

/// Lays the second half of the lines over the first, as an override.
void checkOverride(const std::string& lines, const PropertyFileEntries& entries) {
    const std::size_t half = lines.find('\n', lines.size() / 2) + 1; // 0 where there is none
    PropertyFileEntries file;
    PropertyFileEntries changes;
    static_cast<void>(parsePropertyFile(withFileCheck(lines.substr(0, half)), file));
    static_cast<void>(parsePropertyFile(withFileCheck(lines.substr(half)), changes));
    for (const PropertyFileEntry& entry : file.assignKnown(std::move(changes)))
        check(readsAs(file, entry.key, entry.value), "an override replaces what is known");
    for (const PropertyFileEntry& entry : file)
        check(readsAs(entries, entry.key, entry.value), "a later line counts");
}

} // namespace

/// A whole file, and at the same time lines without their check, so that a fuzzer need not find that.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    checkBytes(bytes);
    check(hasGoodFileCheck(withFileCheck(bytes)) != bytes.empty(), "the check that is added is right");

    PropertyFileEntries entries;
    static_cast<void>(parsePropertyFile(withFileCheck(bytes), entries));
    checkKeyedLines(bytes, entries);
    checkMerge(bytes);
    checkOverride(bytes, entries);
    for (const PropertyFileEntry& entry : entries)
        check(entries.take(entry.key) != nullptr, "what is there can be taken");
    check(entries.empty(), "nothing is left");
    return 0;
}
