#include "platform/os/InterruptibleDescriptor.h"

#include "platform/os/linux/Deadline.h"
#include "platform/os/linux/PipeSignalGuard.h"
#include "platform/os/linux/SystemCall.h"

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

using Clock = Deadline::clock;
using std::chrono::milliseconds;

std::error_code closedFailure() { return std::make_error_code(std::errc::operation_canceled); }

bool isSocket(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode);
}

// Where the other side is gone for good, waiting once more would only spin.
std::error_code hungUpFailure() { return std::make_error_code(std::errc::io_error); }

bool makeNonBlocking(int descriptor) {
    const int flags = ::fcntl(descriptor, F_GETFL);
    return flags != -1 && ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) != -1;
}

} // namespace

/// One read or write, from its beginning to its end: what close() waits for.
class InterruptibleDescriptor::Call {
public:
    explicit Call(InterruptibleDescriptor& owner) : m_owner(owner) {
        const std::scoped_lock guard(m_owner.m_lock);
        m_entered = !m_owner.m_closed;
        m_owner.m_inside += m_entered ? 1 : 0;
    }
    ~Call() {
        if (!m_entered)
            return;
        const std::scoped_lock guard(m_owner.m_lock);
        if (--m_owner.m_inside == 0)
            m_owner.m_left.notify_all(); // under the lock: the closer may go on to destroy the owner
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    [[nodiscard]] bool entered() const { return m_entered; }

private:
    InterruptibleDescriptor& m_owner;
    bool m_entered = false;
};

InterruptibleDescriptor::InterruptibleDescriptor(Descriptor descriptor, milliseconds stallLimit)
    : m_descriptor(std::move(descriptor)),
      m_wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_stallLimit(stallLimit),
      m_isSocket(isSocket(m_descriptor.value())) {
    m_closed = !m_descriptor.isOpen() || !m_wakeUp.isOpen() || !makeNonBlocking(m_descriptor.value());
    if (m_closed)
        m_descriptor = Descriptor();
}

InterruptibleDescriptor::~InterruptibleDescriptor() { close(); }

bool InterruptibleDescriptor::isOpen() const {
    const std::scoped_lock guard(m_lock);
    return !m_closed;
}

Transfer InterruptibleDescriptor::read(void* buffer, std::size_t size) {
    const Call call(*this);
    if (!call.entered())
        return {0, closedFailure()};
    for (bool hungUp = false;;) {
        const ssize_t count = retried([&] { return ::read(m_descriptor.value(), buffer, size); });
        if (count >= 0)
            return {static_cast<std::size_t>(count), {}};
        if (errno != EAGAIN)
            return {0, lastFailure()};
        if (hungUp)
            return {0, hungUpFailure()};
        const Wake wake = await(POLLIN, kNever);
        if (wake == Wake::Closed)
            return {0, closedFailure()};
        if (wake == Wake::Failed)
            return {0, lastFailure()};
        hungUp = wake == Wake::HungUp;
    }
}

Transfer InterruptibleDescriptor::write(const void* buffer, std::size_t size) {
    const Call call(*this);
    if (!call.entered())
        return {0, closedFailure()};
    if (m_brokeOff)
        return {0, hungUpFailure()};
    const Transfer transfer = writeAll(buffer, size);
    m_brokeOff = transfer.failure && transfer.count > 0;
    return transfer;
}

Transfer InterruptibleDescriptor::writeAll(const void* buffer, std::size_t size) {
    const char* bytes = static_cast<const char*>(buffer);
    bool hungUp = false;
    auto stallEnd = Clock::now() + m_stallLimit; // only progress moves it on
    for (std::size_t sent = 0;;) {
        const std::ptrdiff_t count = writeSome(bytes + sent, size - sent);
        if (count < 0 && errno != EAGAIN)
            return {sent, lastFailure()};
        if (count > 0) {
            sent += static_cast<std::size_t>(count);
            stallEnd = Clock::now() + m_stallLimit;
        }
        if (sent == size)
            return {sent, {}};
        if (count < 0 && hungUp)
            return {sent, hungUpFailure()};
        // Also after progress: a peer that takes byte after byte must not keep a close() waiting.
        const bool stalled = count <= 0 && Clock::now() >= stallEnd;
        const Wake wake = await(POLLOUT, stallEnd);
        if (wake == Wake::Closed)
            return {sent, closedFailure()};
        if (wake == Wake::TimedOut || stalled)
            return {sent, std::make_error_code(std::errc::timed_out)};
        if (wake == Wake::Failed)
            return {sent, lastFailure()};
        hungUp = wake == Wake::HungUp;
    }
}

std::ptrdiff_t InterruptibleDescriptor::writeSome(const char* bytes, std::size_t size) const {
    if (m_isSocket)
        return retried([&] { return ::send(m_descriptor.value(), bytes, size, MSG_NOSIGNAL); });
    const PipeSignalGuard guard;
    return retried([&] { return ::write(m_descriptor.value(), bytes, size); });
}

InterruptibleDescriptor::Wake InterruptibleDescriptor::await(short event, Clock::time_point deadline) const {
    std::array<pollfd, 2> entries{{{m_descriptor.value(), event, 0}, {m_wakeUp.value(), POLLIN, 0}}};
    const int count = retried([&] { return ::poll(entries.data(), entries.size(), remainingMs(deadline)); });
    if (count < 0)
        return Wake::Failed;
    if (count == 0)
        return Wake::TimedOut;
    if (entries[1].revents != 0)
        return Wake::Closed;
    return (entries[0].revents & event) != 0 ? Wake::Ready : Wake::HungUp;
}

void InterruptibleDescriptor::close() {
    std::unique_lock guard(m_lock);
    if (!m_closed) {
        m_closed = true;
        static_cast<void>(::eventfd_write(m_wakeUp.value(), 1)); // full only if it is set already
    }
    m_left.wait(guard, [this] { return m_inside == 0; });
    m_descriptor = Descriptor();
}

} // namespace os
