#include "platform/os/NamedObjectFolder.h"

#include "platform/os/DeviceRoot.h"
#include "platform/os/linux/ObjectFile.h"
#include "platform/os/linux/SystemCall.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace os {
namespace {

constexpr unsigned kRunFolderMode = 0755;

// The mode is set apart from the making, so that the process's umask cannot narrow it.
std::error_code makeFolder(const std::string& path, unsigned mode) {
    if (::mkdir(path.c_str(), mode) == 0)
        return ::chmod(path.c_str(), mode) == 0 ? std::error_code() : lastFailure();
    return errno == EEXIST ? std::error_code() : lastFailure();
}

} // namespace

std::string namedObjectFolder() { return deviceRoot() + "/run/upgrade"; }

std::error_code makeNamedObjectFolder() {
    if (const std::error_code failure = makeFolder(deviceRoot() + "/run", kRunFolderMode))
        return failure;
    return makeFolder(namedObjectFolder(), kFolderMode);
}

std::string namedObjectPath(std::string_view name) {
    const bool isFileName = !name.empty() && name != "." && name != ".." &&
                            name.find('/') == std::string_view::npos &&
                            name.find('\0') == std::string_view::npos;
    return isFileName ? namedObjectFolder() + '/' + std::string(name) : std::string();
}

Descriptor openOrCreateObjectFile(std::string_view name, std::error_code& why) {
    why = makeNamedObjectFolder();
    if (why)
        return {};
    const std::string path = namedObjectPath(name);
    constexpr int kFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;

    Descriptor made(retried([&] { return ::open(path.c_str(), kFlags | O_CREAT | O_EXCL, kObjectMode); }));
    if (made.isOpen()) {
        if (::fchmod(made.value(), kObjectMode) != 0)
            why = lastFailure();
        return made;
    }
    Descriptor found(retried([&] { return ::open(path.c_str(), kFlags); }));
    struct stat status {};
    if (!found.isOpen() || ::fstat(found.value(), &status) != 0) {
        why = lastFailure();
        return {};
    }
    if (!S_ISREG(status.st_mode)) {
        why = std::make_error_code(std::errc::invalid_argument);
        return {};
    }
    return found;
}

} // namespace os
