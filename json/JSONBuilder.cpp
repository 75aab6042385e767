#include "json/JSONBuilder.h"

#include "json/JSONReader.h"

#include <algorithm>

namespace {

// In elements. An item of a message has fewer fields; thousands of containers can be open at once.
constexpr std::size_t kMaxReserved = 8;

constexpr std::size_t kMaxGrowth = 16384; // in elements

} // namespace

/// Limits the memory of a long list to a little more than twice its elements, at each moment.
template <typename List>
void JSONBuilder::makeRoom(List& list) {
    if (m_valuesLeft-- == 0)
        throw TooManyValues();
    if (list.size() == list.capacity())
        list.reserve(list.size() + std::clamp<std::size_t>(list.size(), 1, kMaxGrowth));
}

void JSONBuilder::openObject() {
    m_levels.emplace_back().members.reserve(std::min(m_lastMembers, kMaxReserved));
}

void JSONBuilder::openArray() { m_levels.emplace_back().items.reserve(std::min(m_lastItems, kMaxReserved)); }

void JSONBuilder::closeObject() {
    std::vector<JSONMember> members = std::move(m_levels.back().members);
    m_levels.pop_back();
    m_lastMembers = members.size();
    members.shrink_to_fit();
    set(JSONObject(std::move(members)));
}

void JSONBuilder::closeArray() {
    std::vector<JSONValue> items = std::move(m_levels.back().items);
    m_levels.pop_back();
    m_lastItems = items.size();
    items.shrink_to_fit();
    set(JSONArray(std::move(items)));
}

void JSONBuilder::addMember(JSONTokenText key) {
    std::vector<JSONMember>& members = m_levels.back().members;
    makeRoom(members);
    if (m_valueIsText && !key.hasEscapes() && !m_valueText.hasEscapes())
        members.emplace_back(bytesOf(key), bytesOf(m_valueText));
    else
        members.emplace_back(textOf(key), takeValue());
}

void JSONBuilder::addItem() {
    std::vector<JSONValue>& items = m_levels.back().items;
    makeRoom(items);
    items.push_back(takeValue());
}

JSONValue JSONBuilder::takeValue() {
    return m_valueIsText ? JSONValue(textOf(m_valueText)) : std::move(m_value);
}

std::string JSONBuilder::textOf(JSONTokenText token) const {
    std::string text(bytesOf(token));
    if (token.hasEscapes()) {
        unescapeText(text);
        text.resize(std::min(text.find('\0'), text.size()));
    }
    return text;
}

void* JSONBuilder::growParserStack(std::size_t size) {
    return m_parserStacks.emplace_back(std::make_unique<std::byte[]>(size)).get();
}
