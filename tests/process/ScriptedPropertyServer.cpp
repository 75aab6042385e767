#include "tests/process/ScriptedPropertyServer.h"

#include "tests/picl/ScriptedPeer.h"
#include "json/JSONImporterExporter.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace {

constexpr std::ptrdiff_t kLooksInAFrame = 2;

std::string join(const Reports& items) {
    std::string list;
    for (const std::string& item : items)
        list.append(list.empty() ? "" : ",").append(item);
    return list;
}

std::string item(const VocabularyEntry& component, const std::string& key, const std::string& rest = {}) {
    return R"({"Component": ")" + std::string(component.guid) + R"(","GUID": ")" + key + '"' + rest + '}';
}

Reports splitReports(std::string_view frame) {
    const std::string begin = messageOf({}).substr(0, messageOf({}).size() - 2);
    const std::string_view text = frame.substr(std::min(frame.size(), frame::kHeaderSize));
    EXPECT_EQ(frame, frameOf(text));
    EXPECT_TRUE(text.starts_with(begin) && text.ends_with("]}")) << text;
    Reports reports;
    for (std::size_t at = begin.size(); at + 2 < text.size();) {
        const std::size_t end = std::min(text.find("},{", at), text.size() - 3) + 1;
        reports.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    return reports;
}

} // namespace

std::string KnownProperty::key() const { return std::string(group.guid) + ':' + std::string(property.guid); }

std::string KnownProperty::line() const {
    return key() + '|' + std::string(group.name) + ':' + std::string(property.name) + '=' + value + '\n';
}

Reports reportsOn(const KnownProperties& properties, const VocabularyEntry& component) {
    Reports reports;
    for (const KnownProperty& known : properties) {
        reports.push_back(R"({"Component": ")" + std::string(component.guid) + R"(","ComponentString": ")" +
                          std::string(component.name) + R"(","GUID": ")" + known.key() +
                          R"(","GroupString": ")" + std::string(known.group.name) + R"(","NameString": ")" +
                          std::string(known.property.name) + R"(","Status": "Successful","Value": ")" +
                          known.value + R"("})");
    }
    return reports;
}

std::string messageOf(const Reports& reports, std::string_view begin) {
    return std::string(begin) + R"("PropertyGetResponses": [)" + join(reports) + "]}";
}

void ScriptedPropertyServer::accept() {
    m_connection = m_device->takeOtherSide();
    const timeval limit{.tv_sec = std::chrono::duration_cast<std::chrono::seconds>(kDeadline).count(),
                        .tv_usec = 0};
    ::setsockopt(m_connection.value(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(m_connection.value(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

void ScriptedPropertyServer::says(std::string_view text) {
    const std::string frame = frameOf(text);
    EXPECT_EQ(::send(m_connection.value(), frame.data(), frame.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(frame.size()));
}

void ScriptedPropertyServer::saysOfFirmware(const KnownProperty& property) {
    says(messageOf(reportsOn({property}, vocabulary::components::kFirmwareDriver)));
}

void ScriptedPropertyServer::sets(const KnownProperties& properties) {
    Reports items;
    for (const KnownProperty& known : properties)
        items.push_back(
            item(vocabulary::components::kUpgradeUI, known.key(), R"(,"Value": ")" + known.value + '"'));
    says(R"({"PropertySetRequests": [)" + join(items) + "]}");
}

void ScriptedPropertyServer::asksFor(const KnownProperty& property) {
    says(R"({"PropertyGetRequests": [)" + item(vocabulary::components::kUpgradeUI, property.key()) + "]}");
}

std::string ScriptedPropertyServer::hears() {
    std::string frame(frame::kHeaderSize, '\0');
    const auto receives = [&](std::size_t from) {
        const std::size_t size = frame.size() - from;
        return ::recv(m_connection.value(), frame.data() + from, size, MSG_WAITALL) ==
               static_cast<ssize_t>(size);
    };
    if (!receives(0))
        return {};
    std::size_t size = 0;
    for (std::size_t at = frame::kHeaderSize; at-- != frame::kMagic.size();)
        size = size << 8 | static_cast<unsigned char>(frame[at]);
    frame.resize(frame::kHeaderSize + std::min<std::size_t>(size, frame::kLargestText));
    return receives(frame::kHeaderSize) ? frame : std::string();
}

Reports ScriptedPropertyServer::hearsPublished(const Reports& created) {
    Reports heard;
    std::ptrdiff_t looks = 0;
    while (heard.size() < created.size()) {
        const Reports frame = splitReports(hears());
        if (frame.empty())
            break;
        heard.insert(heard.end(), frame.begin(), frame.end());
        looks += kLooksInAFrame;
    }
    // A look begins with the newest that it has, and ends with the oldest that no look before it has told.
    auto oldest = created.begin();
    for (; oldest != created.end() && looks > 0; --looks) {
        const auto first = heard.begin() + (oldest - created.begin());
        const auto newest = first == heard.end() ? created.end() : std::find(oldest, created.end(), *first);
        if (newest == created.end())
            break;
        std::reverse(first, first + (newest - oldest) + 1);
        oldest = newest + 1;
    }
    EXPECT_TRUE(oldest == created.end()) << "more looks than these frames can have";
    return heard;
}

std::string ScriptedPropertyServer::hearsFrameWith(std::string_view text) {
    std::string frame = hears();
    while (!frame.empty() && frame.find(text) == std::string::npos)
        frame = hears();
    return frame;
}

std::string ScriptedPropertyServer::hearsAll() {
    says(R"({"GetAllProperties": true})");
    return hearsFrameWith("GetAllPropertiesResponse");
}

void ScriptedPropertyServer::sync() {
    says(R"({"PropertyGetRequests": [{"GUID": "a:b"}]})");
    EXPECT_NE(hearsFrameWith("Property Not Found"), "");
}
