#pragma once

#include "picl/JSONPICL.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A report as the server keeps it, one for all who are told.
struct Report {
    /// Takes a report as it was read.
    explicit Report(PropertyGetResponse arrived);

    /// As it was read: the program, and the group and GUID of the property as their full key.
    std::string component;
    std::string key;

    PropertyGetResponse record; ///< Ready to leave: escaped.
};

using SharedReport = std::shared_ptr<const Report>;

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

    /// Sends the answer to a question: @p reports, marked as all there are if @p isForAll. It counts more
    /// than what was published on the same properties and has not gone out.
    virtual void answer(const std::vector<SharedReport>& reports, bool isForAll) = 0;

    /// Tells of a change. A peer that is slow is told the last one of each property.
    virtual void publish(const SharedReport& report) = 0;

    /// Reads nothing more of the peer, or goes on with it.
    virtual void hold(bool holds) = 0;

    /// Ends the connection; @p why is a sentence for the log.
    virtual void end(std::string_view why) = 0;
};
