#include "platform/os/InterruptibleDescriptor.h"

#include "platform/os/linux/LocalAddress.h"
#include "platform/os/linux/SystemCall.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace os {
namespace {

// Frames are bytes: a terminal must neither translate nor echo them. Nothing that has arrived is discarded.
bool setRaw(const Descriptor& terminal) {
    termios settings{};
    if (::tcgetattr(terminal.value(), &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    return retried([&] { return ::tcsetattr(terminal.value(), TCSANOW, &settings); }) == 0;
}

Descriptor openCharacterDevice(const std::string& path) {
    constexpr int kFlags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
    Descriptor device(retried([&] { return ::open(path.c_str(), kFlags); }));
    struct stat status {};
    // Checked again: the path can lead elsewhere by now.
    if (!device.isOpen() || ::fstat(device.value(), &status) != 0 || !S_ISCHR(status.st_mode))
        return {};
    if (::isatty(device.value()) == 1 && !setRaw(device))
        return {};
    return device;
}

// Non-blocking from the start: a listener with a full queue refuses instead of holding the caller.
Descriptor connectTo(const std::string& path) {
    const auto address = localAddress(path);
    if (!address)
        return {};
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (retried([&] { return ::connect(socket.value(), generic(*address), sizeof *address); }) != 0)
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
