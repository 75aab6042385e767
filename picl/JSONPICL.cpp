#include "picl/JSONPICL.h"

#include "property/PropertyKey.h"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <utility>
#include <vector>

namespace {

// The keys of an item.
constexpr std::string_view kComponent = "Component";
constexpr std::string_view kComponentString = "ComponentString";
constexpr std::string_view kGuid = "GUID"; // group GUID and GUID together
constexpr std::string_view kGroupString = "GroupString";
constexpr std::string_view kNameString = "NameString";
constexpr std::string_view kStatus = "Status";
constexpr std::string_view kValue = "Value";

struct Field {
    std::string_view key;
    std::string& text; // which the item takes
};

JSONValue item(std::initializer_list<Field> fields) {
    std::vector<JSONMember> members;
    members.reserve(fields.size());
    for (const Field& field : fields)
        members.emplace_back(field.key, std::move(field.text));
    return JSONObject(std::move(members));
}

JSONValue itemOf(PropertyGetRequest& request) {
    std::string key = fullKey(request.group, request.guid);
    return item({{kComponent, request.component}, {kGuid, key}});
}

JSONValue itemOf(PropertySetRequest& request) {
    std::string key = fullKey(request.group, request.guid);
    return item({{kComponent, request.component}, {kGuid, key}, {kValue, request.value}});
}

JSONValue itemOf(PropertyGetResponse& response) {
    std::string key = fullKey(response.group, response.guid);
    return item({{kComponent, response.component},
                 {kComponentString, response.componentString},
                 {kGuid, key},
                 {kGroupString, response.groupString},
                 {kNameString, response.nameString},
                 {kStatus, response.status},
                 {kValue, response.value}});
}

template <typename Record>
void appendItem(JSONObject& message, std::string_view key, Record record) {
    JSONValue& list = message[key];
    JSONArray items = std::move(list.arrayValue);
    items.append(itemOf(record));
    list = std::move(items);
}

template <typename Records>
void setItems(JSONObject& message, std::string_view key, Records& records) {
    JSONArray items;
    items.reserve(records.size());
    for (auto& record : records)
        items.append(itemOf(record));
    message[key] = std::move(items);
}

/// An item as it is read: a field that is missing, or is no text, is empty. Fields are found at once where
/// they are asked for in the order of their keys.
class Item {
public:
    explicit Item(const JSONValue& value) : m_object(value.objectValue), m_next(m_object.begin()) {}

    [[nodiscard]] const std::string& text(std::string_view key) {
        static const std::string kNothing;
        JSONObject::const_iterator found = m_next;
        if ((found == m_object.end() || found->key != key) && !findKey(m_object, key, found))
            return kNothing;
        m_next = std::next(found);
        return found->value.textValue;
    }

    template <typename Record>
    void readKey(Record& record) {
        const SplitKey key = splitKey(text(kGuid));
        record.group = key.groupGuid;
        record.guid = key.guid;
    }

private:
    const JSONObject& m_object;
    JSONObject::const_iterator m_next;
};

void read(Item item, PropertyGetRequest& request) {
    request.component = item.text(kComponent);
    item.readKey(request);
}

void read(Item item, PropertySetRequest& request) {
    request.component = item.text(kComponent);
    item.readKey(request);
    request.value = item.text(kValue);
}

void read(Item item, PropertyGetResponse& response) {
    response.component = item.text(kComponent);
    response.componentString = item.text(kComponentString);
    item.readKey(response);
    response.groupString = item.text(kGroupString);
    response.nameString = item.text(kNameString);
    response.status = item.text(kStatus);
    response.value = item.text(kValue);
}

template <typename Record>
void forEachRecord(const JSONObject& message, std::string_view key,
                   const std::function<void(Record)>& handle) {
    JSONObject::const_iterator list;
    if (!findKey(message, key, list))
        return;
    for (const JSONValue& value : list->value.arrayValue) {
        Record record;
        read(Item(value), record);
        handle(std::move(record));
    }
}

template <typename Record>
std::function<void(Record)> appendTo(std::deque<Record>& records) {
    return [&records](Record record) { records.push_back(std::move(record)); };
}

/// The letter behind the backslash of each byte that has one, 'u' for those that need a number, else 0.
constexpr std::array<char, 256> kEscapes = [] {
    std::array<char, 256> escapes{};
    for (std::size_t control = 0; control < 0x20; ++control)
        escapes[control] = 'u';
    escapes['\b'] = 'b';
    escapes['\t'] = 't';
    escapes['\n'] = 'n';
    escapes['\f'] = 'f';
    escapes['\r'] = 'r';
    escapes['"'] = '"';
    escapes['\\'] = '\\';
    return escapes;
}();

char escapeOf(char c) { return kEscapes[static_cast<unsigned char>(c)]; }

} // namespace

