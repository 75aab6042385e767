#include "platform/os/NamedEvent.h"

#include "platform/os/NamedObjectFolder.h"
#include "platform/os/linux/ObjectFile.h"
#include "platform/os/linux/SystemCall.h"

#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace os {
namespace {

// Reading and writing, whatever right is asked for: with a reader and a writer always there, the end of the
// other process gives no hang-up that a wait would see for ever.
Descriptor openPipe(const std::string& path, std::error_code& why) {
    constexpr int kFlags = O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY;
    Descriptor pipe(retried([&] { return ::open(path.c_str(), kFlags); }));
    struct stat status {};
    if (!pipe.isOpen() || ::fstat(pipe.value(), &status) != 0) {
        why = lastFailure();
        return {};
    }
    if (!S_ISFIFO(status.st_mode)) {
        why = std::make_error_code(std::errc::invalid_argument);
        return {};
    }
    return pipe;
}

} // namespace

NamedEvent::NamedEvent(Descriptor pipe, EventRight right) : m_pipe(std::move(pipe)), m_right(right) {}

NamedEvent NamedEvent::open(std::string_view name, EventRight right) {
    std::error_code why; // an absent event is the whole answer
    return {openPipe(namedObjectPath(name), why), right};
}

NamedEvent NamedEvent::create(std::string_view name, EventRight right, std::error_code& why) {
    why = makeNamedObjectFolder();
    if (why)
        return {};
    const std::string path = namedObjectPath(name);
    if (::mkfifo(path.c_str(), kObjectMode) == 0)
        ::chmod(path.c_str(), kObjectMode); // past the umask; who made it may do that
    else if (errno != EEXIST) {
        why = lastFailure();
        return {};
    }
    return {openPipe(path, why), right};
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
