#include "tests/propertyserver/ShortHand.h"

#include "picl/FrameReader.h"
#include "property/PropertyKey.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <utility>

namespace {

const std::map<std::string, std::string_view> kStatuses{
    {"tell", status::kSuccessful}, {"miss", status::kNotFound}, {"lose", status::kNoLongerAvailable}};

struct Item {
    explicit Item(const std::string& text) {
        const std::size_t slash = text.find('/');
        const std::size_t equals = std::min(text.find('='), text.size());
        component = text.substr(0, slash);
        const std::string key = text.substr(slash + 1, equals - slash - 1);
        group = splitKey(key).groupGuid;
        guid = splitKey(key).guid;
        value = text.substr(std::min(equals + 1, text.size()));
    }

    std::string component;
    std::string group;
    std::string guid;
    std::string value;
};

/// Collects verbs and items; a verb that is repeated is told once.
class Text {
public:
    void add(const std::string& verb) {
        if (std::exchange(m_verb, verb) != verb)
            m_text += (m_text.empty() ? "" : " ") + verb;
    }

    template <typename Record>
    void add(const std::string& verb, const Record& record, const std::string& value = {}) {
        add(verb);
        m_text += ' ' + record.component + '/' + fullKey(record.group, record.guid) + value;
    }

    [[nodiscard]] const std::string& text() const { return m_text; }

private:
    std::string m_text;
    std::string m_verb;
};

std::string verbOf(const PropertyGetResponse& report) {
    for (const auto& [verb, status] : kStatuses) {
        if (report.status == status)
            return verb;
    }
    return "status-" + report.status;
}

} // namespace

bool travel(JSONPICL& message, JSONPICL& received) {
    const std::string frame = message.toFrame();
    EXPECT_LE(frame.size(), frame::kHeaderSize + frame::kLargestText);
    FrameReader reader;
    reader.take(frame);
    return reader.next(received) == FrameReader::Result::Message && reader.waiting() == 0;
}

void write(const ShortHand& text, JSONPICL& message) {
    auto reports = std::make_unique<PropertyGetResponses>();
    std::istringstream words(text);
    std::string verb;
    for (std::string word; words >> word;) {
        if (word.find('/') == std::string::npos) {
            verb = word;
            if (verb == "get-all")
                message.addGetAll();
            else if (verb == "watch-all")
                message.addSubscribeAll();
            else if (verb == "all-there-is")
                message.addGetAllPropertiesResponse();
            else if (verb == "goodbye")
                message.addDisconnect();
            continue;
        }
        const Item item(word);
        if (verb == "get")
            message.addGetRequest({item.component, item.group, item.guid});
        else if (verb == "watch")
            message.addSubscribeRequest({item.component, item.group, item.guid});
        else if (verb == "set")
            message.addSetRequest({item.guid, item.group, item.component, item.value});
        else
            reports->push_back({.group = item.group,
                                .groupString = "a group",
                                .guid = item.guid,
                                .nameString = "a name",
                                .value = item.value,
                                .status = std::string(kStatuses.at(verb)),
                                .component = item.component,
                                .componentString = "a program"});
    }
    if (!reports->empty() || verb == "all-there-is" || verb == "tell")
        message.addGetResponses(std::move(reports));
}

ShortHand shortHand(const JSONPICL& message) {
    Text text;
    message.forEachSetRequest(
        [&](const PropertySetRequest& request) { text.add("set", request, '=' + request.value); });
    if (message.has(keys::kGetAllResponse))
        text.add("all-there-is");
    PropertyGetResponses reports;
    message.readGetResponses(reports);
    for (const PropertyGetResponse& report : reports)
        text.add(verbOf(report), report, report.status == status::kNotFound ? "" : '=' + report.value);
    if (message.has(keys::kGetAll))
        text.add("get-all");
    if (message.hasSubscribeAll())
        text.add("watch-all");
    PropertyGetRequests gets;
    message.readGetRequests(gets);
    const bool watches = message.has(keys::kSubscribeRequests);
    for (const PropertyGetRequest& request : gets) // the hub's messages have one kind of them
        text.add(watches ? "watch" : "get", request);
    return text.text();
}

std::string numbered(const std::string& begin, const std::string& end, std::size_t many, std::size_t first) {
    std::string all;
    for (std::size_t i = first; i < first + many; ++i)
        all.append(begin).append(std::to_string(i)).append(end);
    return all;
}
