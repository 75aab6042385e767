#include "picl/ReportFrames.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t kReportSize = // of the text around the fields of a report
    std::string_view(R"({"Component": "","ComponentString": "","GUID": ":","GroupString": "",)"
                     R"("NameString": "","Status": "","Value": ""},)")
        .size();

// A short report counts as one of this size, so that the reports of a full frame stay within
// frame::kMaxValues.
constexpr std::size_t kReportValues = 8; // an item and its fields
constexpr std::size_t kMinReportSize = frame::kLargestText * kReportValues / frame::kMaxValues + 1;

} // namespace

const std::size_t ReportFrames::kMessageSize =
    std::string_view(R"({"GetAllPropertiesResponse": true,"PropertyGetResponses": []})").size();
const std::size_t ReportFrames::kRoom = frame::kLargestText - kMessageSize;

std::size_t ReportFrames::textSize(const PropertyGetResponse& report) {
    const std::size_t size = kReportSize + report.component.size() + report.componentString.size() +
                             report.group.size() + report.guid.size() + report.groupString.size() +
                             report.nameString.size() + report.status.size() + report.value.size();
    return std::max(size, kMinReportSize);
}

ReportFrames::ReportFrames(JSONPICL& message, Kind kind, Send send)
    : m_message(message), m_kind(kind), m_send(std::move(send)) {
    begin();
}

void ReportFrames::begin() {
    m_message.clear();
    m_message.startGetResponses();
    if (m_kind == Kind::GetAllAnswer)
        m_message.addGetAllPropertiesResponse();
    m_textSize = kMessageSize;
}

bool ReportFrames::add(PropertyGetResponse report) {
    const std::size_t size = textSize(report);
    if (!m_sends || size > kRoom)
        return m_sends;
    if (m_textSize + size > frame::kLargestText) {
        if (!finish())
            return false;
        begin();
    }
    m_textSize += size;
    m_message.addGetResponse(std::move(report));
    return m_sends;
}

bool ReportFrames::finish() {
    m_sends = m_sends && m_send(m_message);
    return m_sends;
}
