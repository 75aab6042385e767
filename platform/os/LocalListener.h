#pragma once

#include "platform/os/Descriptor.h"

#include <string>

namespace os {

/// Listens on a Unix stream socket of the host: the other side of what openDevice() connects to.
class LocalListener {
public:
    /// Listens at @p path, in a folder that exists. A socket there on which nobody listens any more gives
    /// way; anything else stays, and the listener is closed, as it is where the path is longer than the host
    /// takes. Who may connect is who may write to the socket: the user and the group of this process. Does
    /// not block.
    explicit LocalListener(const std::string& path);

    /// Removes the socket. Requires: no call begins any more.
    ~LocalListener();

    LocalListener(const LocalListener&) = delete;
    LocalListener& operator=(const LocalListener&) = delete;

    /// Returns whether the constructor succeeded.
    [[nodiscard]] bool isOpen() const { return m_socket.isOpen(); }

    /// Returns why it did not, without a full stop.
    [[nodiscard]] const std::string& failure() const { return m_failure; }

    /// Returns the next connection; an absent descriptor once close() was called and those from before it are
    /// taken, or where the host has no descriptor left. Thread: one at a time. Blocks without limit.
    [[nodiscard]] Descriptor accept();

    /// Returns a descriptor of the listening socket for an event loop, which then accepts in the place of
    /// accept(); absent where the host has none left.
    [[nodiscard]] Descriptor duplicate() const { return m_socket.duplicate(); }

    /// Refuses further connections and wakes accept(). May be repeated. Thread: any. Does not block.
    void close();

private:
    std::string m_path;
    std::string m_failure;
    Descriptor m_socket; // stays until the end, so that accept() never meets another file under its number
};

} // namespace os
