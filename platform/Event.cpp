#include "platform/Event.h"

#include "platform/AnyEvent.h"
#include "platform/KeltoMutex.h"

#include <boost/thread/condition_variable.hpp>

#include <atomic>

#if !defined(BOOST_THREAD_INTERNAL_CLOCK_IS_MONO)
#error "this Boost waits on a clock that can be set"
#endif

namespace {

std::atomic<std::uint32_t> liveEvents = 0;

} // namespace

Event::Event(bool autoReset) : m_autoReset(autoReset) { ++liveEvents; }

Event::~Event() { --liveEvents; }

std::uint32_t Event::liveCount() { return liveEvents; }

std::unique_ptr<Event> createEvent(bool autoReset) {
    return std::make_unique<AnyEvent<KeltoMutex, boost::condition_variable_any>>(autoReset);
}
