#include "platform/os/FileBuffer.h"

#include "platform/os/Descriptor.h"
#include "platform/os/linux/SystemCall.h"

#include <ext/stdio_filebuf.h>
#include <fcntl.h>

namespace os {
namespace {

constexpr unsigned kNewFileMode = 0666;

// The table of std::filebuf::open().
int openFlags(std::ios::openmode mode) {
    const bool reads = (mode & std::ios::in) != 0;
    const bool appends = (mode & std::ios::app) != 0;
    if ((mode & std::ios::out) == 0 && !appends)
        return O_RDONLY;
    const int access = reads ? O_RDWR : O_WRONLY;
    if (appends)
        return access | O_CREAT | O_APPEND;
    return reads && (mode & std::ios::trunc) == 0 ? access : access | O_CREAT | O_TRUNC;
}

} // namespace

std::unique_ptr<std::filebuf> openFileBuffer(const std::string& path, std::ios::openmode mode) {
    Descriptor file(retried([&] { return ::open(path.c_str(), openFlags(mode) | O_CLOEXEC, kNewFileMode); }));
    auto buffer = std::make_unique<__gnu_cxx::stdio_filebuf<char>>(file.value(), mode);
    if (!buffer->is_open())
        return nullptr;
    static_cast<void>(file.release()); // the buffer closes it
    if ((mode & std::ios::ate) != 0)
        buffer->pubseekoff(0, std::ios::end);
    return buffer;
}

} // namespace os
