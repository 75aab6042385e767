#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct JSONMember;
class JSONValue;

/// The kinds of a value.
enum class JSONValueType : std::uint8_t {
    IntValue = 0,
    FloatValue = 1,
    BoolValue = 2,
    StringValue = 3,
    ObjectValue = 4,
    ArrayValue = 5,
    NullValue = 6,
};

/// Values one after another, which it owns. Copies are deep.
///
/// Copying and destroying take no more of the thread's stack for a deep tree than for a flat one.
class JSONArray {
public:
    JSONArray() = default;
    explicit JSONArray(std::vector<JSONValue> items);
    ~JSONArray();
    JSONArray(const JSONArray& other);
    JSONArray(JSONArray&& other) noexcept = default;
    JSONArray& operator=(const JSONArray& other);
    JSONArray& operator=(JSONArray&& other) noexcept;

    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] bool empty() const { return m_items.empty(); }

    /// Returns the item at @p index. Throws std::out_of_range beyond the end.
    JSONValue& operator[](std::size_t index);
    const JSONValue& operator[](std::size_t index) const;

    /// Adds @p value behind the others; it may be one of them. References to items end.
    void append(const JSONValue& value);
    void append(JSONValue&& value);

    /// Makes room for @p count items.
    void reserve(std::size_t count);

    [[nodiscard]] auto begin() { return m_items.begin(); }
    [[nodiscard]] auto end() { return m_items.end(); }
    [[nodiscard]] auto begin() const { return m_items.begin(); }
    [[nodiscard]] auto end() const { return m_items.end(); }

private:
    friend class JSONTree;

    void release() noexcept;

    std::vector<JSONValue> m_items;
};

/// Values under keys, which it owns, in the order of the bytes of the keys. Copies are deep.
///
/// One sorted array: made for the few members of a message. A long object is best built at once.
class JSONObject {
public:
    using iterator = std::vector<JSONMember>::iterator;
    using const_iterator = std::vector<JSONMember>::const_iterator;

    JSONObject();

    /// Takes @p members in any order; of those with one key the first stays.
    explicit JSONObject(std::vector<JSONMember> members);
    ~JSONObject();
    JSONObject(const JSONObject& other);
    JSONObject(JSONObject&& other) noexcept;
    JSONObject& operator=(const JSONObject& other);
    JSONObject& operator=(JSONObject&& other) noexcept;

    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] bool empty() const { return m_members.empty(); }

    /// Returns the value under @p key; a missing one is added first, null. References to other members end.
    JSONValue& operator[](std::string_view key);

    /// Returns whether @p value was added: a key that is there keeps its value. References to members end.
    bool insert(std::string key, JSONValue value);

    /// Returns the member of this key, or end().
    [[nodiscard]] iterator find(std::string_view key);
    [[nodiscard]] const_iterator find(std::string_view key) const;

    [[nodiscard]] iterator begin() { return m_members.begin(); }
    [[nodiscard]] iterator end() { return m_members.end(); }
    [[nodiscard]] const_iterator begin() const { return m_members.begin(); }
    [[nodiscard]] const_iterator end() const { return m_members.end(); }

private:
    friend class JSONTree;

    void release() noexcept;

    std::vector<JSONMember> m_members;
};

/// One value of a JSON text, with a place for each kind side by side, of which `type` names the one that
/// counts. The others are empty in a new value and keep what they held through an assignment.
///
/// Belongs to one thread at a time.
class JSONValue {
public:
    JSONValue() = default;
    JSONValue(std::unsigned_integral auto value) requires(!std::same_as<decltype(value), bool>) = delete;
    JSONValue(std::signed_integral auto value) : intValue(value), type(JSONValueType::IntValue) {}
    JSONValue(double value) : floatValue(value), type(JSONValueType::FloatValue) {}
    JSONValue(std::same_as<bool> auto value) : boolValue(value), type(JSONValueType::BoolValue) {}
    JSONValue(const std::string& text) : textValue(text), type(JSONValueType::StringValue) {}
    JSONValue(std::string&& text) : textValue(std::move(text)), type(JSONValueType::StringValue) {}
    JSONValue(std::string_view text) : textValue(text), type(JSONValueType::StringValue) {}
    JSONValue(const char* text) : textValue(text), type(JSONValueType::StringValue) {}
    JSONValue(JSONObject object) : objectValue(std::move(object)), type(JSONValueType::ObjectValue) {}
    JSONValue(JSONArray&& array) : arrayValue(std::move(array)), type(JSONValueType::ArrayValue) {}

    ~JSONValue() = default;
    JSONValue(const JSONValue& other) = default;
    JSONValue(JSONValue&& other) noexcept = default;

    /// Takes the type of @p other and the place that it names; the other places stay as they are.
    JSONValue& operator=(const JSONValue& other);
    JSONValue& operator=(JSONValue&& other) noexcept;

    /// Takes all of @p other, which is not part of this value, and keeps nothing.
    void become(JSONValue&& other) noexcept;

    double floatValue = 0;
    std::int64_t intValue = 0;
    bool boolValue = false;
    std::string textValue; ///< As the application means it: no escapes.
    JSONObject objectValue;
    JSONArray arrayValue;
    JSONValueType type = JSONValueType::NullValue;
};

/// A key and its value. Requires: the key of a member that stands in an object is not changed.
struct JSONMember {
    JSONMember() = default;
    JSONMember(std::string theKey, JSONValue theValue) : key(std::move(theKey)), value(std::move(theValue)) {}
    JSONMember(std::string_view theKey, std::string_view text) : key(theKey), value(text) {}
    JSONMember(std::string_view theKey, std::same_as<std::string> auto&& text)
        : key(theKey), value(std::forward<decltype(text)>(text)) {}
    ~JSONMember() = default;

    // Whole: where members move up in an object, nothing of the one that stood there must stay.
    JSONMember(const JSONMember& other) = default;
    JSONMember(JSONMember&& other) noexcept = default;
    JSONMember& operator=(const JSONMember& other) { return *this = JSONMember(other); }
    JSONMember& operator=(JSONMember&& other) noexcept {
        key = std::move(other.key);
        value.become(std::move(other.value));
        return *this;
    }

    std::string key;
    JSONValue value;
};

inline JSONArray::~JSONArray() {
    if (!empty())
        release();
}

// Only here, where a member is a whole type: some compilers look into it at once.
inline JSONObject::JSONObject() = default;
inline JSONObject::JSONObject(JSONObject&& other) noexcept = default;

inline JSONObject::~JSONObject() {
    if (!empty())
        release();
}
