#pragma once

#include "platform/os/Descriptor.h"

#include <string_view>
#include <system_error>

namespace os {

enum class EventRight { Wait, Set };

/// A named event between processes that resets itself when a wait on it is satisfied.
///
/// An event is set or it is not: setting it twice before a wait satisfies one wait. It keeps its state while
/// any process has it open. An object that could not be opened is absent: its operations do nothing and
/// answer false.
class NamedEvent {
public:
    /// An absent event.
    NamedEvent() = default;

    /// Opens the event called @p name, which another process made. Returns an absent event if there is none,
    /// or if what bears the name is no event. Thread: any.
    static NamedEvent open(std::string_view name, EventRight right);

    /// Makes the event called @p name, or opens it if it exists. Returns an absent event on failure and puts
    /// the reason into @p why. Thread: any.
    static NamedEvent create(std::string_view name, EventRight right, std::error_code& why);

    /// Returns whether any process has the event called @p name open. Thread: any.
    static bool isInUse(std::string_view name);

    /// Sets the event. Returns false if the event is absent or was opened with another right. Thread: any.
    bool set();

    /// Returns whether the event is set, and leaves it so. Thread: any.
    [[nodiscard]] bool isSet() const;

    [[nodiscard]] bool isPresent() const { return m_pipe.isOpen(); }

private:
    friend class EventWaiter;

    NamedEvent(Descriptor pipe, EventRight right);

    Descriptor m_pipe;
    EventRight m_right = EventRight::Wait;
};

} // namespace os