void JSONPICL::addSubscribeRequest(PropertyGetRequest request) {
    appendItem(m_object, keys::kSubscribeRequests, std::move(request));
}

void JSONPICL::addSubscribeRequests(std::unique_ptr<PropertyGetRequests> requests) {
    setItems(m_object, keys::kSubscribeRequests, *requests);
}

void JSONPICL::addGetRequest(PropertyGetRequest request) {
    appendItem(m_object, keys::kGetRequests, std::move(request));
}

void JSONPICL::addGetAll() { m_object[keys::kGetAll] = true; }

void JSONPICL::addSubscribeAll() { m_object[keys::kSubscribeAll] = true; }

void JSONPICL::addSetRequest(PropertySetRequest request) {
    appendItem(m_object, keys::kSetRequests, std::move(request));
}

void JSONPICL::addGetResponses(std::unique_ptr<PropertyGetResponses> responses) {
    setItems(m_object, keys::kGetResponses, *responses);
}

void JSONPICL::startGetResponses() { m_object[keys::kGetResponses] = JSONArray(); }

void JSONPICL::addGetResponse(PropertyGetResponse response) {
    appendItem(m_object, keys::kGetResponses, std::move(response));
}

void JSONPICL::addGetAllPropertiesResponse() { m_object[keys::kGetAllResponse] = true; }

void JSONPICL::addDisconnect() { m_object[keys::kDisconnect] = "True"; }

void JSONPICL::readGetRequests(PropertyGetRequests& requests) const { forEachGetRequest(appendTo(requests)); }

void JSONPICL::readSetRequests(PropertySetRequests& requests) const { forEachSetRequest(appendTo(requests)); }

void JSONPICL::readGetResponses(PropertyGetResponses& responses) const {
    forEachGetResponse(appendTo(responses));
}

void JSONPICL::forEachGetRequest(const std::function<void(PropertyGetRequest)>& handle) const {
    forEachRecord(m_object, keys::kGetRequests, handle);
    forEachSubscribeRequest(handle);
}

void JSONPICL::forEachSubscribeRequest(const std::function<void(PropertyGetRequest)>& handle) const {
    forEachRecord(m_object, keys::kSubscribeRequests, handle);
}

void JSONPICL::forEachSetRequest(const std::function<void(PropertySetRequest)>& handle) const {
    forEachRecord(m_object, keys::kSetRequests, handle);
}

void JSONPICL::forEachGetResponse(const std::function<void(PropertyGetResponse)>& handle) const {
    forEachRecord(m_object, keys::kGetResponses, handle);
}

bool JSONPICL::has(std::string_view key) const {
    JSONObject::const_iterator member;
    return findKey(m_object, key, member);
}

std::size_t escapedSize(std::string_view text) {
    std::size_t size = text.size();
    for (const char c : text) {
        const char escape = escapeOf(c);
        size += escape == 0 ? 0U : escape == 'u' ? 5U : 1U;
    }
    return size;
}

std::string escapeText(std::string_view text) {
    static constexpr std::string_view kDigits = "0123456789abcdef";
    const std::size_t size = escapedSize(text);
    if (size == text.size())
        return std::string(text);
    std::string escaped;
    escaped.reserve(size);
    for (const char c : text) {
        const char escape = escapeOf(c);
        if (escape == 0) {
            escaped += c;
            continue;
        }
        escaped += '\\';
        escaped += escape;
        if (escape == 'u')
            escaped.append("00").append({kDigits[static_cast<unsigned char>(c) >> 4], kDigits[c & 0xF]});
    }
    return escaped;
}

void escapeInPlace(std::string& text) {
    if (escapedSize(text) != text.size())
        text = escapeText(text);
}
