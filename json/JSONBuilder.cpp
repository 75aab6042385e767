#include "json/JSONBuilder.h"

#include "json/JSONReader.h"

#include <algorithm>

namespace {

/// Gives back room that a list was given in vain, so that the tree is never more than twice its size.
template <typename List>
void fit(List& list) {
    if (list.capacity() > 2 * list.size())
        list.shrink_to_fit();
}

// Beyond it room is given as it is needed: thousands of containers may be open at once.
constexpr std::size_t kMostRoom = 64;

} // namespace

void JSONBuilder::openObject() {
    m_levels.emplace_back().members.reserve(std::min(m_lastMembers, kMostRoom));
}

void JSONBuilder::openArray() { m_levels.emplace_back().items.reserve(std::min(m_lastItems, kMostRoom)); }

void JSONBuilder::closeObject() {
    std::vector<JSONMember> members = std::move(m_levels.back().members);
    m_levels.pop_back();
    m_lastMembers = members.size();
    fit(members);
    set(JSONObject(std::move(members)));
}

void JSONBuilder::closeArray() {
    std::vector<JSONValue> items = std::move(m_levels.back().items);
    m_levels.pop_back();
    m_lastItems = items.size();
    fit(items);
    set(JSONArray(std::move(items)));
}

bool JSONBuilder::addMember(JSONTokenText key) {
    std::vector<JSONMember>& members = m_levels.back().members;
    if (m_valueIsText && !key.hasEscapes() && !m_valueText.hasEscapes())
        members.emplace_back(bytesOf(key), bytesOf(m_valueText));
    else
        members.emplace_back(textOf(key), takeValue());
    return takeRoom();
}

bool JSONBuilder::addItem() {
    m_levels.back().items.push_back(takeValue());
    return takeRoom();
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
