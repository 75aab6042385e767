#include "tools/propertyserver/Outbox.h"

#include "picl/FrameReader.h"
#include "picl/ReportFrames.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kChangesAtOnce = 256U << 10U; // bytes, and the report with which there are as many

std::size_t sizeOf(const SharedReport& report) { return ReportFrames::textSize(report->record); }

} // namespace

void Outbox::send(std::string frame) {
    Entry entry;
    entry.bytes = frame.size();
    entry.frame = std::move(frame);
    entry.isCounted = true;
    add(std::move(entry));
}

void Outbox::answer(std::vector<SharedReport> reports, bool isForAll) {
    std::erase_if(reports, [](const SharedReport& report) { return sizeOf(report) > ReportFrames::kRoom; });
    Entry entry;
    for (const SharedReport& report : reports)
        entry.left += sizeOf(report);
    entry.reports = std::move(reports);
    entry.bytes = entry.left;
    entry.isForAll = isForAll;
    entry.isCounted = !m_entries.empty();
    add(std::move(entry));
}

void Outbox::add(Entry entry) {
    m_bytes += entry.bytes;
    m_counted += entry.isCounted ? entry.bytes : 0;
    m_entries.push_back(std::move(entry));
}

// The newest change is the last one: who reads it has the right order between properties too.
void Outbox::publish(const SharedReport& report) {
    if (sizeOf(report) > ReportFrames::kRoom)
        return;
    forget(report);
    m_places.emplace(report->id, m_changes.insert(m_changes.end(), report));
    m_changesBytes += sizeOf(report);
}

void Outbox::forget(const SharedReport& report) {
    const auto place = m_places.find(report->id);
    if (place == m_places.end())
        return;
    const auto change = place->second;
    m_places.erase(place); // its key is text of the change
    m_changesBytes -= sizeOf(*change);
    m_changes.erase(change);
}

std::string_view Outbox::made() const {
    return m_entries.empty() ? std::string_view() : std::string_view(m_entries.front().frame).substr(m_sent);
}

std::size_t Outbox::unmade() const {
    if (m_entries.empty())
        return std::min(m_changesBytes, kChangesAtOnce);
    return made().empty() ? std::min(m_entries.front().left, ReportFrames::kRoom) : 0;
}

std::string_view Outbox::next() {
    if (made().empty() && !(m_entries.empty() && m_changes.empty()))
        make();
    return made();
}

void Outbox::make() {
    if (m_entries.empty())
        add(takeChanges());
    Entry& entry = m_entries.front();
    JSONPICL message;
    message.startGetResponses();
    if (entry.isForAll)
        message.addGetAllPropertiesResponse();
    std::size_t room = ReportFrames::kRoom;
    for (; entry.made < entry.reports.size(); ++entry.made) {
        SharedReport& report = entry.reports[entry.made];
        const std::size_t size = sizeOf(report);
        if (size > room)
            break;
        room -= size;
        entry.left -= size;
        message.addGetResponse(PropertyGetResponse(report->record));
        report.reset();
    }
    entry.frame = message.toFrame();
}

Outbox::Entry Outbox::takeChanges() {
    Entry taken;
    while (!m_changes.empty() && taken.left < kChangesAtOnce) {
        taken.reports.push_back(m_changes.front());
        taken.left += sizeOf(m_changes.front());
        forget(taken.reports.back());
    }
    taken.bytes = taken.left;
    return taken;
}

void Outbox::sent(std::size_t count) {
    m_sent += count;
    Entry& entry = m_entries.front();
    if (m_sent < entry.frame.size())
        return;
    m_sent = 0;
    std::string().swap(entry.frame);
    if (entry.made < entry.reports.size())
        return;
    m_bytes -= entry.bytes;
    m_counted -= entry.isCounted ? entry.bytes : 0;
    m_entries.pop_front();
}
