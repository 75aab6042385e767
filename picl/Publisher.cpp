#include "picl/Publisher.h"

#include "picl/PropertyReports.h"
#include "picl/PublishLists.h"
#include "picl/PublishStream.h"
#include "picl/ReportFrames.h"
#include "property/UInt32Property.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint32_t kWaitMs = 250;
constexpr std::size_t kMostReports = 10000; // in waiting for the end of a period

} // namespace

Publisher::Publisher(std::shared_ptr<PublishLists> lists, std::shared_ptr<PublishStream> stream,
                     std::shared_ptr<UInt32Property> period, std::shared_ptr<Property> component)
    : m_lists(std::move(lists)),
      m_stream(std::move(stream)),
      m_period(std::move(period)),
      m_component(std::move(component)) {}

void Publisher::run() {
    PropertyGetResponses reports;
    std::uint32_t waitsLeft = waitsPerPeriod();
    while (!m_stopEvent.wait(kWaitMs)) {
        if (m_stream->isEmpty()) {
            m_lists->dropChanges();
            reports.clear();
            continue;
        }
        collectChanges(reports);
        if (--waitsLeft != 0)
            continue;
        collectPolledAndRemoved(reports);
        publish(std::exchange(reports, {}));
        waitsLeft = waitsPerPeriod();
    }
}

std::uint32_t Publisher::waitsPerPeriod() const { return std::max(m_period->getValue() / kWaitMs, 1U); }

// Neither a setter that never rests nor a period without end must make this go on without end: what finds no
// room here waits with the changes.
void Publisher::collectChanges(PropertyGetResponses& reports) {
    for (std::uint32_t left = PublishLists::kMostChanges; left != 0 && reports.size() < kMostReports;
         --left) {
        if (m_lists->countOfChanges() == 0)
            return;
        if (const std::shared_ptr<Property> property = m_lists->takeChange())
            appendReport(reports, *property, status::kSuccessful, *m_component);
    }
}

void Publisher::collectPolledAndRemoved(PropertyGetResponses& reports) {
    for (const std::shared_ptr<Property>& property : m_lists->polled())
        appendReport(reports, *property, status::kSuccessful, *m_component);
    for (const std::shared_ptr<Property>& property : m_lists->takeRemoved())
        appendReport(reports, *property, status::kNoLongerAvailable, *m_component);
}

void Publisher::publish(PropertyGetResponses reports) {
    if (reports.empty())
        return;
    JSONPICL message;
    ReportFrames frames(message, ReportFrames::Kind::Reports,
                        [this](JSONPICL& frame) { return m_stream->publish(frame); });
    frames.add(std::move(reports));
    static_cast<void>(frames.finish()); // a failure has left no stream: the silence is its report
}
