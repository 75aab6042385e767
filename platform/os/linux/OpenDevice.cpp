#include "platform/os/InterruptibleDescriptor.h"

#include "platform/os/linux/SystemCall.h"

#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace os {
namespace {

Descriptor openCharacterDevice(const std::string& path) {
    constexpr int kFlags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
    Descriptor device(retried([&] { return ::open(path.c_str(), kFlags); }));
    struct stat status {};
    // Asked again: the path can lead elsewhere by now.
    if (!device.isOpen() || ::fstat(device.value(), &status) != 0 || !S_ISCHR(status.st_mode))
        return {};
    return device;
}

// Non-blocking from the start: a listener with a full queue refuses instead of holding the caller.
Descriptor connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return {};
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    if (retried([&] { return ::connect(socket.value(), generic, sizeof address); }) != 0)
        return {};
    return socket;
}

} // namespace

Descriptor openDevice(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    if (S_ISSOCK(status.st_mode))
        return connectTo(path);
    return S_ISCHR(status.st_mode) ? openCharacterDevice(path) : Descriptor();
}

} // namespace os
