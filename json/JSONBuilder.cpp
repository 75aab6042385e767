#include "json/JSONBuilder.h"

#include "json/JSONReader.h"

#include <iterator>
#include <utility>

void JSONBuilder::pushEscapedText(std::string_view text) {
    std::string& pushed = m_texts.emplace_back(text);
    unescapeText(pushed);
    if (const std::size_t end = pushed.find('\0'); end != std::string::npos)
        pushed.resize(end);
}

void JSONBuilder::turnTextIntoValue() {
    m_values.emplace_back(std::move(m_texts.back()));
    m_texts.pop_back();
}

void JSONBuilder::closeObject(std::size_t count) {
    std::vector<JSONMember> members;
    members.reserve(count);
    const auto values = m_values.end() - static_cast<std::ptrdiff_t>(count);
    const auto keys = m_texts.end() - static_cast<std::ptrdiff_t>(count);
    for (auto [key, value] = std::pair(keys, values); key != m_texts.end(); ++key, ++value)
        members.push_back({std::move(*key), std::move(*value)});
    m_values.erase(values, m_values.end());
    m_texts.erase(keys, m_texts.end());
    m_values.emplace_back(JSONObject(std::move(members)));
}

void JSONBuilder::closeArray(std::size_t count) {
    const auto first = m_values.end() - static_cast<std::ptrdiff_t>(count);
    std::vector<JSONValue> items(std::make_move_iterator(first), std::make_move_iterator(m_values.end()));
    m_values.erase(first, m_values.end());
    m_values.emplace_back(JSONArray(std::move(items)));
}

JSONValue JSONBuilder::takeResult() { return std::move(m_values.back()); }
