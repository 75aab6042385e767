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

/// Puts a tree together while the parser reduces. A value that was just read is taken by the container that
/// is open before anything else is read, and goes straight into its place. What a parse leaves behind that
/// fails goes with the builder.
class JSONBuilder {
public:
    /// Requires: the bytes of @p text, in which the parser reads, outlive this object.
    JSONBuilder(std::string_view text, std::size_t mostValues) : m_text(text), m_room(mostValues) {}

    // What was read.
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

    /// Makes it a member of the open object. Returns false once there are more values than there may be.
    [[nodiscard]] bool addMember(JSONTokenText key);

    /// Makes it an item of the open array. Returns as addMember().
    [[nodiscard]] bool addItem();

    /// Returns it.
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

    /// Takes one from the values that there may still be. Returns false if there was none.
    [[nodiscard]] bool takeRoom() { return m_room > 0 && m_room-- > 0; }

    std::string_view m_text;
    std::size_t m_room; // for more values
    JSONValue m_value;  // or, as most are, a text
    JSONTokenText m_valueText;
    bool m_valueIsText = false;
    std::vector<Level> m_levels;
    std::vector<std::unique_ptr<std::byte[]>> m_parserStacks;

    // The last containers tell how much room the next ones are given: the items of a message are alike.
    std::size_t m_lastMembers = 0;
    std::size_t m_lastItems = 0;
};
