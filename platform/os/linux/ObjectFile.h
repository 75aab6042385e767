#pragma once

#include "platform/os/Descriptor.h"

#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

/// Linux only: the files behind the named objects.
namespace os {

/// Makes a file, FIFO or folder at @p path unless one exists. @p mode is its type and its permissions, which
/// do not depend on the umask: no other process ever sees @p path with different ones. Returns the reason of
/// a failure.
std::error_code makeWithMode(const std::string& path, mode_t mode);

/// Opens the object called @p name for reading and writing, non-blocking. Its file must be of @p type,
/// S_IFREG or S_IFIFO. Returns an absent descriptor on failure and puts the reason into @p why.
Descriptor openObject(std::string_view name, mode_t type, std::error_code& why);

/// As openObject(), but makes the object, and the folder, if absent.
Descriptor openOrCreateObject(std::string_view name, mode_t type, std::error_code& why);

} // namespace os
