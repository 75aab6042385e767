#include "prefs/FileHelpers.h"

#include "platform/WideText.h"
#include "platform/os/DeviceRoot.h"
#include "platform/os/FileSystem.h"

#include <algorithm>

namespace {

constexpr wchar_t kSeparator = L'\\';
constexpr std::wstring_view kHere = LR"(.\)";
constexpr std::wstring_view kUp = LR"(..\)";

bool isAbsolute(std::wstring_view path) {
    return path.find(L':') != std::wstring_view::npos || path.starts_with(kSeparator) ||
           path.starts_with(L'/');
}

std::size_t occurrences(std::wstring_view text, std::wstring_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::wstring_view::npos;
         at = text.find(part, at + part.size()))
        ++count;
    return count;
}

std::wstring_view withoutLeadingMarkers(std::wstring_view path) {
    for (;;) {
        if (path.starts_with(kHere))
            path.remove_prefix(kHere.size());
        else if (path.starts_with(kUp))
            path.remove_prefix(kUp.size());
        else
            return path;
    }
}

std::wstring_view levelsUp(std::wstring_view folder, std::size_t levels) {
    for (; levels > 0; --levels) {
        const std::size_t last = folder.rfind(kSeparator);
        if (last == std::wstring_view::npos)
            break;
        folder = folder.substr(0, last);
    }
    return folder;
}

// Empty, which names nothing, for what is no path of the host: a path that is not absolute even now names
// a device of the printer, and one with a NUL would reach the host cut short.
std::string onHost(std::wstring_view path) {
    if (path.empty())
        return {};
    std::string result = os::hostPath(toNarrow(absolutePath(path)));
    const bool isPath = result.starts_with('/') && result.find('\0') == std::string::npos;
    return isPath ? result : std::string();
}

} // namespace

std::wstring absolutePath(std::wstring_view path) { return absolutePathFrom(programFolder(), path); }

std::string absolutePath(std::string_view path) { return toNarrow(absolutePath(toWide(path))); }

std::wstring absolutePathFrom(std::wstring_view folder, std::wstring_view path) {
    if (isAbsolute(path))
        return std::wstring(path);
    const bool hasSlashes = path.find(L'/') != std::wstring_view::npos;
    std::wstring spelled(path);
    std::ranges::replace(spelled, L'/', kSeparator);

    const bool endsInSeparator = spelled.ends_with(kSeparator);
    if (endsInSeparator)
        spelled.pop_back();
    const std::size_t ups = occurrences(spelled, kUp);
    std::wstring_view rest = withoutLeadingMarkers(spelled);
    // The marker ".\" whose separator has just been taken away; a ".." stays, because it was not counted.
    if (endsInSeparator && rest == L".")
        rest = {};

    std::wstring result(levelsUp(folder, ups));
    result += kSeparator;
    result += rest;
    if (endsInSeparator)
        result += kSeparator;
    if (hasSlashes)
        std::ranges::replace(result, kSeparator, L'/');
    return result;
}

std::wstring programFolder() { return toWide(os::programFolder()); }

bool pathExists(std::wstring_view path) { return os::pathExists(onHost(path)); }

bool isFolder(std::wstring_view path) { return os::isFolder(onHost(path)); }

std::vector<std::wstring> listFolder(std::wstring_view folder) {
    std::vector<std::wstring> names;
    for (const std::string& name : os::listFolder(onHost(folder)))
        names.push_back(toWide(name));
    return names;
}

bool fileIsReadable(std::string_view path) { return os::fileIsReadable(onHost(toWide(path))); }

std::optional<std::string> readFile(std::wstring_view path) {
    std::string bytes;
    if (os::readFile(onHost(path), bytes))
        return {};
    return bytes;
}

bool createFolder(std::wstring_view path) { return !os::createFolder(onHost(path)); }

bool copyFile(std::wstring_view source, std::wstring_view destination, bool overwrite) {
    static_cast<void>(copyFileWhole(source, destination, overwrite)); // the answer asks the disk instead
    return pathExists(destination);
}

bool copyFileWhole(std::wstring_view source, std::wstring_view destination, bool overwrite) {
    const auto existing = overwrite ? os::ExistingFile::Overwrite : os::ExistingFile::Refuse;
    return !os::copyFile(onHost(source), onHost(destination), existing);
}

bool replaceByCopy(std::wstring_view source, std::wstring_view destination) {
    return !os::replaceByCopy(onHost(source), onHost(destination));
}

bool rewriteFile(std::wstring_view path, const std::function<std::string(std::string_view)>& edit) {
    return !os::rewriteFile(onHost(path), edit);
}

bool removeFile(std::wstring_view path) { return !os::removeFile(onHost(path)); }
