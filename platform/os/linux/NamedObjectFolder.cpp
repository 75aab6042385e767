#include "platform/os/NamedObjectFolder.h"

#include "platform/os/DeviceRoot.h"
#include "platform/os/linux/ObjectFile.h"

namespace os {
namespace {

constexpr mode_t kRunFolderPermissions = 0755;
// Set-group-ID: objects belong to the folder's group. Sticky: only its owner can remove an object.
constexpr mode_t kFolderPermissions = 03770;

} // namespace

std::string namedObjectFolder() { return deviceRoot() + "/run/upgrade"; }

std::error_code makeNamedObjectFolder() {
    const std::error_code failure = makeWithMode(deviceRoot() + "/run", S_IFDIR | kRunFolderPermissions);
    return failure ? failure : makeWithMode(namedObjectFolder(), S_IFDIR | kFolderPermissions);
}

std::string namedObjectPath(std::string_view name) {
    const bool isFileName = !name.empty() && name != "." && name != ".." &&
                            name.find('/') == std::string_view::npos &&
                            name.find('\0') == std::string_view::npos;
    return isFileName ? namedObjectFolder() + '/' + std::string(name) : std::string();
}

} // namespace os
