#include "tests/support/DeviceRootTest.h"

#include "prefs/ApplicationIdentity.h"
#include "prefs/FileHelpers.h"

#include <algorithm>
#include <fstream>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// A folder beside the program under test, for what is searched there.
class ProgramsFolder {
public:
    explicit ProgramsFolder(const char* name)
        : m_path(fs::canonical("/proc/self/exe").parent_path() / (name + std::to_string(::getpid()))) {
        fs::create_directories(m_path);
    }
    ~ProgramsFolder() {
        std::error_code ignored; // the folder above may be in use by others
        fs::remove_all(m_path, ignored);
        fs::remove(m_path.parent_path(), ignored);
    }
    ProgramsFolder(const ProgramsFolder&) = delete;
    ProgramsFolder& operator=(const ProgramsFolder&) = delete;

    [[nodiscard]] std::string name() const { return m_path.filename().string(); }
    [[nodiscard]] const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

TEST(Identity, OutlivesTheStaticObjects) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // no identity exists when the handler is registered
    static constexpr const char* kName = "a name that is too long for the string itself";
    const auto exits = [] {
        std::atexit([] { ::_exit(ApplicationIdentity::instance().applicationName() == kName ? 0 : 1); });
        ApplicationIdentity::instance().setApplicationName(kName);
        std::exit(2); // NOLINT(concurrency-mt-unsafe): there is no other thread
    };
    EXPECT_EXIT(exits(), testing::ExitedWithCode(0), "");
}

class SearchFolders : public DeviceRootTest {
protected:
    SearchFolders() { identity().setApplicationName("NoSuchApplication"); }

    static ApplicationIdentity& identity() { return ApplicationIdentity::instance(); }
    [[nodiscard]] fs::path made(const char* folder) const {
        fs::create_directories(root() / folder);
        return root() / folder;
    }
};

TEST_F(SearchFolders, TakeFoldersOfControlsByTheirPrefix) {
    const fs::path folder = made("boot");
    for (const char* name : {"KCFoo", "KC", "kcLower", "MyKC"})
        fs::create_directory(folder / name);
    std::ofstream(folder / "KCBar") << "a file";
    EXPECT_EQ(identity().controlsFolders(L"/boot"), (std::vector<std::string>{"/boot/KC", "/boot/KCFoo"}));
    EXPECT_TRUE(identity().controlsFolders(L"/boot/absent").empty());
}

TEST_F(SearchFolders, OfTranslationsStandInTheirOrder) {
    const fs::path applications = made("hard disk/KeltoPrinterApps");
    fs::create_directory(applications / "First");
    fs::create_directory(applications / "Second");
    std::ofstream(applications / "file") << "a file";
    const ProgramsFolder controls("KCOfTest");

    const std::string own =
        controls.path().parent_path().string() + "///" + controls.name() + "/translations";
    const std::vector<std::string> folders = identity().translationFolders();
    EXPECT_EQ(folders.front(), "") << "the application has no translations here";
    EXPECT_EQ(std::ranges::count(folders, own), 1);
    const std::vector<std::string> expectedEnd{
        "/Hard Disk/KeltoPrinterApps/First/translations",
        "/Hard Disk/KeltoPrinterApps/Second/translations",
        "/HardDisk/KeltoPrinterApps/First/translations",
        "/HardDisk/KeltoPrinterApps/Second/translations",
        "/boot/translations/ErrorDetectors",
    };
    ASSERT_GE(folders.size(), expectedEnd.size());
    const auto count = static_cast<std::ptrdiff_t>(expectedEnd.size());
    EXPECT_EQ(std::vector<std::string>(folders.end() - count, folders.end()), expectedEnd);
}

TEST_F(SearchFolders, TheApplicationsOwnTranslationsComeFirstOnceTheyAreThere) {
    EXPECT_EQ(identity().appTranslationsFolder(), "");
    const ProgramsFolder own("translations/OfTest");
    identity().setApplicationName(own.name());
    EXPECT_EQ(identity().appTranslationsFolder(),
              own.path().parent_path().parent_path().string() + "//translations/" + own.name());
    EXPECT_EQ(identity().translationFolders().front(), identity().appTranslationsFolder());
}

} // namespace
