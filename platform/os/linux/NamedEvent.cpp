#include "platform/os/NamedEvent.h"

#include "platform/os/NamedObjectFolder.h"
#include "platform/os/linux/ObjectFile.h"
#include "platform/os/linux/SystemCall.h"

#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace os {

NamedEvent::NamedEvent(Descriptor pipe, EventRight right) : m_pipe(std::move(pipe)), m_right(right) {}

// The pipe is opened for reading and writing whatever the right: with a reader and a writer always present,
// the end of the other process causes no endless hang-up.
NamedEvent NamedEvent::open(std::string_view name, EventRight right) {
    std::error_code why; // an absent event is the whole answer
    return {openObject(name, S_IFIFO, why), right};
}

NamedEvent NamedEvent::create(std::string_view name, EventRight right, std::error_code& why) {
    return {openOrCreateObject(name, S_IFIFO, why), right};
}

bool NamedEvent::isInUse(std::string_view name) {
    const std::string path = namedObjectPath(name);
    // A pipe that nobody reads refuses a writer that will not wait.
    constexpr int kFlags = O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY;
    return Descriptor(retried([&] { return ::open(path.c_str(), kFlags); })).isOpen();
}

bool NamedEvent::set() {
    if (!isPresent() || m_right != EventRight::Set)
        return false;
    constexpr char kSignal = 1;
    const auto written = retried([&] { return ::write(m_pipe.value(), &kSignal, 1); });
    return written == 1 || errno == EAGAIN; // a full pipe is set already
}

bool NamedEvent::isSet() const {
    pollfd entry{m_pipe.value(), POLLIN, 0};
    return retried([&] { return ::poll(&entry, 1, 0); }) == 1 && (entry.revents & POLLIN) != 0;
}

} // namespace os
