#include "platform/os/FileSystem.h"
#include "prefs/FileHelpers.h"
#include "property/PropertyFileWriter.h"
#include "tests/property/PropertyManagerTest.h"

#include <functional>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// What happens to the files around the rewrites of one writer; the file holds A=1 and B=2 at first.
class RewriteTest : public PropertyManagerTest {
protected:
    void startAgain() {
        std::filesystem::remove_all(root());
        std::filesystem::create_directories(root() / "store");
        write(file(), good("G:A|g:n=1\nG:B|g:n=2\n"));
        write(backup(), good("G:A|g:n=1\nG:B|g:n=0\n"));
        writer = std::make_unique<PropertyFileWriter>();
    }
    void load() const {
        PropertyFileEntries ignored;
        static_cast<void>(writer->load(kFile, L"", ignored));
    }
    void set(const char* guid, const char* value) const {
        writer->queueLine(std::string("G:") + guid + "|g:n", value, kFile);
        writer->drainWriteQueue();
    }
    void move(const char* from, const char* to) const { std::filesystem::rename(root() / from, root() / to); }

    static constexpr auto kFile = L"/store/AppPreferences.ini";
    std::unique_ptr<PropertyFileWriter> writer;
};

TEST_F(RewriteTest, EachRewriteBuildsOnTheBestLinesThatAreKnown) {
    const std::filesystem::path away = root() / "away";
    const struct {
        const char* name;
        std::function<void()> steps;
        const char* values;
    } kRows[] = {
        {"the folder is away for one drain and comes back with other values",
         [&] {
             load();
             move("store", "away");
             set("A", "3");
             move("away", "store");
             write(file(), good("G:A|g:n=1\nG:B|g:n=7\n"));
         },
         "3 7 4 "},
        {"the folder is away at startup",
         [&] {
             move("store", "away");
             load();
             set("A", "3");
             move("away", "store");
         },
         "3 2 4 "},
        {"the file is replaced by a FIFO at startup",
         [&] {
             std::filesystem::rename(file(), away);
             ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
             load();
             set("A", "3");
             std::filesystem::remove(file());
             std::filesystem::rename(away, file());
         },
         "3 2 4 "},
        {"the file is damaged while the program runs",
         [&] {
             load();
             set("B", "5");
             write(file(), "G:A|g:n=1\nG:B|g");
         },
         "1 5 4 "},
        {"the file is removed while the program runs",
         [&] {
             load();
             set("B", "5");
             std::filesystem::remove(file());
         },
         "1 5 4 "},
        {"the file is damaged before the first rewrite, and its backup is older",
         [&] { write(file(), "G:A|g:n=1\nG:B|g"); }, "1 0 4 "},
        {"the file and its backup are damaged",
         [&] {
             write(file(), "G:A|g:n=1\nG:B|g:n=6\nrest");
             write(backup(), "bad");
             load();
         },
         "1 6 4 "},
        {"the file is replaced by a larger one than is read",
         [&] {
             load();
             write(file(), good("G:A|g:n=3\nG:B|g:n=" + std::string(os::kMaxFileSize, 'x') + '\n'));
         },
         "1 2 4 "},
        {"a value does not fit into the file",
         [&] {
             load();
             set("A", std::string(os::kMaxFileSize, 'x').c_str());
             set("B", "5");
         },
         "1 5 4 "},
        {"another file cannot be written",
         [&] {
             load();
             writer->queueLine("G:A|g:n", "9", L"/away/a folder that does not exist");
             set("A", "3");
         },
         "3 2 4 "},
    };
    for (const auto& row : kRows) {
        startAgain();
        row.steps();
        set("C", "4");
        EXPECT_EQ(valuesOf(kFile), row.values) << row.name;
    }
}

TEST_F(RewriteTest, AnInterruptedRewriteLosesAndInventsNothing) {
    const std::string before = good("G:A|g:n=111111\nG:B|g:n=222222\nG:C|g:n=333333\n");
    for (rlim_t room = 0; room <= before.size(); ++room) {
        for (const bool isSameProcess : {true, false}) {
            write(file(), before);
            write(backup(), before);
            writer = std::make_unique<PropertyFileWriter>();
            {
                const SmallMedium medium(room);
                writer->queueLine("G:A|g:n", "444444", kFile);
                writer->drainWriteQueue();
            }
            if (!isSameProcess)
                writer = std::make_unique<PropertyFileWriter>();
            writer->queueLine("G:C|g:n", "555555", kFile);
            writer->drainWriteQueue();
            const bool isChanged = isSameProcess || room == before.size();
            EXPECT_EQ(valuesOf(kFile), isChanged ? "444444 222222 555555 " : "111111 222222 555555 ")
                << room << isSameProcess;
        }
    }
}

TEST_F(RewriteTest, WithoutABackupValuesAreStoredAllTheSameAndOneLineIsLogged) {
    startAgain();
    std::filesystem::remove(backup());
    std::filesystem::create_directory(backup());
    ::testing::internal::CaptureStderr();
    load();
    set("A", "3");
    set("C", "4");
    EXPECT_EQ(valuesOf(kFile), "3 2 4 ");
    EXPECT_EQ(
        ::testing::internal::GetCapturedStderr(),
        "cannot copy \"/store/AppPreferences.ini\" to \"/store/AppPreferences.ini.bak\"; values are stored "
        "without a backup\n");
}

TEST_F(RewriteTest, AFullDiskKeepsTheFileAndStoresWhatFits) {
    startAgain();
    const char* const kOptions = "size=12k"; // three pages
    if (::mount("none", (root() / "store").c_str(), "tmpfs", 0, kOptions) != 0)
        GTEST_SKIP() << "needs the right to mount a file system";
    const auto set = [this](std::size_t size) { this->set("A", std::string(size, 'x').c_str()); };
    set(6'000); // two pages; no room for a backup
    set(7'000);
    EXPECT_EQ(valuesOf(kFile).size(), 7'001) << "stored without a backup";
    set(20'000);
    EXPECT_EQ(valuesOf(kFile).size(), 7'001) << "unchanged";
    ASSERT_EQ(::umount((root() / "store").c_str()), 0);
}

TEST_F(RewriteTest, ARelativePathStartsAtTheFolderOfTheProgram) {
    const std::wstring name = L"RewriteTest " + std::to_wstring(::getpid()) + L".ini";
    PropertyFileWriter relative;
    relative.queueLine("G:A|g:n", "1", name);
    relative.drainWriteQueue();
    EXPECT_EQ(valuesOf(name), "1 ");
    EXPECT_TRUE(removeFile(absolutePath(name)));
}

} // namespace
