#pragma once

#include "platform/os/Descriptor.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <system_error>

namespace os {

/// How far a read or a write came. Reading at the peer's end moves nothing and is no failure.
struct Transfer {
    std::size_t count = 0;
    std::error_code failure; ///< operation_canceled: closed; timed_out: a write without progress.
};

/// A stream of bytes to a device or a socket whose blocked reads and writes end when it is closed.
///
/// One thread at a time reads, one at a time writes, and any closes. The descriptor's number goes back to
/// the host only when no call is inside, so that a call never meets another file under its number.
class InterruptibleDescriptor {
public:
    /// How long a write may go without progress.
    static constexpr std::chrono::milliseconds kStallLimit{5000};

    /// A closed one.
    InterruptibleDescriptor() = default;

    /// Takes over @p descriptor, a connected stream socket or a character device, and makes it non-blocking;
    /// an absent one gives a closed object.
    explicit InterruptibleDescriptor(Descriptor descriptor,
                                     std::chrono::milliseconds stallLimit = kStallLimit);

    /// As close(). Requires: no call begins any more.
    ~InterruptibleDescriptor();

    InterruptibleDescriptor(const InterruptibleDescriptor&) = delete;
    InterruptibleDescriptor& operator=(const InterruptibleDescriptor&) = delete;

    [[nodiscard]] bool isOpen() const;

    /// Reads what is there, at most @p size bytes, and waits for the first byte. Thread: one at a time.
    /// Blocks without limit, until close().
    [[nodiscard]] Transfer read(void* buffer, std::size_t size);

    /// Writes all of @p size bytes. A failure may come after some have gone out; then every later write fails
    /// too, since nobody could tell where its bytes begin. Never raises SIGPIPE.
    /// Thread: one at a time. Blocks until everything is out, until close(), or until no byte has gone out
    /// for the stall limit.
    [[nodiscard]] Transfer write(const void* buffer, std::size_t size);

    /// Fails the calls under way and every later one, and releases the descriptor. May be repeated.
    /// Thread: any. Blocks for the moment that the calls under way need to leave.
    void close();

private:
    class Call;
    enum class Wake { Ready, HungUp, TimedOut, Closed, Failed };

    [[nodiscard]] Transfer writeAll(const void* buffer, std::size_t size);
    [[nodiscard]] Wake await(short event, std::chrono::steady_clock::time_point deadline) const;
    [[nodiscard]] std::ptrdiff_t writeSome(const char* bytes, std::size_t size) const;

    Descriptor m_descriptor; // replaced by none when m_closed and no call is inside
    Descriptor m_wakeUp;
    std::chrono::milliseconds m_stallLimit = kStallLimit;
    bool m_isSocket = false;
    bool m_brokeOff = false; // a write, in its middle; only writes touch it

    mutable std::mutex m_lock;
    std::condition_variable m_left; // notified when the last call leaves
    int m_inside = 0;               // calls under way; guarded by m_lock
    bool m_closed = true;           // guarded by m_lock
};

/// Opens the device at @p path, a path of the host: a character device, for reading and writing and never as
/// the controlling terminal, or a Unix stream socket, by connecting to it. A terminal is set to raw mode, its
/// speed unchanged; neither opening nor closing it discards bytes.
/// Returns an absent descriptor if there is no such device, if it refuses, or if the path leads to anything
/// else. Thread-safe. Does not block.
Descriptor openDevice(const std::string& path);

} // namespace os
