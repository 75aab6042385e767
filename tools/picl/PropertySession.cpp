#include "tools/picl/PropertySession.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <random>
#include <sstream>
#include <tuple>
#include <utility>

using Result = PropertyClient::Result;

namespace {

constexpr std::size_t kLongestValue = frame::kLargestText - 4096; // the rest of its message is shorter

std::string randomGuid() {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    static constexpr std::string_view kForm = "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX";
    std::random_device source;
    std::string guid(kForm);
    for (char& c : guid) {
        if (c == 'X')
            c = kDigits[source() % kDigits.size()];
    }
    return guid;
}

/// Returns what asks for a property that cannot exist: the answer comes behind that on all asked before.
PropertyGetRequest askForNothing(const std::string& component) {
    return {.component = component, .group = randomGuid(), .guid = randomGuid()};
}

using Key = std::tuple<std::string, std::string, std::string>;

template <typename Record>
Key keyOf(const Record& record) {
    return {record.component, record.group, record.guid};
}

PropertyGetRequest escaped(const PropertyGetRequest& request) {
    return {.component = escapeText(request.component),
            .group = escapeText(request.group),
            .guid = escapeText(request.guid)};
}

std::string seconds(std::chrono::milliseconds time) {
    std::ostringstream text;
    text << static_cast<double>(time.count()) / 1000 << " s";
    return text.str();
}

} // namespace

PropertyGetRequest requestFor(const PropertyGetResponse& report) {
    return {.component = report.component, .group = report.group, .guid = report.guid};
}

bool isOn(const PropertyGetResponse& report, const PropertyGetRequest& request) {
    return report.guid == request.guid && report.group == request.group &&
           report.component == request.component;
}

std::unique_ptr<PropertySession> PropertySession::open(const ServerPlace& place,
                                                       std::chrono::milliseconds patience, std::string& why) {
    std::unique_ptr<PropertyClient> client = PropertyClient::connect(place, Clock::now() + patience, why);
    if (!client)
        return nullptr;
    return std::unique_ptr<PropertySession>(
        new PropertySession(std::move(client), place.description(), patience));
}

PropertySession::PropertySession(std::unique_ptr<PropertyClient> client, std::string place,
                                 std::chrono::milliseconds patience)
    : m_client(std::move(client)), m_place(std::move(place)), m_patience(patience) {}

std::optional<Properties> PropertySession::all(bool subscribes) {
    const Clock::time_point deadline = Clock::now() + m_patience;
    const PropertyGetRequest last = askForNothing(randomGuid());
    JSONPICL question;
    subscribes ? question.addSubscribeAll() : question.addGetAll();
    JSONPICL end;
    end.addGetRequest(last);
    m_sawAnswerForAll = false;
    if (!send(question) || !awaitAnswerForAll(deadline) || !send(end))
        return {};

    std::map<Key, PropertyGetResponse> found;
    while (std::optional<PropertyGetResponse> report = next(deadline)) {
        if (isOn(*report, last)) {
            Properties properties;
            for (auto& [key, property] : found)
                properties.push_back(std::move(property));
            return properties;
        }
        Key key = keyOf(*report);
        if (report->status == status::kSuccessful)
            found.insert_or_assign(std::move(key), std::move(*report));
        else
            found.erase(key);
    }
    tellFailure("sent no end of its answer");
    return {};
}

bool PropertySession::awaitAnswerForAll(Clock::time_point deadline) {
    while (!m_sawAnswerForAll) {
        if (!readMessage(deadline)) {
            tellFailure("did not answer");
            return false;
        }
    }
    return true;
}

std::optional<PropertySession::Answers> PropertySession::ask(const std::vector<PropertyGetRequest>& requests,
                                                             bool subscribes,
                                                             std::chrono::milliseconds most) {
    const Clock::time_point deadline = Clock::now() + std::min(m_patience, most);
    std::map<Key, std::vector<std::size_t>> asked; // who wants to know, by what they ask for
    for (std::size_t index = 0; index < requests.size(); ++index) {
        const PropertyGetRequest& request = requests[index];
        JSONPICL question; // one each: an owner that is silent keeps back no answer of another
        subscribes ? question.addSubscribeRequest(escaped(request))
                   : question.addGetRequest(escaped(request));
        if (!send(question))
            return {};
        asked[keyOf(request)].push_back(index);
    }
    Answers answers(requests.size());
    for (std::size_t missing = requests.size(); missing > 0;) {
        const std::optional<PropertyGetResponse> report = next(deadline);
        if (!report && m_outcome == Result::TimedOut)
            break;
        if (!report) {
            tellFailure("did not answer");
            return {};
        }
        const auto found = asked.find(keyOf(*report));
        if (found == asked.end())
            continue;
        for (const std::size_t index : found->second) {
            missing -= answers[index] ? 0U : 1U;
            answers[index] = *report; // a later one is newer
        }
    }
    return answers;
}

std::optional<PropertyGetResponse> PropertySession::set(const PropertyGetRequest& property,
                                                        std::string_view value) {
    const Clock::time_point deadline = Clock::now() + m_patience;
    // One question for both: its answer is made of what stands there behind the set, and of nothing earlier.
    const PropertyGetRequest last = askForNothing(property.component);
    const PropertyGetRequest key = escaped(property);
    JSONPICL message;
    message.addSetRequest(
        {.guid = key.guid, .group = key.group, .component = key.component, .value = escapeText(value)});
    message.addGetRequest(key);
    message.addGetRequest(escaped(last));
    if (escapeText(value).size() > kLongestValue) {
        m_why = "the value is longer than a message can be; make it shorter";
        return {};
    }
    if (!send(message))
        return {};
    std::optional<PropertyGetResponse> answer;
    bool isLast = false;
    while (!answer || !isLast) {
        std::optional<PropertyGetResponse> report = next(deadline);
        if (!report) {
            tellFailure("passed on no answer of the owner");
            return {};
        }
        isLast = isLast || isOn(*report, last);
        if (isOn(*report, property))
            answer = std::move(report);
    }
    return answer;
}

std::optional<PropertyGetResponse> PropertySession::next(Clock::time_point deadline) {
    while (m_reports.empty()) {
        if (!readMessage(deadline))
            return {};
    }
    PropertyGetResponse first = std::move(m_reports.front());
    m_reports.pop_front();
    return first;
}

bool PropertySession::send(JSONPICL& message) {
    m_outcome = m_client->send(message, Clock::now() + m_patience);
    if (m_outcome != Result::Done)
        tellFailure("took no question");
    return m_outcome == Result::Done;
}

bool PropertySession::readMessage(Clock::time_point deadline) {
    JSONPICL message;
    m_outcome = m_client->receive(message, deadline);
    if (m_outcome != Result::Done)
        return false;
    m_sawAnswerForAll = m_sawAnswerForAll || message.has(keys::kGetAllResponse);
    message.forEachGetResponse(
        [this](PropertyGetResponse report) { m_reports.push_back(std::move(report)); });
    return true;
}

void PropertySession::tellFailure(std::string_view silent) {
    m_why = "the property server on " + m_place;
    if (m_outcome == Result::TimedOut)
        m_why +=
            ' ' + std::string(silent) + " within " + seconds(m_patience) + "; wait for longer with --timeout";
    else if (m_outcome == Result::Refused)
        m_why =
            "what answers on " + m_place + " is no property server; name another place by --root or --tcp";
    else
        m_why += " has ended the connection";
}
