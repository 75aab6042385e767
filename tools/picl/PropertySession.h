#pragma once

#include "picl/PropertyRecords.h"
#include "tools/picl/PropertyClient.h"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using Properties = std::vector<PropertyGetResponse>;

/// Returns what asks for the property that @p report tells of.
[[nodiscard]] PropertyGetRequest requestFor(const PropertyGetResponse& report);

/// Returns whether @p report tells of what @p request asks for.
[[nodiscard]] bool isOn(const PropertyGetResponse& report, const PropertyGetRequest& request);

/// The questions that a program asks a property server. Each has the patience of the session for its answer;
/// one that fails tells why.
///
/// A server reports at any time, also what was not asked for. Belongs to one thread.
class PropertySession {
public:
    using Clock = PropertyClient::Clock;

    /// Returns null on failure and puts a sentence about it into @p why. Blocks as PropertyClient::connect().
    static std::unique_ptr<PropertySession> open(const ServerPlace& place, std::chrono::milliseconds patience,
                                                 std::string& why);

    /// Returns the properties of all programs, one after the other by program, group and GUID; nothing on
    /// failure. The reports on what becomes of them follow if @p subscribes. Blocks for the answer.
    [[nodiscard]] std::optional<Properties> all(bool subscribes = false);

    using Answers = std::vector<std::optional<PropertyGetResponse>>;

    /// Returns the report on each of @p requests, in their order, and none where its owner did not answer in
    /// time; nothing on failure. Further reports follow if @p subscribes. Blocks for the answers, no longer
    /// than @p most.
    [[nodiscard]] std::optional<Answers>
    ask(const std::vector<PropertyGetRequest>& requests, bool subscribes = false,
        std::chrono::milliseconds most = std::chrono::milliseconds::max());

    /// Sets a property to @p value. Returns what its owner then reports of it; nothing on failure, also where
    /// the owner does not answer in time. Blocks for the answer.
    [[nodiscard]] std::optional<PropertyGetResponse> set(const PropertyGetRequest& property,
                                                         std::string_view value);

    /// Waits for the next report, until @p deadline at most. Returns nothing if there was none: outcome()
    /// tells.
    [[nodiscard]] std::optional<PropertyGetResponse> next(Clock::time_point deadline);

    /// Makes SIGINT and SIGTERM end what waits.
    void interruptOnSignals() { m_client->interruptOnSignals(); }

    /// Returns how the last exchange with the server ended.
    [[nodiscard]] PropertyClient::Result outcome() const { return m_outcome; }

    /// Returns a sentence about the last failure.
    [[nodiscard]] const std::string& why() const { return m_why; }

private:
    PropertySession(std::unique_ptr<PropertyClient> client, std::string place,
                    std::chrono::milliseconds patience);

    bool send(JSONPICL& message);
    bool awaitAnswerForAll(Clock::time_point deadline);
    bool readMessage(Clock::time_point deadline);
    void tellFailure(std::string_view silent);

    const std::unique_ptr<PropertyClient> m_client;
    const std::string m_place;
    const std::chrono::milliseconds m_patience;
    std::deque<PropertyGetResponse> m_reports; // read and not handed out yet
    bool m_sawAnswerForAll = false;
    PropertyClient::Result m_outcome = PropertyClient::Result::Done;
    std::string m_why;
};
