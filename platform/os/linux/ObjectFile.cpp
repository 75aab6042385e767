#include "platform/os/linux/ObjectFile.h"

#include "platform/os/NamedObjectFolder.h"
#include "platform/os/linux/SystemCall.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace os {
namespace {

constexpr mode_t kObjectPermissions = 0660;
constexpr mode_t kAllPermissions = 07777;

bool makeAt(const std::string& path, mode_t mode) {
    return S_ISDIR(mode) ? ::mkdir(path.c_str(), mode & kAllPermissions) == 0
                         : ::mknod(path.c_str(), mode, 0) == 0;
}

bool setPermissions(const std::string& path, mode_t permissions) {
    return ::fchmodat(AT_FDCWD, path.c_str(), permissions, AT_SYMLINK_NOFOLLOW) == 0;
}

bool renameUnlessTaken(const std::string& from, const std::string& to) {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

} // namespace

std::error_code makeWithMode(const std::string& path, mode_t mode) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0)
        return {};
    // A name that no other thread uses: each thread makes one object at a time.
    const std::string unfinished =
        path.substr(0, path.rfind('/') + 1) + ".unfinished-" + std::to_string(::gettid());
    std::remove(unfinished.c_str()); // left by a process that was killed
    if (!makeAt(unfinished, mode))
        return lastFailure();
    if (setPermissions(unfinished, mode & kAllPermissions) && renameUnlessTaken(unfinished, path))
        return {};
    const std::error_code failure = lastFailure();
    std::remove(unfinished.c_str());
    return failure == std::errc::file_exists ? std::error_code() : failure;
}

Descriptor openObject(std::string_view name, mode_t type, std::error_code& why) {
    constexpr int kFlags = O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY;
    const std::string path = namedObjectPath(name);
    Descriptor object(retried([&] { return ::open(path.c_str(), kFlags); }));
    struct stat status {};
    why.clear();
    if (!object.isOpen() || ::fstat(object.value(), &status) != 0)
        why = lastFailure();
    else if ((status.st_mode & S_IFMT) != type)
        why = std::make_error_code(std::errc::invalid_argument);
    return why ? Descriptor() : std::move(object);
}

Descriptor openOrCreateObject(std::string_view name, mode_t type, std::error_code& why) {
    const std::string path = namedObjectPath(name);
    why = path.empty() ? std::make_error_code(std::errc::invalid_argument) : makeNamedObjectFolder();
    if (!why)
        why = makeWithMode(path, type | kObjectPermissions);
    return why ? Descriptor() : openObject(name, type, why);
}

} // namespace os
