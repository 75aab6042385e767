#include "json/JSONPrinter.h"

#include "json/JSONValue.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <ostream>
#include <vector>

namespace {

/// Appends the text of a tree to a string, with a list of the containers that are open.
class Printer {
public:
    explicit Printer(std::string& text) : m_text(text) {}

    void print(const JSONValue& value) {
        put(value);
        closeAll();
    }

    void print(const JSONObject& object) {
        open(object);
        closeAll();
    }

    void print(const JSONArray& array) {
        open(array);
        closeAll();
    }

private:
    struct Level {
        const JSONObject* object; // one of the two
        const JSONArray* array;
        std::size_t next;
    };

    void open(const JSONObject& object) {
        m_text += '{';
        m_levels.push_back({&object, nullptr, 0});
    }

    void open(const JSONArray& array) {
        m_text += '[';
        m_levels.push_back({nullptr, &array, 0});
    }

    void closeAll() {
        while (!m_levels.empty()) {
            Level& level = m_levels.back();
            if (level.next == (level.object != nullptr ? level.object->size() : level.array->size()))
                close(level);
            else
                putNext(level);
        }
    }

    void close(const Level& level) {
        m_text += level.object != nullptr ? '}' : ']';
        m_levels.pop_back();
    }

    void putNext(Level& level) {
        if (level.next > 0)
            m_text += ',';
        const std::size_t index = level.next++;
        if (level.array != nullptr) {
            put((*level.array)[index]);
            return;
        }
        const JSONMember& member = level.object->begin()[static_cast<std::ptrdiff_t>(index)];
        putText(member.key);
        m_text.append(": ", 2);
        put(member.value);
    }

    void put(const JSONValue& value) {
        switch (value.type) {
        case JSONValueType::IntValue:
            putNumber(value.intValue);
            break;
        case JSONValueType::FloatValue:
            putNumber(value.floatValue, std::chars_format::fixed, 8);
            break;
        case JSONValueType::BoolValue:
            m_text += value.boolValue ? "true" : "false";
            break;
        case JSONValueType::StringValue:
            putText(value.textValue);
            break;
        case JSONValueType::ObjectValue:
            open(value.objectValue);
            break;
        case JSONValueType::ArrayValue:
            open(value.arrayValue);
            break;
        case JSONValueType::NullValue:
            m_text += "null";
            break;
        }
    }

    void putText(const std::string& text) {
        m_text += '"';
        m_text += text;
        m_text += '"';
    }

    // Not by a stream: that would print as the locale of the process has it.
    template <typename Number, typename... Format>
    void putNumber(Number number, Format... format) {
        std::array<char, std::numeric_limits<double>::max_exponent10 + 16> digits{};
        const auto end = std::to_chars(digits.begin(), digits.end(), number, format...).ptr;
        m_text.append(digits.begin(), end);
    }

    std::string& m_text;
    std::vector<Level> m_levels;
};

template <typename Tree>
std::ostream& printTree(std::ostream& out, const Tree& tree) {
    std::string text;
    Printer(text).print(tree);
    return out << text;
}

} // namespace

std::ostream& printValue(std::ostream& out, const JSONValue& value) { return printTree(out, value); }

std::ostream& printObject(std::ostream& out, const JSONObject& object) { return printTree(out, object); }

std::ostream& printArray(std::ostream& out, const JSONArray& array) { return printTree(out, array); }

void appendObject(std::string& text, const JSONObject& object) { Printer(text).print(object); }
