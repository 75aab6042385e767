#include "picl/Publisher.h"

#include "picl/PropertyReports.h"
#include "picl/PublishLists.h"
#include "picl/PublishStream.h"
#include "picl/ReportFrames.h"
#include "property/UInt32Property.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

namespace {

constexpr std::uint32_t kWaitMs = 250;
constexpr std::uint32_t kDayMs = 24 * 60 * 60 * 1000;

} // namespace

Publisher::Publisher(std::shared_ptr<PublishLists> lists, std::shared_ptr<PublishStream> stream,
                     std::shared_ptr<UInt32Property> period, std::shared_ptr<Property> component)
    : m_lists(std::move(lists)),
      m_stream(std::move(stream)),
      m_period(std::move(period)),
      m_component(std::move(component)) {}

void Publisher::run() {
    Waiting waiting;
    std::uint32_t waitsLeft = waitsPerPeriod(m_period->getValue());
    while (!m_stopEvent.wait(kWaitMs)) {
        try {
            collectAndPublish(waiting, waitsLeft);
        } catch (const std::bad_alloc& failure) {
            waiting = {};
            m_stream->closeAfter(failure);
        }
    }
}

void Publisher::collectAndPublish(Waiting& waiting, std::uint32_t& waitsLeft) const {
    const Properties changes = m_lists->takeChanges();
    if (m_stream->isEmpty()) { // the first frame on a stream has every value
        waiting = {};
        return;
    }
    collect(changes, waiting);
    if (--waitsLeft != 0)
        return;
    waitsLeft = waitsPerPeriod(m_period->getValue());
    publish(std::exchange(waiting, {}));
}

std::uint32_t Publisher::waitsPerPeriod(std::uint32_t periodMs) {
    return std::clamp(periodMs / kWaitMs, 1U, kDayMs / kWaitMs);
}

void Publisher::collect(const Properties& changes, Waiting& waiting) const {
    for (const std::shared_ptr<Property>& property : changes) {
        if (std::ranges::find(waiting.late, property) != waiting.late.end())
            continue;
        std::optional<PropertyGetResponse> report = makeReport(*property, status::kSuccessful, *m_component);
        const std::size_t size = report ? ReportFrames::textSize(*report) : 0;
        if (size > ReportFrames::kRoom - waiting.textSize) {
            waiting.late.push_back(property);
        } else if (report) {
            waiting.textSize += size;
            waiting.reports.push_back(std::move(*report));
        }
    }
}

void Publisher::publish(Waiting waiting) const {
    JSONPICL message;
    ReportFrames frames(message, ReportFrames::Kind::Reports,
                        [this](JSONPICL& frame) { return m_stream->publish(frame); });
    for (PropertyGetResponse& report : waiting.reports)
        frames.add(std::move(report));
    addEach(waiting.late, status::kSuccessful, frames);
    addEach(m_lists->polled(), status::kSuccessful, frames);
    addEach(m_lists->takeRemoved(), status::kNoLongerAvailable, frames);
    if (!frames.isEmpty())
        static_cast<void>(frames.finish()); // a failure has emptied the stream
}

void Publisher::addEach(const Properties& properties, std::string_view status, ReportFrames& frames) const {
    for (const std::shared_ptr<Property>& property : properties) {
        std::optional<PropertyGetResponse> report = makeReport(*property, status, *m_component);
        if (report && !frames.add(std::move(*report)))
            return;
    }
}
