#include "property/PropertyFileEntries.h"

#include <iterator>
#include <utility>

std::string_view PropertyFileEntries::keep(std::string bytes) {
    m_files.push_back(std::make_unique<const std::string>(std::move(bytes)));
    return *m_files.back();
}

void PropertyFileEntries::reserve(std::size_t lines) {
    m_entries.reserve(m_entries.size() + lines);
    m_index.reserve(m_index.size() + lines);
}

void PropertyFileEntries::assign(const PropertyFileEntry& entry) {
    const auto [place, isNew] = m_index.try_emplace(entry.key, m_entries.size());
    if (isNew)
        m_entries.push_back(entry);
    else
        m_entries[place->second] = entry;
}

void PropertyFileEntries::takeOverBytes(PropertyFileEntries& other) {
    std::ranges::move(other.m_files, std::back_inserter(m_files));
}

void PropertyFileEntries::assignAll(PropertyFileEntries other) {
    takeOverBytes(other);
    for (const PropertyFileEntry& entry : other)
        assign(entry);
}

std::vector<PropertyFileEntry> PropertyFileEntries::assignKnown(PropertyFileEntries other) {
    takeOverBytes(other);
    std::vector<PropertyFileEntry> known;
    for (const PropertyFileEntry& entry : other) {
        const PropertyFileEntry* own = find(entry.key);
        if (own == nullptr)
            continue;
        known.push_back({own->key, own->linePrefix, entry.value});
        assign(known.back());
    }
    return known;
}

const PropertyFileEntry* PropertyFileEntries::find(std::string_view key) const {
    const auto place = m_index.find(key);
    return place == m_index.end() ? nullptr : &m_entries[place->second];
}

const std::string_view* PropertyFileEntries::take(std::string_view key) {
    const auto place = m_index.find(key);
    if (place == m_index.end())
        return nullptr;
    const std::string_view* value = &m_entries[place->second].value;
    m_index.erase(place);
    return value;
}
