#pragma once

#include "json/JSONValue.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Puts a tree together while the parser reduces: what is read stands on two stacks, and a bracket that
/// closes takes what is its own from their tops, into containers of exactly its size. What a parse leaves
/// behind that fails goes with the builder.
class JSONBuilder {
public:
    void pushInt(std::int64_t number) { m_values.emplace_back(number); }
    void pushFloat(double number) { m_values.emplace_back(number); }
    void pushBool(bool truth) { m_values.emplace_back(truth); }
    void pushNull() { m_values.emplace_back(); }

    /// A text between double quotes, with its escapes; it ends at its first zero byte.
    void pushEscapedText(std::string_view text);
    void pushText(std::string_view text) { m_texts.emplace_back(text); }

    /// Makes the last text the last value.
    void turnTextIntoValue();

    /// Makes the last @p count texts and values the members of one object, which becomes the last value.
    void closeObject(std::size_t count);

    /// Makes the last @p count values the items of one array, which becomes the last value.
    void closeArray(std::size_t count);

    /// Returns the last value.
    [[nodiscard]] JSONValue takeResult();

private:
    std::vector<JSONValue> m_values;
    std::vector<std::string> m_texts; // keys, and the text that is not yet known to be one
};
