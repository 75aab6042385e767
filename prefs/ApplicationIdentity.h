#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The identity of this program, and the fixed facts of the printer it runs on. One object, which is never
/// destroyed.
///
/// The three names are set once, by the main function, before another thread exists; after that everything
/// here is read-only and safe to call from any thread. Folders are spelled as the printer spells them:
/// os::hostPath() maps them where they are handed to the host.
class ApplicationIdentity {
public:
    /// Returns the object. Requires: the first call comes before any other thread exists.
    static ApplicationIdentity& instance();

    [[nodiscard]] std::string applicationName() const { return m_applicationName; }
    [[nodiscard]] std::string componentGuid() const { return m_componentGuid; }
    [[nodiscard]] std::string componentName() const { return m_componentName; }

    void setApplicationName(std::string name) { m_applicationName = std::move(name); }
    void setComponentGuid(std::string guid) { m_componentGuid = std::move(guid); }
    void setComponentName(std::string name) { m_componentName = std::move(name); }

    /// Returns how long the first value of another program's property is waited for, in milliseconds.
    [[nodiscard]] std::uint32_t externalPropertyTimeout() const { return m_externalPropertyTimeout; }

    [[nodiscard]] bool runsOnPrinter() const { return true; }
    [[nodiscard]] std::wstring streamDevicePath() const { return L"PRN0:"; }
    [[nodiscard]] std::wstring bootFolder() const { return L"/boot"; }
    [[nodiscard]] std::wstring storeFolder() const { return L"/store"; }
    [[nodiscard]] std::wstring hardDiskFolder() const { return L"/hard disk"; }
    [[nodiscard]] std::wstring qtRootFolder() const { return hardDiskFolder(); }
    [[nodiscard]] std::wstring bootFontsFolder() const { return L"/boot/fonts/"; }

    /// Returns a folder relative to the program's.
    [[nodiscard]] std::wstring localFontsFolder() const { return L"fonts/"; }

    /// Returns how the names of the folders of control libraries begin.
    [[nodiscard]] std::wstring controlsPrefix() const { return L"KC"; }

    // Paths and search lists. Those that look at the disk do so anew at each call.

    [[nodiscard]] std::wstring preferencesPath() const;
    [[nodiscard]] std::wstring preferencesOverridePath() const;

    /// Returns where the list of the printer's features lies, whether or not it does.
    [[nodiscard]] std::wstring systemFeaturesPath() const;

    /// Returns where applications lie, each folder with a separator at its end.
    [[nodiscard]] std::vector<std::string> applicationFolders() const;

    /// Returns the folders in @p folder whose names begin with controlsPrefix(), as absolute paths in the
    /// order of the listing.
    [[nodiscard]] std::vector<std::string> controlsFolders(std::wstring_view folder) const;

    /// Returns this application's folder of translations, or nothing where it does not exist.
    [[nodiscard]] std::string appTranslationsFolder() const;

    /// Returns where translations are searched, first to last. Not all of the folders exist, some may stand
    /// there twice, and the first may be empty.
    [[nodiscard]] std::vector<std::string> translationFolders() const;

private:
    ApplicationIdentity() = default;

    std::string m_applicationName;
    std::string m_componentGuid;
    std::string m_componentName;
    std::uint32_t m_externalPropertyTimeout = 3000;
};
