#include "platform/os/DeviceRoot.h"

#include <algorithm>
#include <array>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace os {
namespace {

struct PrinterFolder {
    std::string_view folded; // without case and blanks
    std::string_view onHost;
};

constexpr std::array<PrinterFolder, 3> kPrinterFolders{{
    {"boot", "boot"},
    {"store", "store"},
    {"harddisk", "hard disk"},
}};

std::string executablePath() {
    std::string path(256, '\0');
    for (;;) {
        const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
        if (length < 0)
            return {};
        if (static_cast<std::size_t>(length) < path.size()) {
            path.resize(static_cast<std::size_t>(length));
            return path;
        }
        path.resize(path.size() * 2);
    }
}

const std::string& executableFolder() {
    static const auto& folder = *new std::string([] {
        const std::string path = executablePath();
        const std::size_t slash = path.rfind('/');
        return slash == std::string::npos ? std::string() : path.substr(0, slash);
    }());
    return folder;
}

// The program itself may live in a folder of the host that is called like one of the printer's.
bool isInProgramFolder(const std::string& path) {
    const std::string& folder = executableFolder();
    return !folder.empty() && path.starts_with(folder) &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

bool isFolder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string withoutFinalSlash(std::string path) {
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    return path;
}

std::string defaultDeviceRoot() {
    std::string beside = executableFolder() + "/printer";
    return isFolder(beside) ? beside : std::string();
}

std::string& currentDeviceRoot() {
    static auto& root = *new std::string(defaultDeviceRoot()); // for threads that outlive the statics
    return root;
}

std::string folded(std::string_view component) {
    std::string result;
    for (const char c : component) {
        if (c != ' ')
            result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

const PrinterFolder* printerFolder(std::string_view component) {
    const auto found = std::ranges::find(kPrinterFolders, folded(component), &PrinterFolder::folded);
    return found == kPrinterFolders.end() ? nullptr : found;
}

} // namespace

void setDeviceRoot(std::string folder) { currentDeviceRoot() = withoutFinalSlash(std::move(folder)); }

std::string deviceRoot() { return currentDeviceRoot(); }

std::string hostPath(std::string_view path) {
    std::string result(path);
    std::ranges::replace(result, '\\', '/');

    const std::size_t first = result.find_first_not_of('/');
    if (first == 0 || first == std::string::npos || isInProgramFolder(result))
        return result;
    const std::size_t last = std::min(result.find('/', first), result.size());
    const PrinterFolder* folder = printerFolder(std::string_view(result).substr(first, last - first));
    if (folder == nullptr)
        return result;
    return deviceRoot() + '/' + std::string(folder->onHost) + result.substr(last);
}

std::string devicePath(std::string_view name) {
    if (!name.ends_with(':') || name.find_first_of("/\\") != std::string_view::npos)
        return hostPath(name);
    name.remove_suffix(1);
    return deviceRoot() + "/dev/" + std::string(name);
}

std::string programFolder() {
    std::string folder = executableFolder();
    std::ranges::replace(folder, '/', '\\');
    return folder;
}

} // namespace os
