#pragma once

#include "platform/os/Descriptor.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>

namespace os {

class NamedEvent;

/// Waits on several named events at once, and can be told from any thread to end.
class EventWaiter {
public:
    /// How many events one object can wait on.
    static constexpr std::size_t kMostEvents = 8;

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

    /// Waits on @p event from now on, under @p index. An absent event, or one that was opened without the
    /// right to wait, is passed over. Requires: an index below kMostEvents, each used once; the event
    /// outlives the last wait. Thread: one, before the first wait.
    void watch(const NamedEvent& event, std::size_t index);

    /// Waits until one of the events is set, at most @p timeout; no value means forever. The event is reset
    /// by that. Of several set events the one with the lowest index is taken; the others stay set. Without
    /// any event the wait just sleeps. Blocks. Thread: one at a time.
    [[nodiscard]] Result wait(std::optional<std::chrono::milliseconds> timeout = {});

    /// Ends the wait under way and every later one. Thread: any.
    void end();

private:
    [[nodiscard]] bool add(int descriptor, std::size_t index);

    Descriptor m_ready; // tells which of the others are
    Descriptor m_wakeUp;
    std::array<int, kMostEvents> m_pipes{};
    bool m_refused = false;
};

} // namespace os
