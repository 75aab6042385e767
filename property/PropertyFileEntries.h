#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// What a property file says of one property: parts of a line.
struct PropertyFileEntry {
    std::string_view key; ///< The `fullKey`.
    std::string_view linePrefix;
    std::string_view value;
};

/// What property files say, by key, together with the bytes of the files to which it refers: a load copies no
/// line. Belongs to one thread at a time.
class PropertyFileEntries {
public:
    using const_iterator = std::vector<PropertyFileEntry>::const_iterator;

    /// Keeps @p bytes for as long as this object lives. Returns them at their place.
    std::string_view keep(std::string bytes);

    /// Puts @p entry in the place of the one with its key, or behind the others. Requires: it refers to bytes
    /// that are kept.
    void assign(const PropertyFileEntry& entry);

    /// Assigns all entries of @p other and takes over its bytes.
    void assignAll(PropertyFileEntries other);

    /// Gives the entries here the values that @p other has for their keys, and takes over its bytes. Returns
    /// those entries, with the line prefixes that they have here.
    std::vector<PropertyFileEntry> assignKnown(PropertyFileEntries other);

    /// Returns the entry, or null.
    [[nodiscard]] const PropertyFileEntry* find(std::string_view key) const;

    /// Removes the entry and returns its value; nothing is removed, and null returned, if there is none.
    /// The value stays good as long as this object.
    const std::string_view* take(std::string_view key);

    /// In the order in which their keys came first; what was taken still stands here.
    [[nodiscard]] const_iterator begin() const { return m_entries.begin(); }
    [[nodiscard]] const_iterator end() const { return m_entries.end(); }
    [[nodiscard]] std::size_t size() const { return m_index.size(); }
    [[nodiscard]] bool empty() const { return m_index.empty(); }

    /// Makes room for @p lines more entries.
    void reserve(std::size_t lines);

private:
    void takeOverBytes(PropertyFileEntries& other);

    std::vector<std::unique_ptr<const std::string>> m_files;
    std::vector<PropertyFileEntry> m_entries;
    std::unordered_map<std::string_view, std::size_t> m_index; // into m_entries
};
