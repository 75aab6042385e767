#include "tools/propertyserver/Directory.h"

#include "property/PropertyKey.h"

#include <utility>

namespace {

void tell(const std::list<Peer*>& watchers, const SharedReport& report) {
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

SharedReport Directory::latest(const Report& report) {
    const Program* program = find(report.component());
    if (program == nullptr || program->owner == nullptr)
        return nullptr;
    const auto found = program->properties.find(report.key());
    return found == program->properties.end() ? nullptr : found->second.last;
}

bool Directory::watch(Peer& peer, std::string_view component, std::string_view group, std::string_view guid) {
    const auto program = m_programs.try_emplace(std::string(component)).first;
    Properties& among = guid.empty() ? program->second.groups : program->second.properties;
    const auto property = among.try_emplace(guid.empty() ? std::string(group) : fullKey(group, guid)).first;
    const auto [watch, isNew] =
        m_watched[&peer].properties.try_emplace(&property->second, Watch{program, &among, property, {}});
    if (!isNew)
        return false;
    Watchers& watchers = property->second.watchers;
    watch->second.place = watchers.insert(watchers.end(), &peer);
    ++program->second.watches;
    return true;
}

bool Directory::watchAll(Peer& peer) {
    std::optional<Watchers::iterator>& place = m_watched[&peer].all;
    if (place)
        return false;
    place = m_watchersOfAll.insert(m_watchersOfAll.end(), &peer);
    return true;
}

bool Directory::isWatched(const Program& program) const {
    return !m_watchersOfAll.empty() || program.watches > 0;
}

void Directory::deliver(const Program& program, const SharedReport& report) const {
    for (Peer* watcher : m_watchersOfAll) {
        if (watcher != program.owner)
            watcher->publish(report);
    }
    if (const auto property = program.properties.find(report->key()); property != program.properties.end())
        tell(property->second.watchers, report);
    if (program.groups.empty())
        return;
    if (const auto group = program.groups.find(splitKey(report->key()).groupGuid);
        group != program.groups.end())
        tell(group->second.watchers, report);
}

std::size_t Directory::release(std::string_view component) {
    Program& program = *find(component);
    program.owner = nullptr;
    program.isSubscribed = false;
    return program.known;
}

void Directory::orphan(std::string_view component) {
    const auto found = m_programs.find(component);
    Program& program = found->second;
    program.owner = nullptr;
    program.isSubscribed = false;
    program.known = program.bytes = 0;
    const bool isHeard = isWatched(program);
    for (auto& [key, property] : program.properties) {
        if (const SharedReport last = std::exchange(property.last, nullptr); last && isHeard) {
            auto gone = std::make_shared<Report>(*last);
            gone->record.status = status::kNoLongerAvailable;
            deliver(program, gone);
        }
    }
    std::erase_if(program.properties, [](const auto& property) { return property.second.watchers.empty(); });
    tidy(found);
}

void Directory::forget(Peer& peer) {
    const auto watched = m_watched.extract(&peer);
    if (watched.empty())
        return;
    if (const auto& place = watched.mapped().all)
        m_watchersOfAll.erase(*place);
    for (const auto& [property, watch] : watched.mapped().properties)
        leave(watch);
}

void Directory::leave(const Watch& watch) {
    Property& property = watch.property->second;
    property.watchers.erase(watch.place);
    if (!property.last && property.watchers.empty())
        watch.among->erase(watch.property);
    --watch.program->second.watches;
    tidy(watch.program);
}

void Directory::forEachConnected(const std::function<void(const std::string&, Program&)>& handle) {
    for (auto& [component, program] : m_programs) {
        if (program.owner != nullptr)
            handle(component, program);
    }
}

// Who watches all keeps no program that has gone, and been told of, and hears of it when it comes again.
void Directory::tidy(Programs::iterator program) {
    if (program->second.owner == nullptr && program->second.known == 0 && program->second.watches == 0)
        m_programs.erase(program);
}
