#include "tools/propertyserver/Directory.h"

#include "property/PropertyKey.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

bool addTo(std::vector<Peer*>& watchers, Peer& peer) {
    if (std::find(watchers.begin(), watchers.end(), &peer) != watchers.end())
        return false;
    watchers.push_back(&peer);
    return true;
}

void tell(const std::vector<Peer*>& watchers, const SharedReport& report) {
    for (Peer* watcher : watchers)
        watcher->publish(report);
}

} // namespace

Directory::Program* Directory::find(std::string_view component) {
    const auto found = m_programs.find(component);
    return found == m_programs.end() ? nullptr : &found->second;
}

Directory::Program* Directory::claim(Peer& peer, std::string_view component) {
    Program* program = find(component);
    if (program == nullptr)
        program = &m_programs[std::string(component)];
    if (program->owner == nullptr)
        program->owner = &peer;
    return program->owner == &peer ? program : nullptr;
}

SharedReport Directory::remember(Program& program, const SharedReport& report, bool& taken) {
    const bool isGone = report->record.status == status::kNoLongerAvailable;
    auto found = program.properties.find(report->key());
    const bool wasKnown = found != program.properties.end() && found->second.last;
    const std::size_t before = wasKnown ? found->second.last->bytes() : 0;
    const std::size_t after = isGone ? 0 : report->bytes();
    taken = (wasKnown || isGone || program.known < kMostProperties) &&
            program.bytes - before + after <= kMostBytes;
    if (!taken || (isGone && !wasKnown))
        return nullptr;
    if (found == program.properties.end())
        found = program.properties.try_emplace(std::string(report->key())).first;
    program.bytes = program.bytes - before + after;
    program.known = program.known - (wasKnown ? 1 : 0) + (isGone ? 0 : 1);
    SharedReport last = std::exchange(found->second.last, isGone ? nullptr : report);
    if (isGone && found->second.watchers.empty())
        program.properties.erase(found);
    return last;
}

bool Directory::watch(Peer& peer, std::string_view component, std::string_view group, std::string_view guid) {
    Program& program = m_programs[std::string(component)];
    if (guid.empty())
        return addTo(program.groupWatchers[std::string(group)], peer);
    return addTo(program.properties[fullKey(group, guid)].watchers, peer);
}

bool Directory::watchAll(Peer& peer) { return addTo(m_watchersOfAll, peer); }

bool Directory::isWatched(const Program& program) const {
    const auto& properties = program.properties;
    return !m_watchersOfAll.empty() || !program.groupWatchers.empty() ||
           std::any_of(properties.begin(), properties.end(),
                       [](const auto& property) { return !property.second.watchers.empty(); });
}

void Directory::deliver(const Program& program, const SharedReport& report) const {
    for (Peer* watcher : m_watchersOfAll) {
        if (watcher != program.owner)
            watcher->publish(report);
    }
    if (const auto property = program.properties.find(report->key()); property != program.properties.end())
        tell(property->second.watchers, report);
    if (program.groupWatchers.empty())
        return;
    if (const auto group = program.groupWatchers.find(splitKey(report->key()).groupGuid);
        group != program.groupWatchers.end())
        tell(group->second, report);
}

void Directory::orphan(std::string_view component) {
    const auto found = m_programs.find(component);
    Program& program = found->second;
    program.owner = nullptr;
    program.isSubscribed = false;
    program.known = program.bytes = 0;
    for (auto& [key, property] : program.properties) {
        if (const SharedReport last = std::exchange(property.last, nullptr)) {
            auto gone = std::make_shared<Report>(*last);
            gone->record.status = status::kNoLongerAvailable;
            deliver(program, gone);
        }
    }
    tidy(found);
}

void Directory::forget(Peer& peer) {
    std::erase(m_watchersOfAll, &peer);
    for (auto program = m_programs.begin(); program != m_programs.end();) {
        for (auto& [key, property] : program->second.properties)
            std::erase(property.watchers, &peer);
        for (auto& [group, watchers] : program->second.groupWatchers)
            std::erase(watchers, &peer);
        tidy(program++);
    }
}

void Directory::forEachConnected(const std::function<void(const std::string&, Program&)>& handle) {
    for (auto& [component, program] : m_programs) {
        if (program.owner != nullptr)
            handle(component, program);
    }
}

void Directory::tidy(Programs::iterator program) {
    std::erase_if(program->second.properties, [](const auto& property) {
        return !property.second.last && property.second.watchers.empty();
    });
    std::erase_if(program->second.groupWatchers, [](const auto& group) { return group.second.empty(); });
    if (program->second.owner == nullptr && !isWatched(program->second))
        m_programs.erase(program);
}
