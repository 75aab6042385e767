#include "json/JSONValue.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

/// What the containers do along a whole tree: with lists of what is still to do, where a function that calls
/// itself would need stack for each level.
class JSONTree {
public:
    /// Fills @p to, which is empty, with copies of what is in @p from.
    template <typename Container>
    static void copy(const Container& from, Container& to) {
        JSONTree tree;
        tree.copyFlat(from, to);
        while (tree.copyNextOf(tree.m_arrays) || tree.copyNextOf(tree.m_objects)) {
        }
    }

    /// Empties @p container. By itself for the depth of every message that means well: the lists cost more.
    template <typename Container>
    static void release(Container& container) noexcept {
        static thread_local int depth = 0;
        static constexpr int kShallow = 50;
        if (++depth > kShallow)
            tryToDismantle(container);
        elements(container).clear();
        --depth;
    }

private:
    template <typename Container>
    struct Copying {
        const Container* from;
        Container* to;
    };

    template <typename Container>
    static void tryToDismantle(Container& container) noexcept {
        try {
            dismantle(container);
        } catch (...) { // no memory for the lists: what is left goes by itself
        }
    }

    // Takes out what is more than one level deep.
    template <typename Container>
    static void dismantle(Container& container) {
        std::vector<JSONArray> arrays;
        std::vector<JSONObject> objects;
        takeDeepOnes(container, arrays, objects);
        while (!arrays.empty() || !objects.empty()) {
            if (!arrays.empty())
                takeDeepOnes(arrays, objects, takeLast(arrays));
            else
                takeDeepOnes(arrays, objects, takeLast(objects));
        }
    }

    static std::vector<JSONValue>& elements(JSONArray& array) { return array.m_items; }
    static const std::vector<JSONValue>& elements(const JSONArray& array) { return array.m_items; }
    static std::vector<JSONMember>& elements(JSONObject& object) { return object.m_members; }
    static const std::vector<JSONMember>& elements(const JSONObject& object) { return object.m_members; }

    static JSONValue& valueOf(JSONValue& item) { return item; }
    static const JSONValue& valueOf(const JSONValue& item) { return item; }
    static JSONValue& valueOf(JSONMember& member) { return member.value; }
    static const JSONValue& valueOf(const JSONMember& member) { return member.value; }

    template <typename Container>
    void copyFlat(const Container& from, Container& to) {
        elements(to).resize(elements(from).size());
        auto target = elements(to).begin();
        for (const auto& element : elements(from)) {
            if constexpr (requires { element.key; })
                target->key = element.key;
            copyFlat(valueOf(element), valueOf(*target));
            ++target;
        }
    }

    void copyFlat(const JSONValue& from, JSONValue& to) {
        to.floatValue = from.floatValue;
        to.intValue = from.intValue;
        to.boolValue = from.boolValue;
        to.textValue = from.textValue;
        to.type = from.type;
        if (!from.objectValue.empty())
            m_objects.push_back({&from.objectValue, &to.objectValue});
        if (!from.arrayValue.empty())
            m_arrays.push_back({&from.arrayValue, &to.arrayValue});
    }

    template <typename Container>
    bool copyNextOf(std::vector<Copying<Container>>& copyings) {
        if (copyings.empty())
            return false;
        const Copying<Container> next = copyings.back();
        copyings.pop_back();
        copyFlat(*next.from, *next.to);
        return true;
    }

    template <typename Container>
    static bool isNested(const Container& container) {
        return std::ranges::any_of(elements(container), [](const auto& element) {
            return !valueOf(element).arrayValue.empty() || !valueOf(element).objectValue.empty();
        });
    }

    template <typename Container>
    static void takeDeepOnes(Container& container, std::vector<JSONArray>& arrays,
                             std::vector<JSONObject>& objects) {
        for (auto& element : elements(container)) {
            JSONValue& value = valueOf(element);
            if (isNested(value.arrayValue))
                arrays.push_back(std::move(value.arrayValue));
            if (isNested(value.objectValue))
                objects.push_back(std::move(value.objectValue));
        }
    }

    template <typename Container>
    static void takeDeepOnes(std::vector<JSONArray>& arrays, std::vector<JSONObject>& objects,
                             Container container) {
        takeDeepOnes(container, arrays, objects);
    }

    template <typename Container>
    static Container takeLast(std::vector<Container>& containers) {
        Container last = std::move(containers.back());
        containers.pop_back();
        return last;
    }

    std::vector<Copying<JSONArray>> m_arrays;
    std::vector<Copying<JSONObject>> m_objects;
};

