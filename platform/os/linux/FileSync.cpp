#include "platform/os/FileSync.h"

#include "platform/os/Descriptor.h"
#include "platform/os/linux/SystemCall.h"

#include <fcntl.h>
#include <unistd.h>

namespace os {
namespace {

// Which descriptor asks does not matter: the data belong to the file.
std::error_code sync(const std::string& path, int flags) {
    const Descriptor file(retried([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | flags); }));
    if (!file.isOpen() || retried([&] { return ::fsync(file.value()); }) != 0)
        return lastFailure();
    return {};
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

} // namespace

std::error_code syncFile(const std::string& path) {
    if (const std::error_code failure = sync(path, O_NONBLOCK))
        return failure;
    const std::error_code failure = sync(folderOf(path), O_DIRECTORY);
    // A folder that may be written but not read cannot be synced by us; the file is.
    return failure == std::errc::permission_denied ? std::error_code() : failure;
}

} // namespace os
