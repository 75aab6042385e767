#pragma once

#include <string>
#include <string_view>

/// Where the printer's folders lie on this host.
///
/// The printer's programs speak of "/boot", "/store" and "/hard disk" and spell paths with either slash.
/// These names are mapped once, at the moment a path is handed to the host, below one folder: the device
/// root. It is the folder "printer" beside the program's executable if there is one, otherwise the host's own
/// root.
namespace os {

/// Takes @p folder as the device root from now on.
/// Requires: called before anything else of this floor is used. Thread: the first.
void setDeviceRoot(std::string folder);

/// Returns the device root without a final '/': empty for the host's own root. Thread: any.
std::string deviceRoot();

/// Returns the host's path for @p path as the printer spells it: every '\' becomes '/', and a path whose
/// first component is "boot", "store" or "hard disk" (compared without case and blanks) gets the device root
/// put before it. Any other path is the host's own, and so is one in the program's folder. Thread: any.
std::string hostPath(std::string_view path);

/// Returns the host's path for the device called @p name: "PRN0:" is "dev/PRN0" below the device root, and
/// so is every name that ends with ':' and has no slash of either kind. Any other name goes through
/// hostPath(). Thread: any.
std::string devicePath(std::string_view name);

/// Returns the folder of the running program as the printer spells it, with '\' between the components and
/// none at the end; empty where the host does not tell. Thread: any.
std::string programFolder();

} // namespace os
