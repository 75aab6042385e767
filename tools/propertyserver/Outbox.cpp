#include "tools/propertyserver/Outbox.h"

#include "picl/FrameReader.h"
#include "picl/ReportFrames.h"

#include <utility>

namespace {

constexpr std::size_t kChangesAtOnce = 1U
                                       << 20U; // bytes of reports, and the one with which there are as many

} // namespace

void Outbox::send(std::string frame) { add(std::move(frame), true); }

void Outbox::add(std::string frame, bool isCounted) {
    m_bytes += isCounted ? frame.size() : 0;
    m_frames.push_back({std::move(frame), isCounted});
}

// The newest change is the last one: who reads it has the right order between properties too.
void Outbox::publish(const SharedReport& report) {
    forget(report);
    m_places.emplace(report->id, m_changes.insert(m_changes.end(), report));
}

void Outbox::forget(const SharedReport& report) {
    const auto place = m_places.find(report->id);
    if (place == m_places.end())
        return;
    const auto change = place->second;
    m_places.erase(place); // its key is text of the change
    m_changes.erase(change);
}

std::string_view Outbox::next() {
    if (m_frames.empty() && !m_changes.empty())
        answer(takeChanges(), false);
    return m_frames.empty() ? std::string_view() : std::string_view(m_frames.front().bytes).substr(m_sent);
}

std::vector<SharedReport> Outbox::takeChanges() {
    std::vector<SharedReport> taken;
    for (std::size_t bytes = 0; !m_changes.empty() && bytes < kChangesAtOnce;) {
        taken.push_back(m_changes.front());
        bytes += taken.back()->bytes();
        forget(taken.back());
    }
    return taken;
}

void Outbox::sent(std::size_t count) {
    m_sent += count;
    m_bytes -= m_frames.front().isCounted ? count : 0;
    if (m_sent < m_frames.front().bytes.size())
        return;
    m_frames.pop_front();
    m_sent = 0;
}

void Outbox::answer(const std::vector<SharedReport>& reports, bool isForAll) {
    JSONPICL message;
    const bool isCounted = !m_frames.empty();
    ReportFrames frames(message, isForAll ? ReportFrames::Kind::GetAllAnswer : ReportFrames::Kind::Reports,
                        [this, isCounted](JSONPICL& frame) {
                            add(frame.toFrame(), isCounted);
                            return true;
                        });
    for (const SharedReport& report : reports) {
        if (report)
            frames.add(PropertyGetResponse(report->record));
    }
    static_cast<void>(frames.finish()); // it goes into the queue
}
