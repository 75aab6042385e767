#include "platform/os/NamedMemory.h"

#include "platform/os/linux/ObjectFile.h"
#include "platform/os/linux/SystemCall.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

// Two processes that find the file empty both reserve its room: the second call changes nothing.
std::error_code reserve(int file, std::size_t size) {
    int failure = EINTR;
    while (failure == EINTR)
        failure = ::posix_fallocate(file, 0, static_cast<off_t>(size));
    return {failure, std::system_category()};
}

std::error_code giveSize(int file, std::size_t size) {
    struct stat status {};
    if (::fstat(file, &status) != 0)
        return lastFailure();
    if (status.st_size == 0)
        return reserve(file, size);
    return static_cast<std::size_t>(status.st_size) == size ? std::error_code()
                                                            : std::make_error_code(std::errc::file_exists);
}

} // namespace

NamedMemory::NamedMemory(std::string_view name, std::size_t size)
    : m_size(size), m_file(openOrCreateObject(name, S_IFREG, m_failure)) {
    if (m_file.isOpen())
        m_failure = giveSize(m_file.value(), size);
    if (m_failure)
        m_file = {};
}

bool NamedMemory::read(std::span<std::byte> bytes) const {
    const auto count = retried([&] { return ::pread(m_file.value(), bytes.data(), bytes.size(), 0); });
    return count == static_cast<ssize_t>(m_size);
}

bool NamedMemory::write(std::span<const std::byte> bytes, std::size_t offset) {
    struct stat status {};
    if (::fstat(m_file.value(), &status) != 0 || static_cast<std::size_t>(status.st_size) != m_size)
        return false; // a write would give the file a third size
    const auto count = retried(
        [&] { return ::pwrite(m_file.value(), bytes.data(), bytes.size(), static_cast<off_t>(offset)); });
    return count == static_cast<ssize_t>(bytes.size());
}

} // namespace os
