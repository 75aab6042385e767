#include "picl/JSONPICL.h"

#include "property/PropertyKey.h"

#include <array>
#include <cstddef>
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

JSONMember member(std::string_view key, std::string text) { return {std::string(key), std::move(text)}; }

template <typename... Members>
JSONValue item(Members&&... members) {
    std::vector<JSONMember> list;
    list.reserve(sizeof...(members));
    (list.push_back(std::forward<Members>(members)), ...);
    return JSONObject(std::move(list));
}

JSONValue itemOf(PropertyGetRequest request) {
    return item(member(kComponent, std::move(request.component)),
                member(kGuid, fullKey(request.group, request.guid)));
}

JSONValue itemOf(PropertySetRequest request) {
    return item(member(kComponent, std::move(request.component)),
                member(kGuid, fullKey(request.group, request.guid)),
                member(kValue, std::move(request.value)));
}

JSONValue itemOf(PropertyGetResponse response) {
    return item(member(kComponent, std::move(response.component)),
                member(kComponentString, std::move(response.componentString)),
                member(kGuid, fullKey(response.group, response.guid)),
                member(kGroupString, std::move(response.groupString)),
                member(kNameString, std::move(response.nameString)),
                member(kStatus, std::move(response.status)), member(kValue, std::move(response.value)));
}

template <typename Record>
void appendItem(JSONObject& message, std::string_view key, Record record) {
    JSONValue& list = message[key];
    JSONArray items = std::move(list.arrayValue);
    items.append(itemOf(std::move(record)));
    list = std::move(items);
}

template <typename Records>
void setItems(JSONObject& message, std::string_view key, Records& records) {
    JSONArray items;
    items.reserve(records.size());
    for (auto& record : records)
        items.append(itemOf(std::move(record)));
    message[key] = std::move(items);
}

/// An item as it is read: a field that is missing, or is no text, is empty.
class Item {
public:
    explicit Item(const JSONValue& value) : m_object(value.objectValue), m_key(splitKey(text(kGuid))) {}

    [[nodiscard]] std::string group() const { return std::string(m_key.groupGuid); }
    [[nodiscard]] std::string guid() const { return std::string(m_key.guid); }

    [[nodiscard]] const std::string& text(std::string_view key) const {
        static const std::string kNothing;
        JSONObject::const_iterator found;
        return findKey(m_object, key, found) ? found->value.textValue : kNothing;
    }

private:
    const JSONObject& m_object;
    SplitKey m_key;
};

void read(const Item& item, PropertyGetRequest& request) {
    request = {.component = item.text(kComponent), .group = item.group(), .guid = item.guid()};
}

void read(const Item& item, PropertySetRequest& request) {
    request = {.guid = item.guid(),
               .group = item.group(),
               .component = item.text(kComponent),
               .value = item.text(kValue)};
}

void read(const Item& item, PropertyGetResponse& response) {
    response = {.group = item.group(),
                .groupString = item.text(kGroupString),
                .guid = item.guid(),
                .nameString = item.text(kNameString),
                .value = item.text(kValue),
                .status = item.text(kStatus),
                .component = item.text(kComponent),
                .componentString = item.text(kComponentString)};
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

std::size_t escapedSize(std::string_view text) {
    std::size_t size = text.size();
    for (const char c : text) {
        const char escape = escapeOf(c);
        size += escape == 0 ? 0U : escape == 'u' ? 5U : 1U;
    }
    return size;
}

} // namespace

void JSONPICL::addSubscribeRequest(PropertyGetRequest request) {
    appendItem(m_object, keys::kSubscribeRequests, std::move(request));
}

void JSONPICL::addSubscribeRequests(std::unique_ptr<PropertyGetRequests> requests) {
    setItems(m_object, keys::kSubscribeRequests, *requests);
}

void JSONPICL::addSetRequest(PropertySetRequest request) {
    appendItem(m_object, keys::kSetRequests, std::move(request));
}

void JSONPICL::addGetResponses(std::unique_ptr<PropertyGetResponses> responses) {
    setItems(m_object, keys::kGetResponses, *responses);
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
