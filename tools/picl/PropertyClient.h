#pragma once

#include "picl/JSONPICL.h"
#include "tools/picl/ServerPlace.h"

#include <chrono>
#include <memory>
#include <string>

/// A connection to the property server: messages go out and come in, each with a deadline.
///
/// Belongs to one thread, and has none of its own.
class PropertyClient {
public:
    using Clock = std::chrono::steady_clock;

    enum class Result {
        Done,        ///< The message went out, or came.
        TimedOut,    ///< The deadline passed; a message may have gone out in part.
        Ended,       ///< The server has gone.
        Refused,     ///< What came is no message, and nothing behind it can be read.
        Interrupted, ///< A signal came that interruptOnSignals() waits for.
    };

    /// Connects to @p place. Returns null on failure and puts a sentence about it into @p why. Blocks until
    /// @p deadline at most, or as long as the host looks for a name.
    static std::unique_ptr<PropertyClient> connect(const ServerPlace& place, Clock::time_point deadline,
                                                   std::string& why);
    ~PropertyClient();

    PropertyClient(const PropertyClient&) = delete;
    PropertyClient& operator=(const PropertyClient&) = delete;

    /// From now on SIGINT and SIGTERM do not end the process but the call that waits, or the next one.
    void interruptOnSignals();

    /// Sends @p message, and takes in what comes meanwhile. Blocks until @p deadline at most.
    [[nodiscard]] Result send(JSONPICL& message, Clock::time_point deadline);

    /// Waits for the next message and reads it into @p message. Blocks until @p deadline at most.
    [[nodiscard]] Result receive(JSONPICL& message, Clock::time_point deadline);

private:
    class Connection;

    explicit PropertyClient(std::unique_ptr<Connection> connection);

    std::unique_ptr<Connection> m_connection;
};
