#include "platform/os/FileSync.h"

#include "platform/os/Descriptor.h"
#include "platform/os/linux/SystemCall.h"

#include <fcntl.h>
#include <unistd.h>

namespace os {
namespace {

// Any descriptor of the file will do: fsync() works on the file.
std::error_code sync(const std::string& path, int flags) {
    const Descriptor file(retried([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | flags); }));
    if (!file.isOpen() || retried([&] { return ::fsync(file.value()); }) != 0)
        return lastFailure();
    return {};
}

} // namespace

std::error_code syncFile(const std::string& path) {
    const std::error_code failure = sync(path, O_NONBLOCK);
    return failure ? failure : syncFolderOf(path);
}

std::error_code syncFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::error_code failure =
        sync(slash == std::string::npos ? "." : path.substr(0, slash + 1), O_DIRECTORY);
    const bool cannotBeSynced =
        failure == std::errc::permission_denied || failure == std::errc::invalid_argument;
    return cannotBeSynced ? std::error_code() : failure;
}

} // namespace os
