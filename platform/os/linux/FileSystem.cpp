#include "platform/os/FileSystem.h"

#include "platform/os/Descriptor.h"
#include "platform/os/linux/SystemCall.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

constexpr unsigned kNewFolderMode = 0755;
constexpr unsigned kPermissions = 0777;

// Not blocking: a FIFO without a partner must not hold up the caller. Files take no notice of it.
constexpr int kOpenFlags = O_CLOEXEC | O_NONBLOCK;

Descriptor opened(const std::string& path, int flags, mode_t mode = 0) {
    return Descriptor(retried([&] { return ::open(path.c_str(), flags | kOpenFlags, mode); }));
}

std::error_code regularFileStatus(const Descriptor& file, struct stat& status) {
    if (!file.isOpen() || ::fstat(file.value(), &status) != 0)
        return lastFailure();
    return S_ISREG(status.st_mode) ? std::error_code() : std::make_error_code(std::errc::invalid_argument);
}

std::error_code writeWhole(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = retried([&] { return ::write(file.value(), bytes.data(), bytes.size()); });
        if (count < 0)
            return lastFailure();
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
}

// Gives the number of bytes copied: the source may have grown or shrunk since its size was asked.
std::error_code copyContent(const Descriptor& source, const Descriptor& destination, off_t& copied) {
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t count = retried([&] { return ::read(source.value(), buffer.data(), buffer.size()); });
        if (count < 0)
            return lastFailure();
        if (count == 0)
            return {};
        if (const auto failure = writeWhole(destination, {buffer.data(), static_cast<std::size_t>(count)}))
            return failure;
        copied += count;
    }
}

std::error_code reserveRoom(const Descriptor& file, off_t size) {
    if (size == 0 || retried([&] { return ::fallocate(file.value(), FALLOC_FL_KEEP_SIZE, 0, size); }) == 0)
        return {};
    // Not every file system can reserve; there the writing itself tells.
    return errno == EOPNOTSUPP || errno == ENOSYS ? std::error_code() : lastFailure();
}

// The end is cut last, and not the whole file first: until new bytes come the old ones stay.
std::error_code replaceContent(const Descriptor& source, off_t size, const Descriptor& destination) {
    // First the source: while its copy is written over, it is the one that must be on the medium.
    if (retried([&] { return ::fsync(source.value()); }) != 0)
        return lastFailure();
    if (const auto failure = reserveRoom(destination, size))
        return failure;
    off_t copied = 0;
    if (const auto failure = copyContent(source, destination, copied))
        return failure;
    if (retried([&] { return ::ftruncate(destination.value(), copied); }) != 0)
        return lastFailure();
    return retried([&] { return ::fsync(destination.value()); }) == 0 ? std::error_code() : lastFailure();
}

// A name is on the medium only when its folder is.
std::error_code syncFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const Descriptor folder =
        opened(slash == std::string::npos ? "." : path.substr(0, slash + 1), O_RDONLY | O_DIRECTORY);
    if (!folder.isOpen()) // one that may be written but not read cannot be synced by us
        return errno == EACCES ? std::error_code() : lastFailure();
    if (retried([&] { return ::fsync(folder.value()); }) == 0 || errno == EINVAL)
        return {}; // EINVAL: a file system that keeps no folders to sync
    return lastFailure();
}

} // namespace

bool pathExists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

bool isFolder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool fileIsReadable(const std::string& path) {
    const Descriptor file = opened(path, O_RDONLY);
    struct stat status {};
    return file.isOpen() && ::fstat(file.value(), &status) == 0 && !S_ISDIR(status.st_mode);
}

std::vector<std::string> listFolder(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code failure;
    for (std::filesystem::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure))
        names.push_back(entry->path().filename().string());
    std::ranges::sort(names);
    return names;
}

std::error_code createFolder(const std::string& path) {
    return ::mkdir(path.c_str(), kNewFolderMode) == 0 ? std::error_code() : lastFailure();
}

std::error_code copyFile(const std::string& source, const std::string& destination, ExistingFile existing) {
    struct stat from {};
    const Descriptor input = opened(source, O_RDONLY);
    if (const auto failure = regularFileStatus(input, from))
        return failure;
    const int refusal = existing == ExistingFile::Refuse ? O_EXCL : 0;
    struct stat to {};
    const Descriptor output = opened(destination, O_WRONLY | O_CREAT | refusal, from.st_mode & kPermissions);
    if (const auto failure = regularFileStatus(output, to))
        return failure;
    if (from.st_dev == to.st_dev && from.st_ino == to.st_ino)
        return std::make_error_code(std::errc::invalid_argument);
    if (const auto failure = replaceContent(input, from.st_size, output))
        return failure;
    return syncFolderOf(destination);
}

std::error_code removeFile(const std::string& path) {
    return ::unlink(path.c_str()) == 0 ? syncFolderOf(path) : lastFailure();
}

} // namespace os
