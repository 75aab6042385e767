#include "platform/os/FileSystem.h"

#include "platform/os/Descriptor.h"
#include "platform/os/FileSync.h"
#include "platform/os/linux/SystemCall.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

constexpr unsigned kNewFolderMode = 0755;
constexpr unsigned kNewFileMode = 0666; // less the umask
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

// Passes the content to @p take, block by block, until that fails.
template <typename Take>
std::error_code readBlocks(const Descriptor& file, Take take) {
    std::array<char, 65536> buffer;
    for (off_t offset = 0;;) {
        const ssize_t count =
            retried([&] { return ::pread(file.value(), buffer.data(), buffer.size(), offset); });
        if (count < 0)
            return lastFailure();
        if (count == 0)
            return {};
        if (const std::error_code failure =
                take(std::string_view(buffer.data(), static_cast<std::size_t>(count))))
            return failure;
        offset += count;
    }
}

std::error_code copyContent(const Descriptor& source, const Descriptor& destination) {
    return readBlocks(source, [&](std::string_view block) { return writeWhole(destination, block); });
}

std::error_code readContent(const Descriptor& file, std::string& bytes) {
    bytes.clear();
    struct stat status {};
    if (const auto failure = regularFileStatus(file, status))
        return failure;
    const std::error_code failure = readBlocks(file, [&bytes](std::string_view block) {
        if (bytes.size() + block.size() > kMaxFileSize)
            return std::make_error_code(std::errc::file_too_large);
        bytes += block;
        return std::error_code();
    });
    if (failure)
        bytes.clear();
    return failure == std::errc::file_too_large ? std::error_code() : failure;
}

std::error_code reserveRoom(const Descriptor& file, off_t size) {
    if (size == 0 || retried([&] { return ::fallocate(file.value(), FALLOC_FL_KEEP_SIZE, 0, size); }) == 0)
        return {};
    // Not every file system can reserve; there the writing itself tells.
    return errno == EOPNOTSUPP || errno == ENOSYS ? std::error_code() : lastFailure();
}

// Reserves room for @p size bytes, so that a full medium leaves the file unchanged, empties the file, and
// calls
// @p write for the new content. The old bytes go first: an interruption leaves no mix of old and new lines.
template <typename Write>
std::error_code replaceContent(const Descriptor& file, off_t size, Write write) {
    if (const auto failure = reserveRoom(file, size))
        return failure;
    if (retried([&] { return ::ftruncate(file.value(), 0); }) != 0)
        return lastFailure();
    if (const auto failure = write())
        return failure;
    return retried([&] { return ::fsync(file.value()); }) == 0 ? std::error_code() : lastFailure();
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
    struct stat status {};
    return !regularFileStatus(opened(path, O_RDONLY), status);
}

std::error_code readFile(const std::string& path, std::string& bytes) {
    return readContent(opened(path, O_RDONLY), bytes);
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
    // The source first: it must be on the medium while its copy is overwritten.
    if (retried([&] { return ::fsync(input.value()); }) != 0)
        return lastFailure();
    if (const auto failure = replaceContent(output, from.st_size, [&] { return copyContent(input, output); }))
        return failure;
    return syncFolderOf(destination);
}

std::error_code replaceByCopy(const std::string& source, const std::string& destination) {
    const std::string temporary = destination + ".new";
    std::error_code failure = copyFile(source, temporary, ExistingFile::Overwrite);
    if (!failure && ::rename(temporary.c_str(), destination.c_str()) != 0)
        failure = lastFailure();
    if (!failure)
        return syncFolderOf(destination);
    static_cast<void>(::unlink(temporary.c_str())); // the failure is what the caller must know
    return failure;
}

std::error_code rewriteFile(const std::string& path,
                            const std::function<std::string(std::string_view)>& edit) {
    const Descriptor file = opened(path, O_RDWR | O_CREAT, kNewFileMode);
    std::string old;
    if (const auto failure = readContent(file, old))
        return failure;
    const std::string bytes = edit(old);
    const auto size = static_cast<off_t>(bytes.size());
    if (const auto failure = replaceContent(file, size, [&] { return writeWhole(file, bytes); }))
        return failure;
    return syncFolderOf(path);
}

std::error_code removeFile(const std::string& path) {
    return ::unlink(path.c_str()) == 0 ? syncFolderOf(path) : lastFailure();
}

} // namespace os
