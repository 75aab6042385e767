#include "tests/support/DeviceRootTest.h"

#include "platform/WideText.h"
#include "prefs/FileHelpers.h"

#include <csignal>
#include <fstream>
#include <functional>
#include <optional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

struct PathRow {
    const char* what;
    std::wstring_view folder;
    std::wstring_view path;
    std::wstring_view absolute;
};

TEST(AbsolutePath, FollowsTheMarkerRules) {
    constexpr std::wstring_view kFolder = LR"(\a\b)";
    constexpr PathRow kRows[] = {
        {"a drive stays", kFolder, LR"(C:\x)", LR"(C:\x)"},
        {"a backslash at the front stays", kFolder, LR"(\x)", LR"(\x)"},
        {"a slash at the front stays, and mixed slashes with it", kFolder, LR"(/x\y/)", LR"(/x\y/)"},
        {"a device stays", kFolder, L"PRN0:", L"PRN0:"},
        {"a colon anywhere stays", kFolder, L"../x/y:z", L"../x/y:z"},
        {"a plain name", kFolder, L"x", LR"(\a\b\x)"},
        {"a final slash comes back", kFolder, L"fonts/", L"/a/b/fonts/"},
        {"a final backslash comes back", kFolder, LR"(fonts\)", LR"(\a\b\fonts\)"},
        {"one slash turns all", kFolder, LR"(x\y/z)", L"/a/b/x/y/z"},
        {"the folder itself doubles its separator", kFolder, L"./", L"/a/b//"},
        {"the folder itself, twice over", kFolder, L"././", L"/a/b//"},
        {"a leading marker goes", kFolder, L"./OXPLApps", L"/a/b/OXPLApps"},
        {"one level up", kFolder, L"../QtDev/OXPLApps/", L"/a/QtDev/OXPLApps/"},
        {"all levels up", kFolder, LR"(..\..\x)", LR"(\x)"},
        {"no level is left to cut", kFolder, LR"(..\..\..\..\QtCommon)", LR"(\QtCommon)"},
        {"a folder without separators stays", L"C:", LR"(..\x)", LR"(C:\x)"},
        {"markers in any order go", kFolder, LR"(.\..\.\x)", LR"(\a\x)"},
        {"a marker inside counts, and stays", kFolder, LR"(x\..\y)", LR"(\a\x\..\y)"},
        {"three dots count as a marker, and stay", kFolder, LR"(...\y)", LR"(\a\...\y)"},
        {"the final level up is not counted, and stays", kFolder, L"../", L"/a/b/../"},
        {"a hidden name stays", kFolder, L".x", LR"(\a\b\.x)"},
        {"nothing names the folder", kFolder, L"", LR"(\a\b\)"},
        {"a folder that is unknown", L"", L"./x", L"/x"},
    };
    for (const PathRow& row : kRows)
        EXPECT_EQ(absolutePathFrom(row.folder, row.path), row.absolute) << row.what;
}

TEST(AbsolutePath, StartsAtTheProgramsFolderAndItsNarrowTwinSaysTheSame) {
    const fs::path self = fs::canonical("/proc/self/exe").parent_path();
    EXPECT_EQ(absolutePath(std::string_view("./x\xE4")), self.string() + "/x\xE4");
    EXPECT_EQ(absolutePath(std::wstring_view(L"./x\u00E4")), toWide(self.string()) + L"/x\u00E4");
}

TEST(WideText, GoesCharacterByCharacter) {
    EXPECT_EQ(toWide("a\xE4\xFF"), L"a\u00E4\u00FF");
    EXPECT_EQ(toNarrow(L"a\u00FF\u20AC"), "a\xFF\xAC");
    EXPECT_EQ(toNarrow(toWide(std::string_view("\0\x80", 2))), std::string_view("\0\x80", 2));
}

class FileHelpers : public DeviceRootTest {
protected:
    FileHelpers() { fs::create_directories(root() / "store" / "folder"); }

