#include "platform/os/TcpConnection.h"

#include "platform/os/linux/Deadline.h"
#include "platform/os/linux/SystemCall.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace os {
namespace {

bool connects(int socket, const sockaddr_in& peer, Deadline deadline) {
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0)
        return true;
    if (errno != EINPROGRESS && errno != EINTR) // interrupted, it goes on by itself all the same
        return false;
    pollfd entry{socket, POLLOUT, 0};
    if (retried([&] { return ::poll(&entry, 1, remainingMs(deadline)); }) != 1)
        return false;
    int failure = 0;
    socklen_t size = sizeof failure;
    return ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &failure, &size) == 0 && failure == 0;
}

} // namespace

Descriptor openTcpConnection(std::uint32_t address, std::uint16_t port, std::chrono::milliseconds limit) {
    if (address == INADDR_ANY)
        return {}; // nobody's address, which Linux would take for this host
    const Deadline deadline = Deadline::clock::now() + limit;
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = address;
    Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP));
    if (!socket.isOpen() || !connects(socket.value(), peer, deadline))
        return {};
    const int on = 1;
    // Refused, it only makes small frames slower.
    static_cast<void>(::setsockopt(socket.value(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on));
    return socket;
}

void noticeLostPeer(int socket) {
    constexpr int idleSeconds = 30;
    constexpr int secondsBetweenProbes = 10;
    constexpr int probes = 3;
    constexpr unsigned unansweredMs = 60'000; // of what is written
    const auto set = [socket](int level, int option, const auto& value) {
        static_cast<void>(::setsockopt(socket, level, option, &value, sizeof value));
    };
    set(IPPROTO_TCP, TCP_KEEPIDLE, idleSeconds);
    set(IPPROTO_TCP, TCP_KEEPINTVL, secondsBetweenProbes);
    set(IPPROTO_TCP, TCP_KEEPCNT, probes);
    set(IPPROTO_TCP, TCP_USER_TIMEOUT, unansweredMs);
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
}

} // namespace os
