#pragma once

#include <cstdint>
#include <memory>

class Event;

/// An event of one bit: set or not.
class SimpleEvent {
public:
    /// An event that is not set; with @p autoReset a wait that succeeds takes the signal.
    explicit SimpleEvent(bool autoReset);
    ~SimpleEvent();

    SimpleEvent(const SimpleEvent&) = delete;
    SimpleEvent& operator=(const SimpleEvent&) = delete;

    /// Sets the event. Thread: any.
    void signal();

    /// Waits for the signal. Returns true. Thread: any. Blocks.
    bool wait();

    /// Waits for the signal. Returns whether it came. Thread: any. Blocks at most @p timeoutMs milliseconds.
    [[nodiscard]] bool wait(std::uint32_t timeoutMs);

private:
    std::unique_ptr<Event> m_event;
};