    void write(const char* name, std::string_view content) const {
        std::ofstream(root() / "store" / name, std::ios::binary) << content;
    }
    [[nodiscard]] std::string contentOf(const char* name) const {
        std::ifstream file(root() / "store" / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

struct KindRow {
    std::wstring_view path;
    bool exists;
    bool folder;
    bool readable;
};

TEST_F(FileHelpers, TellWhatStandsAtAPath) {
    write("file", "x");
    ASSERT_EQ(::mkfifo((root() / "store/fifo").c_str(), 0600), 0);
    constexpr KindRow kRows[] = {
        {L"/store/file", true, false, true},
        {LR"(\STORE\file)", true, false, true},
        {L"/store/folder", true, true, false},
        {LR"(/store/folder\)", true, true, false},
        {L"/store/fifo", true, false, false},
        {L"/store/file/", false, false, false},
        {L"/store/absent", false, false, false},
        {L"", false, false, false},
        {L"store/file", false, false, false},
        {LR"(C:\store\file)", false, false, false},
        {L"..", true, true, false},
        {L"/store/file\u0100x", false, false, false},
    };
    const fs::path before = fs::current_path();
    fs::current_path(root()); // where "store/file" would be found
    for (const KindRow& row : kRows) {
        EXPECT_EQ(pathExists(row.path), row.exists) << toNarrow(row.path);
        EXPECT_EQ(isFolder(row.path), row.folder) << toNarrow(row.path);
        EXPECT_EQ(fileIsReadable(toNarrow(row.path)), row.readable) << toNarrow(row.path);
    }
    fs::current_path(before);
}

TEST_F(FileHelpers, ListAFolderInByteOrder) {
    for (const char* name : {"b", "\xE4", ".hidden", "B"})
        write(name, "");
    const std::vector<std::wstring> expected{L".hidden", L"B", L"b", L"folder", L"\u00E4"};
    EXPECT_EQ(listFolder(L"/store"), expected);
    EXPECT_TRUE(listFolder(L"/store/absent").empty());
    EXPECT_TRUE(listFolder(L"/store/b").empty());
}

TEST_F(FileHelpers, MakeAFolderOnceAndNeverItsParents) {
    EXPECT_TRUE(createFolder(L"/store/new"));
    EXPECT_TRUE(isFolder(L"/store/new"));
    EXPECT_FALSE(createFolder(L"/store/new"));
    EXPECT_FALSE(createFolder(L"/store/a/b"));
}

TEST_F(FileHelpers, RemoveAFile) {
    write("file", "x");
    EXPECT_TRUE(removeFile(L"/store/file"));
    EXPECT_FALSE(pathExists(L"/store/file"));
    EXPECT_FALSE(removeFile(L"/store/file"));
    EXPECT_FALSE(removeFile(L"/store/folder"));
}

struct CopyRow {
    const char* what;
    const char* source; // content; none where there is no file
    const char* destination;
    bool overwrite;
    bool isWhole;
    const char* after;
};

TEST_F(FileHelpers, CopyInPlaceAndAnswerForTheCopyAndForTheName) {
    constexpr CopyRow kRows[] = {
        {"a new copy", "new", nullptr, false, true, "new"},
        {"a copy over a longer file", "new", "a longer old one", true, true, "new"},
        {"a copy of nothing", "", "old", true, true, ""},
        {"an existing file is refused", "new", "old", false, false, "old"},
        {"an absent source leaves the destination", nullptr, "old", true, false, "old"},
        {"an absent source makes no destination", nullptr, nullptr, true, false, nullptr},
    };
    for (const CopyRow& row : kRows) {
        for (const bool asksForTheWhole : {true, false}) {
            fs::remove(root() / "store/from");
            fs::remove(root() / "store/to");
            if (row.source)
                write("from", row.source);
            if (row.destination)
                write("to", row.destination);
            if (asksForTheWhole)
                EXPECT_EQ(copyFileWhole(L"/store/from", L"/store/to", row.overwrite), row.isWhole)
                    << row.what;
            else
                EXPECT_EQ(copyFile(L"/store/from", L"/store/to", row.overwrite), row.after != nullptr)
                    << row.what;
            EXPECT_EQ(pathExists(L"/store/to"), row.after != nullptr) << row.what;
            EXPECT_EQ(contentOf("to"), row.after ? row.after : "") << row.what;
        }
    }
    EXPECT_FALSE(copyFileWhole(L"/store/folder", L"/store/to", true)) << "a folder is no source";
    EXPECT_FALSE(copyFileWhole(L"/store/from", L"/store/folder", true)) << "a folder is no destination";
}

TEST_F(FileHelpers, CopyAFileOfManyBuffers) {
    std::string content(200'003, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7 + i / 251);
    write("from", content);
    EXPECT_TRUE(copyFileWhole(L"/store/from", L"/store/to", true));
    EXPECT_EQ(contentOf("to"), content);
    fs::create_symlink("from", root() / "store/link");
    EXPECT_FALSE(copyFileWhole(L"/store/from", L"/store/link", true)) << "onto itself";
    EXPECT_EQ(contentOf("from"), content);
}

TEST_F(FileHelpers, ACopyThatEndsEarlyIsToldFromAWholeOne) {
    write("from", std::string(5000, 'n'));
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit narrow{4000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &narrow), 0);
    const bool isWhole = copyFileWhole(L"/store/from", L"/store/to", true);
    const bool exists = copyFile(L"/store/from", L"/store/to", true);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, previous);
    EXPECT_FALSE(isWhole);
    EXPECT_TRUE(exists);
}

// Only this process sees what is mounted. The names of users have to be told, or nothing may be mounted.
bool mountedSmallDisk(const fs::path& folder) {
    const std::string user = "0 " + std::to_string(::getuid()) + " 1";
    const std::string group = "0 " + std::to_string(::getgid()) + " 1";
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << user;
    std::ofstream("/proc/self/gid_map") << group;
    return ::mount("none", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
}

// Returns what the check returns, in a process of its own; no value where the host lets nobody mount.
std::optional<bool> onASmallDisk(const fs::path& folder, const std::function<bool()>& check) {
    constexpr int kRefused = 77;
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(!mountedSmallDisk(folder) ? kRefused : check() ? 0 : 1);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == kRefused)
        return {};
    return WEXITSTATUS(status) == 0;
}

TEST_F(FileHelpers, ACopyThatHasNoRoomLeavesTheDestination) {
    fs::create_directory(root() / "boot");
    std::ofstream(root() / "boot/from") << std::string(100'000, 'n');
    const std::optional<bool> isKept = onASmallDisk(root() / "store", [this] {
        write("to", "old");
        return !copyFileWhole(L"/boot/from", L"/store/to", true) && contentOf("to") == "old";
    });
    if (!isKept)
        GTEST_SKIP() << "no disk may be mounted here";
    EXPECT_TRUE(*isKept);
}

} // namespace
