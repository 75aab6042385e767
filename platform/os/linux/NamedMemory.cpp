#include "platform/os/NamedMemory.h"

#include "platform/os/linux/ObjectFile.h"
#include "platform/os/linux/SystemCall.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

// Two processes that find the file empty both give it its size: the second time changes nothing.
std::error_code giveSize(int file, std::size_t size) {
    struct stat status {};
    if (::fstat(file, &status) != 0)
        return lastFailure();
    if (static_cast<std::size_t>(status.st_size) == size)
        return {};
    if (status.st_size != 0)
        return std::make_error_code(std::errc::file_exists);
    return retried([&] { return ::ftruncate(file, static_cast<off_t>(size)); }) == 0 ? std::error_code()
                                                                                     : lastFailure();
}

} // namespace

NamedMemory::NamedMemory(std::string_view name, std::size_t size) : m_size(size) {
    const Descriptor file = openOrCreateObject(name, S_IFREG, m_failure);
    if (!file.isOpen())
        return;
    m_failure = giveSize(file.value(), size);
    if (m_failure)
        return;
    void* data = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.value(), 0);
    if (data == MAP_FAILED)
        m_failure = lastFailure();
    else
        m_data = data;
}

NamedMemory::~NamedMemory() {
    if (m_data != nullptr)
        ::munmap(m_data, m_size);
}

} // namespace os
