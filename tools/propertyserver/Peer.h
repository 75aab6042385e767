#pragma once

#include "picl/JSONPICL.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A report as the server keeps it, one for all who are told.
struct Report {
    /// Takes a report as it was read.
    explicit Report(PropertyGetResponse arrived);

    [[nodiscard]] std::string_view component() const;
    [[nodiscard]] std::string_view key() const; ///< The full key: group and GUID.

    /// Returns the length of the texts of the record.
    [[nodiscard]] std::size_t bytes() const;

    std::string id;             ///< idOf() component and full key, as they were read.
    PropertyGetResponse record; ///< Ready to leave: escaped.
};

/// Returns what identifies a property, or a group, among all programs.
[[nodiscard]] std::string idOf(std::string_view component, std::string_view groupGuid, std::string_view guid);
[[nodiscard]] std::string idOf(std::string_view component, std::string_view groupGuid);

using SharedReport = std::shared_ptr<const Report>;

/// Why a connection ends, where nothing is wrong with that.
inline constexpr std::string_view kHasGone = "has gone";
inline constexpr std::string_view kHasSaidGoodbye = "has said goodbye";

/// A program, as the hub sees it: the other end of a connection.
///
/// Nothing here blocks, and none of it calls the hub: what a call leads to, the end of the connection too,
/// comes later in the event loop.
class Peer {
public:
    Peer() = default;
    virtual ~Peer() = default;

    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// Sends @p message, behind all that was sent before.
    virtual void send(JSONPICL& message) = 0;

    /// Returns whether there is room for what others ask and set. What comes beyond is not for the peer to
    /// answer for, and goes lost.
    [[nodiscard]] virtual bool takesMore() const { return true; }

    /// Sends the answer to a question: @p reports, marked as all there are if @p isForAll. It counts more
    /// than what was published on the same properties and has not gone out.
    virtual void answer(std::vector<SharedReport> reports, bool isForAll) = 0;

    /// Tells of a change. A peer that is slow is told the last one of each property.
    virtual void publish(const SharedReport& report) = 0;

    /// Takes no more questions and sets of the peer, or goes on with them. Its reports are taken:
    /// somebody waits for them.
    virtual void hold(bool holds) = 0;

    /// Tells that @p bytes more are kept for the peer, or fewer. Who has the most makes room where memory
    /// runs out.
    virtual void charge(std::ptrdiff_t /*bytes*/) {}

    /// Ends the connection; @p why is the log's sentence without its subject.
    virtual void end(std::string_view why) = 0;
};
