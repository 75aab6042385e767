#include "platform/SimpleEvent.h"

#include "platform/Event.h"

namespace {

constexpr std::uint32_t kSignal = 1;

} // namespace

SimpleEvent::SimpleEvent(bool autoReset) : m_event(createEvent(autoReset)) {}

SimpleEvent::~SimpleEvent() = default;

void SimpleEvent::signal() { m_event->set(kSignal); }

bool SimpleEvent::wait() {
    m_event->waitAny(kSignal);
    return true;
}

bool SimpleEvent::wait(std::uint32_t timeoutMs) { return m_event->waitAnyTimed(kSignal, timeoutMs) != 0; }
