#pragma once

#include <string>
#include <string_view>
#include <system_error>

/// The folder "run/upgrade" under the device root, in which the named objects live, each as a file under its
/// own name to the letter. The folder has mode 3770: the members of its group may take part, and only the
/// owner of an object can remove it.
namespace os {

/// Returns the path of the folder. Thread: any.
std::string namedObjectFolder();

/// Makes the folder if it is absent; the device root itself must exist. Returns what went wrong, if anything.
/// Thread: any.
std::error_code makeNamedObjectFolder();

/// Returns the path of the object called @p name; empty if a file cannot have that name. Thread: any.
std::string namedObjectPath(std::string_view name);

} // namespace os
