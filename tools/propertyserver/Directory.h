#pragma once

#include "tools/propertyserver/Peer.h"

#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

/// Who owns what, what was last told of it, and who watches it.
///
/// A program is known by the GUID of its component, from its first report on. As long as its owner is
/// connected nobody else can take its place. What is watched need not be there yet, and is watched until the
/// watcher goes.
class Directory {
public:
    /// What one program may have remembered. A report beyond it is not taken.
    static constexpr std::size_t kMostProperties = 10'000;
    static constexpr std::size_t kMostBytes = 16U << 20U;

    using Watchers = std::list<Peer*>; ///< In the order of their coming.

    struct Property {
        SharedReport last; ///< Absent as long as nobody has reported it.
        Watchers watchers;
    };
    using Properties = std::map<std::string, Property, std::less<>>;

    struct Program {
        Peer* owner = nullptr; ///< Absent while the program is not connected.
        bool isSubscribed = false;
        std::size_t known = 0;   ///< Properties with a report.
        std::size_t bytes = 0;   ///< Of their reports.
        std::size_t watches = 0; ///< How often it is watched.
        Properties properties;   ///< By full key.
        Properties groups;       ///< That are watched, by GUID, without a report.
    };

    /// Returns the program, or null where nobody has heard of it.
    [[nodiscard]] Program* find(std::string_view component);

    /// Returns the program if @p peer is its owner, which it becomes if there is none; else null.
    [[nodiscard]] Program* claim(Peer& peer, std::string_view component);

    /// Takes @p report as the last word on its property, which may be that it has gone. Returns what was told
    /// before, absent if nothing was; @p taken tells whether there was room.
    SharedReport remember(Program& program, const SharedReport& report, bool& taken);

    /// Returns what was last told of the property of @p report; absent if it has gone, or was not taken.
    [[nodiscard]] SharedReport latest(const Report& report);

    /// Adds @p peer to those who are told of a property, or of a whole group where @p guid is empty. Returns
    /// whether it was not among them.
    bool watch(Peer& peer, std::string_view component, std::string_view group, std::string_view guid);
    bool watchAll(Peer& peer);

    /// Returns whether anybody wants to hear of @p program.
    [[nodiscard]] bool isWatched(const Program& program) const;

    /// Tells the watchers of @p report.
    void deliver(const Program& program, const SharedReport& report) const;

    /// Takes @p component from its owner. Returns how many properties it has; orphan() is to follow before
    /// somebody else claims it.
    std::size_t release(std::string_view component);

    /// Tells the watchers that the properties of @p component have gone, and that they have no owner now.
    void orphan(std::string_view component);

    /// Forgets @p peer as a watcher. Costs what it has watched, whatever others do.
    void forget(Peer& peer);

    /// Calls @p handle for each program that is connected, in the order of their GUIDs.
    void forEachConnected(const std::function<void(const std::string&, Program&)>& handle);

private:
    using Programs = std::map<std::string, Program, std::less<>>;

    // What is watched, and where in it the watcher stands.
    struct Watch {
        Programs::iterator program;
        Properties* among;
        Properties::iterator property;
        Watchers::iterator place;
    };
    struct Watched {
        std::unordered_map<const Property*, Watch> properties; // and groups
        std::optional<Watchers::iterator> all;                 // its place among those who watch all
    };

    void leave(const Watch& watch);
    void tidy(Programs::iterator program);

    Programs m_programs;
    Watchers m_watchersOfAll;
    std::unordered_map<const Peer*, Watched> m_watched;
};
