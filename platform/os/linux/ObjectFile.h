#pragma once

#include "platform/os/Descriptor.h"

#include <string_view>
#include <system_error>

/// Linux only: the files behind the named objects.
namespace os {

constexpr unsigned kObjectMode = 0660;
constexpr unsigned kFolderMode = 0770;

/// Opens the regular file of the object @p name for reading and writing, and makes it (and the folder) if
/// absent. Returns an absent descriptor on failure and puts the reason into @p why.
Descriptor openOrCreateObjectFile(std::string_view name, std::error_code& why);

} // namespace os
