#pragma once

#include "platform/os/Descriptor.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>

namespace os {

class NamedEvent;

/// Waits on several named events at once, and can be told from any thread to end.
class EventWaiter {
public:
    enum class Outcome {
        Signalled,
        TimedOut,
        Ended, ///< end() was called, or the host refused the wait: no later wait will do better.
    };

    struct Result {
        Outcome outcome = Outcome::Ended;
        std::size_t index = 0; ///< Of the event, where one was signalled.
    };

    EventWaiter();

    /// Waits until one of @p events is set, at most @p timeout; no value means forever. The event is reset by that.
    /// Of several set events the one with the lowest index is taken; the others stay set. Absent events, and those
    /// opened without the right to wait, are passed over; with none left the wait just sleeps.
    /// Blocks. Thread: one at a time.
    [[nodiscard]] Result wait(std::span<const NamedEvent* const> events,
                              std::optional<std::chrono::milliseconds> timeout = {});

    /// Ends the wait under way and every later one. Thread: any.
    void end();

private:
    Descriptor m_wakeUp;
};

} // namespace os
