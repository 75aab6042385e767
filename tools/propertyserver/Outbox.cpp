#include "tools/propertyserver/Outbox.h"

#include "picl/FrameReader.h"
#include "picl/ReportFrames.h"

#include <utility>

void Outbox::send(std::string frame) {
    m_bytes += frame.size();
    m_frames.push_back(std::move(frame));
}

// The newest change is the last one: who reads it has the right order between properties too.
void Outbox::publish(const SharedReport& report) {
    forget(report);
    m_places.emplace(report->id, m_changes.size());
    m_changes.push_back(report);
}

void Outbox::forget(const SharedReport& report) {
    const auto place = m_places.find(report->id);
    if (place == m_places.end())
        return;
    m_changes[place->second] = nullptr;
    m_places.erase(place);
}

std::string_view Outbox::next() {
    if (m_frames.empty() && !m_places.empty()) {
        m_places.clear();
        answer(std::exchange(m_changes, {}), false);
    }
    return m_frames.empty() ? std::string_view() : std::string_view(m_frames.front()).substr(m_sent);
}

void Outbox::sent(std::size_t count) {
    m_sent += count;
    m_bytes -= count;
    if (m_sent < m_frames.front().size())
        return;
    m_frames.pop_front();
    m_sent = 0;
}

void Outbox::answer(const std::vector<SharedReport>& reports, bool isForAll) {
    JSONPICL message;
    ReportFrames frames(message, isForAll ? ReportFrames::Kind::GetAllAnswer : ReportFrames::Kind::Reports,
                        [this](JSONPICL& frame) {
                            send(frame.toFrame());
                            return true;
                        });
    for (const SharedReport& report : reports) {
        if (report)
            frames.add(PropertyGetResponse(report->record));
    }
    static_cast<void>(frames.finish()); // it goes into the queue
}
