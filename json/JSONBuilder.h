#pragma once

#include "json/JSONScanner.h"
#include "json/JSONValue.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Builds a tree while the parser reduces. The open container takes each value before the parser reads the
/// next one. The builder owns everything that a parse allocates, so a parse that fails or throws leaks
/// nothing.
class JSONBuilder {
public:
    /// Requires: the bytes of @p text, in which the parser reads, outlive this object.
    JSONBuilder(std::string_view text, std::size_t maxValues) : m_text(text), m_valuesLeft(maxValues) {}

    // The value that was just read.
    void setInt(std::int64_t number) { set(number); }
    void setFloat(double number) { set(number); }
    void setBool(bool truth) { set(truth); }
    void setNull() { set({}); }
    void setText(JSONTokenText token) {
        m_valueText = token;
        m_valueIsText = true;
    }
    void closeObject();
    void closeArray();

    void openObject();
    void openArray();

    /// Moves the value into the open object. Throws TooManyValues beyond the limit.
    void addMember(JSONTokenText key);

    /// Moves the value into the open array. Throws TooManyValues beyond the limit.
    void addItem();

    /// Returns the value.
    [[nodiscard]] JSONValue takeValue();

    /// Returns memory for a larger stack of the parser; it lives as long as the builder.
    [[nodiscard]] void* growParserStack(std::size_t size);

private:
    /// A container that is not yet closed; of the two lists one is in use.
    struct Level {
        std::vector<JSONMember> members;
        std::vector<JSONValue> items;
    };

    void set(JSONValue value) {
        m_value.become(std::move(value));
        m_valueIsText = false;
    }

    [[nodiscard]] std::string_view bytesOf(JSONTokenText token) const {
        return m_text.substr(token.begin(), token.end() - token.begin());
    }
    [[nodiscard]] std::string textOf(JSONTokenText token) const;

    template <typename List>
    void makeRoom(List& list);

    std::string_view m_text;
    std::size_t m_valuesLeft;
    JSONValue m_value; // or, as most are, a text
    JSONTokenText m_valueText;
    bool m_valueIsText = false;
    std::vector<Level> m_levels;
    std::vector<std::unique_ptr<std::byte[]>> m_parserStacks;

    // The sizes of the last containers are a guess for the next ones: the items of a message are alike.
    std::size_t m_lastMembers = 0;
    std::size_t m_lastItems = 0;
};