namespace {

/// Returns whether two members stand in the order of their keys. Mostly their first bytes tell.
bool areInOrder(const JSONMember& a, const JSONMember& b) {
    if (!a.key.empty() && !b.key.empty() && a.key.front() != b.key.front())
        return static_cast<unsigned char>(a.key.front()) < static_cast<unsigned char>(b.key.front());
    return a.key < b.key;
}

} // namespace

JSONArray::JSONArray(std::vector<JSONValue> items) : m_items(std::move(items)) {}

void JSONArray::release() noexcept { JSONTree::release(*this); }

JSONArray::JSONArray(const JSONArray& other) { JSONTree::copy(other, *this); }

// What this one held goes last: the other may be part of it.
JSONArray& JSONArray::operator=(const JSONArray& other) { return *this = JSONArray(other); }

JSONArray& JSONArray::operator=(JSONArray&& other) noexcept {
    JSONArray taken(std::move(other));
    m_items.swap(taken.m_items);
    return *this;
}

std::size_t JSONArray::size() const { return m_items.size(); }

JSONValue& JSONArray::operator[](std::size_t index) {
    if (index >= m_items.size())
        throw std::out_of_range("invalid vector<T> subscript");
    return m_items[index];
}

const JSONValue& JSONArray::operator[](std::size_t index) const {
    if (index >= m_items.size())
        throw std::out_of_range("invalid vector<T> subscript");
    return m_items[index];
}

void JSONArray::append(const JSONValue& value) { m_items.push_back(JSONValue(value)); }

void JSONArray::append(JSONValue&& value) {
    JSONValue taken = std::move(value); // out of the array first, if it is an item: the list may move
    m_items.push_back(std::move(taken));
}

void JSONArray::reserve(std::size_t count) { m_items.reserve(count); }

JSONObject::JSONObject(std::vector<JSONMember> members) : m_members(std::move(members)) {
    if (std::ranges::adjacent_find(m_members, std::not_fn(areInOrder)) == m_members.end())
        return;
    std::ranges::stable_sort(m_members, {}, &JSONMember::key);
    const auto haveOneKey = [](const JSONMember& a, const JSONMember& b) { return a.key == b.key; };
    m_members.erase(std::unique(m_members.begin(), m_members.end(), haveOneKey), m_members.end());
}

void JSONObject::release() noexcept { JSONTree::release(*this); }

JSONObject::JSONObject(const JSONObject& other) { JSONTree::copy(other, *this); }

JSONObject& JSONObject::operator=(const JSONObject& other) { return *this = JSONObject(other); }

JSONObject& JSONObject::operator=(JSONObject&& other) noexcept {
    JSONObject taken(std::move(other));
    m_members.swap(taken.m_members);
    return *this;
}

std::size_t JSONObject::size() const { return m_members.size(); }

JSONValue& JSONObject::operator[](std::string_view key) {
    const auto place = std::ranges::lower_bound(m_members, key, {}, &JSONMember::key);
    if (place != m_members.end() && place->key == key)
        return place->value;
    return m_members.insert(place, {std::string(key), {}})->value;
}

bool JSONObject::insert(std::string key, JSONValue value) {
    const auto place = std::ranges::lower_bound(m_members, key, {}, &JSONMember::key);
    if (place != m_members.end() && place->key == key)
        return false;
    m_members.insert(place, {std::move(key), std::move(value)});
    return true;
}

JSONObject::iterator JSONObject::find(std::string_view key) {
    const auto place = std::ranges::lower_bound(m_members, key, {}, &JSONMember::key);
    return place != m_members.end() && place->key == key ? place : m_members.end();
}

JSONObject::const_iterator JSONObject::find(std::string_view key) const {
    const auto place = std::ranges::lower_bound(m_members, key, {}, &JSONMember::key);
    return place != m_members.end() && place->key == key ? place : m_members.end();
}

JSONValue& JSONValue::operator=(const JSONValue& other) { return *this = JSONValue(other); }

// The other may be part of this value and go with the assignment: its type is taken first.
JSONValue& JSONValue::operator=(JSONValue&& other) noexcept {
    type = other.type;
    switch (type) {
    case JSONValueType::IntValue:
        intValue = other.intValue;
        break;
    case JSONValueType::FloatValue:
        floatValue = other.floatValue;
        break;
    case JSONValueType::BoolValue:
        boolValue = other.boolValue;
        break;
    case JSONValueType::StringValue:
        textValue = std::move(other.textValue);
        break;
    case JSONValueType::ObjectValue:
        objectValue = std::move(other.objectValue);
        break;
    case JSONValueType::ArrayValue:
        arrayValue = std::move(other.arrayValue);
        break;
    case JSONValueType::NullValue:
        break;
    }
    return *this;
}

void JSONValue::become(JSONValue&& other) noexcept {
    std::destroy_at(this);
    std::construct_at(this, std::move(other));
}
