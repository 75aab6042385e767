#include "prefs/ApplicationIdentity.h"

#include "platform/WideText.h"
#include "prefs/FileHelpers.h"

#include <utility>

namespace {

constexpr std::string_view kProgramsOwn = "./";
constexpr std::string_view kTranslations = "/translations";
constexpr std::string_view kErrorTranslations = "/boot/translations/ErrorDetectors";

// The folder ends in a separator, so that a name in it follows directly.
std::vector<std::string> foldersIn(const std::string& folder) {
    std::vector<std::string> result;
    for (const std::wstring& name : listFolder(toWide(folder))) {
        std::string path = folder + toNarrow(name);
        if (isFolder(toWide(path)))
            result.push_back(std::move(path));
    }
    return result;
}

void appendTranslationsOf(const std::vector<std::string>& owners, std::vector<std::string>& folders) {
    for (const std::string& owner : owners)
        folders.push_back(owner + std::string(kTranslations));
}

} // namespace

ApplicationIdentity& ApplicationIdentity::instance() {
    static ApplicationIdentity& identity = *new ApplicationIdentity; // a detached thread can outlive main()
    return identity;
}

std::wstring ApplicationIdentity::preferencesPath() const { return storeFolder() + L"/AppPreferences.ini"; }

std::wstring ApplicationIdentity::preferencesOverridePath() const {
    return bootFolder() + L"/AppPreferencesOverride.ini";
}

std::wstring ApplicationIdentity::systemFeaturesPath() const {
    static constexpr std::wstring_view kFile = L"/systemfeatures.json";
    if (pathExists(bootFolder()))
        return bootFolder().append(kFile);
    return absolutePath(L"./OXPLApps").append(L"/SystemFeatures").append(kFile);
}

std::vector<std::string> ApplicationIdentity::applicationFolders() const {
    return {"./OXPLApps/", "../QtDev/OXPLApps/", "/Hard Disk/KeltoPrinterApps/",
            "/HardDisk/KeltoPrinterApps/"};
}

std::vector<std::string> ApplicationIdentity::controlsFolders(std::wstring_view folder) const {
    std::vector<std::string> result;
    const std::wstring absolute = absolutePath(folder);
    const std::wstring prefix = absolute + L'/';
    for (const std::wstring& name : listFolder(absolute)) {
        const std::wstring path = prefix + name;
        if (name.starts_with(controlsPrefix()) && isFolder(path))
            result.push_back(toNarrow(path));
    }
    return result;
}

std::string ApplicationIdentity::appTranslationsFolder() const {
    std::string folder = absolutePath(kProgramsOwn) + "translations/" + applicationName();
    return pathExists(toWide(folder)) ? folder : std::string();
}

std::vector<std::string> ApplicationIdentity::translationFolders() const {
    std::vector<std::string> folders{appTranslationsFolder()};
    appendTranslationsOf(controlsFolders(toWide(kProgramsOwn)), folders);
    for (const std::string& applications : applicationFolders())
        appendTranslationsOf(foldersIn(absolutePath(applications)), folders);
    folders.emplace_back(kErrorTranslations);
    return folders;
}
