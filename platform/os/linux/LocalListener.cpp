#include "platform/os/LocalListener.h"

#include "platform/os/linux/LocalAddress.h"
#include "platform/os/linux/SystemCall.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

constexpr int kLongestQueue = 128;
constexpr mode_t kRights = 0660;

bool isSocketFile(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
}

// Asked with a socket of another type, which a listener refuses differently and never gets to see.
bool isDeserted(const sockaddr_un& address) {
    const Descriptor probe(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    return ::connect(probe.value(), generic(address), sizeof address) != 0 && errno == ECONNREFUSED;
}

bool binds(const Descriptor& socket, const sockaddr_un& address) {
    return ::bind(socket.value(), generic(address), sizeof address) == 0;
}

Descriptor fail(std::string& failure, const std::string& why) {
    failure = why;
    return {};
}

Descriptor listenAt(const std::string& path, std::string& failure) {
    const auto address = localAddress(path);
    if (!address)
        return fail(failure, "the path is too long for a socket");
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.isOpen())
        return fail(failure, lastFailure().message());
    if (!binds(socket, *address)) {
        if (errno != EADDRINUSE)
            return fail(failure, lastFailure().message());
        if (!isSocketFile(path))
            return fail(failure, "another file is there");
        if (!isDeserted(*address))
            return fail(failure, "it is taken by another server");
        if (::unlink(path.c_str()) != 0 || !binds(socket, *address))
            return fail(failure, lastFailure().message());
    }
    // A link that replaces the socket at this moment is not followed.
    if (::fchmodat(AT_FDCWD, path.c_str(), kRights, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::listen(socket.value(), kLongestQueue) != 0)
        return fail(failure, lastFailure().message());
    return socket;
}

} // namespace

LocalListener::LocalListener(const std::string& path) : m_path(path), m_socket(listenAt(path, m_failure)) {}

LocalListener::~LocalListener() {
    if (isOpen())
        ::unlink(m_path.c_str());
}

Descriptor LocalListener::accept() {
    return Descriptor(retried([&] { return ::accept4(m_socket.value(), nullptr, nullptr, SOCK_CLOEXEC); }));
}

// Linux ends an accept() of a listening socket that is shut down, the one that is blocked too.
void LocalListener::close() { static_cast<void>(::shutdown(m_socket.value(), SHUT_RDWR)); }

} // namespace os
