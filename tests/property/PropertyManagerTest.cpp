#include "property/PropertyManager.h"

#include "platform/ThreadFactory.h"
#include "platform/os/FileSystem.h"
#include "prefs/FileHelpers.h"
#include "property/BoolProperty.h"
#include "property/PropertyFileWriter.h"
#include "property/StringProperty.h"
#include "property/TriggerProperty.h"
#include "property/UInt32Property.h"

#include "tests/propertyserver/ResidentBytes.h"
#include "tests/support/DeviceRootTest.h"
#include "tests/support/NoThreads.h"

#include <atomic>
#include <csignal>
#include <fstream>
#include <sstream>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr std::int32_t kPriority = 251;

class PropertyManagerTest : public DeviceRootTest {
protected:
    PropertyManagerTest() {
        std::filesystem::create_directory(root() / "store");
        std::filesystem::create_directory(root() / "boot");
    }

    PropertyManager& start() {
        manager.reset();
        manager = std::make_unique<PropertyManager>(
            threads, kPriority, kPriority, L"/store/AppPreferences.ini", L"/boot/AppPreferencesOverride.ini");
        manager->startWorker();
        return *manager;
    }

    // What is queued is written when the manager goes.
    void finish() { manager.reset(); }

    template <typename Type, typename Value>
    std::shared_ptr<Type> add(const char* guid, Value value) {
        auto property = std::make_shared<Type>(value, guid, "n", "G", "g");
        manager->addPersistentProperty(property);
        return property;
    }

    [[nodiscard]] std::filesystem::path file() const { return root() / "store/AppPreferences.ini"; }
    [[nodiscard]] std::filesystem::path backup() const { return root() / "store/AppPreferences.ini.bak"; }
    [[nodiscard]] std::filesystem::path overrideFile() const {
        return root() / "boot/AppPreferencesOverride.ini";
    }

    static void write(const std::filesystem::path& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static std::string read(const std::filesystem::path& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }
    static std::string good(const std::string& lines) { return withFileCheck(lines); }

    bool loadingFailed() {
        const auto error = manager->findProperty("A32AFFED-7C37-47FE-80DB-B21875E226BD", errorGroup());
        return error && error->getStringValue() == "True";
    }
    std::string errorGroup() {
        PropertyQueue all;
        manager->getAllProperties(all);
        for (const auto& property : all) {
            if (property->getGuid() == "A32AFFED-7C37-47FE-80DB-B21875E226BD")
                return property->getGroupGuid();
        }
        return {};
    }
    std::shared_ptr<Property> named(const std::string& name) {
        PropertyQueue all;
        manager->getAllProperties(all);
        for (const auto& property : all) {
            if (property->getName() == name)
                return property;
        }
        return nullptr;
    }

    std::shared_ptr<ThreadFactory> threads = std::make_shared<ThreadFactory>(kPriority);
    std::unique_ptr<PropertyManager> manager;
};

TEST_F(PropertyManagerTest, WithoutAFileDefaultsHoldAndTheFirstChangeMakesOne) {
    start();
    EXPECT_TRUE(loadingFailed());
    const auto number = add<UInt32Property>("A", 5U);
    number->setValue(5);
    finish();
    EXPECT_FALSE(std::filesystem::exists(file()))
        << "registering and setting to the same value write nothing";
    start();
    const auto again = add<UInt32Property>("A", 5U);
    again->setValue(6);
    EXPECT_TRUE(eventually([&] { return read(file()) == good("G:A|g:n=6\n"); })) << read(file());
}

TEST_F(PropertyManagerTest, StoredValuesComeBackSilentlyAndOnlyToTheirOwn) {
    write(file(), good("G:A|g:n=7\nG:B|g:n=text = |\nG:C|g:n=False\nH:A|g:n=9\n"));
    start();
    EXPECT_FALSE(loadingFailed());
    int calls = 0;
    const auto number = std::make_shared<UInt32Property>(1U, "A", "n", "G", "g");
    number->addListener([&calls](const std::shared_ptr<Property>&) { ++calls; });
    EXPECT_TRUE(manager->addPersistentProperty(number));
    EXPECT_EQ(number->getValue(), 7U);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(add<StringProperty>("B", "default")->getValue(), "text = |");
    EXPECT_FALSE(add<BoolProperty>("C", true)->getValue());
    EXPECT_EQ(add<UInt32Property>("D", 4U)->getValue(), 4U) << "nothing was stored";
    EXPECT_FALSE(manager->addPersistentProperty(number)) << "a second time";
    EXPECT_FALSE(
        manager->addPersistentProperty(std::make_shared<UInt32Property>(1U, "A", "other", "G", "g")));
    EXPECT_EQ(manager->findProperty("A", "G"), number);
    finish();
    EXPECT_EQ(read(file()), good("G:A|g:n=7\nG:B|g:n=text = |\nG:C|g:n=False\nH:A|g:n=9\n"));
    EXPECT_EQ(read(backup()), read(file()));
}

TEST_F(PropertyManagerTest, AChangeReplacesItsLineAndLeavesTheOthers) {
    write(file(), good("X:Y|unknown:property=kept\nG:A|g:n=1\nG:A|g:old name=2\n"));
    start();
    const auto number = add<UInt32Property>("A", 0U);
    EXPECT_EQ(number->getValue(), 2U) << "the later line";
    const auto added = add<StringProperty>("B", "");
    number->setValue(3);
    added->setValue("new");
    finish();
    EXPECT_EQ(read(file()), good("X:Y|unknown:property=kept\nG:A|g:n=1\nG:A|g:n=3\nG:B|g:n=new\n"));
    number->setValue(4); // after the manager's end it goes nowhere
}

TEST_F(PropertyManagerTest, ABadStoredNumberKeepsTheDefaultAndEndsNothing) {
    for (const char* value : {"", "no digits", "4294967296", "99999999999999999999999"}) {
        write(file(), good("G:A|g:n=" + std::string(value) + "\nG:B|g:n=7\n"));
        start();
        EXPECT_EQ(add<UInt32Property>("A", 5U)->getValue(), 5U) << value;
        EXPECT_EQ(add<UInt32Property>("B", 5U)->getValue(), 7U) << value;
        manager->loadTrigger()->setValue(true); // now with the properties in the table
        EXPECT_TRUE(manager->loadTrigger()->getValue()) << value;
    }
}

TEST_F(PropertyManagerTest, ADamagedFileIsHealedFromItsCopy) {
    const std::string whole = good("G:A|g:n=1\nG:B|g:n=2\n");
    std::vector<std::string> damaged{"", "\xFF\xFF", good("no key\n"), good("")};
    for (std::size_t size = 0; size < whole.size(); size += 5)
        damaged.push_back(whole.substr(0, size));
    for (const std::string& bytes : damaged) {
        write(file(), bytes);
        write(backup(), whole);
        start();
        EXPECT_FALSE(loadingFailed()) << bytes;
        EXPECT_EQ(add<UInt32Property>("B", 0U)->getValue(), 2U) << bytes;
        EXPECT_EQ(read(file()), whole) << bytes;
    }
}

TEST_F(PropertyManagerTest, WithBothDamagedDefaultsHoldAndTheBadLinesSurvive) {
    write(file(), "G:A|g:n=1\nG:B|g:n=2\n??");
    write(backup(), "bad");
    write(overrideFile(), good("G:A|g:n=8\n"));
    start();
    EXPECT_TRUE(loadingFailed());
    const auto number = add<UInt32Property>("B", 5U);
    EXPECT_EQ(number->getValue(), 5U);
    number->setValue(6);
    finish();
    EXPECT_EQ(read(file()), good("G:A|g:n=1\nG:B|g:n=6\n"));
    EXPECT_TRUE(std::filesystem::exists(overrideFile())) << "not looked at";
}

TEST_F(PropertyManagerTest, AnOverrideIsTakenOnce) {
    write(file(), good("G:A|g:n=1\nG:B|g:n=2\n"));
    write(overrideFile(), good("G:A|other:name=8\nG:Z|g:n=9\n"));
    start();
    EXPECT_EQ(add<UInt32Property>("A", 0U)->getValue(), 8U);
    EXPECT_EQ(add<UInt32Property>("Z", 0U)->getValue(), 0U) << "the file does not know it";
    finish();
    EXPECT_EQ(read(file()), good("G:A|g:n=8\nG:B|g:n=2\n"));
    EXPECT_FALSE(std::filesystem::exists(overrideFile()));
    EXPECT_EQ(read(backup()), good("G:A|g:n=1\nG:B|g:n=2\n")) << "as it was loaded";

    write(overrideFile(), "G:A|g:n=7\n??");
    start();
    EXPECT_EQ(add<UInt32Property>("A", 0U)->getValue(), 8U);
    EXPECT_TRUE(std::filesystem::exists(overrideFile())) << "a damaged one stays";
    write(overrideFile(), good("G:Z|g:n=9\n"));
    start();
    EXPECT_FALSE(std::filesystem::exists(overrideFile())) << "with nothing that counts it goes at once";
}

TEST_F(PropertyManagerTest, TheOwnPropertiesStandInTheTable) {
    start();
    EXPECT_EQ(named("Name of Property File")->getStringValue(), "/store/AppPreferences.ini");
    EXPECT_EQ(named("Name of Property Override File")->getStringValue(), "/boot/AppPreferencesOverride.ini");
    EXPECT_EQ(named("Store Properties")->getStringValue(), "False");
    EXPECT_EQ(named("Load Properties"), nullptr);
}

TEST_F(PropertyManagerTest, TheStoreTriggerWritesAllAndTheLoadTriggerReadsAgain) {
    start();
    const auto number = add<UInt32Property>("A", 5U);
    named("Store Properties")->setFromString("True");
    EXPECT_EQ(named("Store Properties")->getStringValue(), "True");
    const auto stored = [this] { return read(file()).find("G:A|g:n=5\n") != std::string::npos; };
    ASSERT_TRUE(eventually(stored));
    EXPECT_NE(read(file()).find("Name of Property File=/store/AppPreferences.ini\n"), std::string::npos);

    finish();
    write(file(), good("G:A|g:n=6\n"));
    start();
    const auto again = add<UInt32Property>("A", 5U);
    write(file(), good("G:A|g:n=7\n"));
    manager->loadTrigger()->setValue(true);
    EXPECT_EQ(again->getValue(), 7U);
    std::filesystem::remove(backup());
    write(file(), "bad");
    manager->loadTrigger()->setValue(true);
    EXPECT_FALSE(manager->loadTrigger()->getValue());
    EXPECT_TRUE(loadingFailed());
    EXPECT_EQ(again->getValue(), 7U);
}

TEST_F(PropertyManagerTest, RemovalsHappenOnTheWorkerAndAreSignalled) {
    start();
    const auto done = std::make_shared<SimpleEvent>(true);
    const auto one = add<UInt32Property>("A", 5U);
    const auto other = add<UInt32Property>("B", 5U);
    manager->removeProperty(nullptr, done);
    manager->removeProperty(one, done);
    ASSERT_TRUE(done->wait(20'000));
    EXPECT_EQ(manager->findProperty("A", "G"), nullptr);
    EXPECT_EQ(manager->findProperty("B", "G"), other);
    manager->removeProperty(std::make_shared<BoolProperty>(true, "", "", "G", ""), done);
    ASSERT_TRUE(done->wait(20'000));
    EXPECT_EQ(manager->findProperty("B", "G"), nullptr) << "without a GUID the whole group goes";
}

TEST_F(PropertyManagerTest, AFullMediumLosesNothingThatItHasRoomForLater) {
    start();
    const auto one = add<UInt32Property>("A", 0U);
    const auto other = add<UInt32Property>("B", 0U);
    std::filesystem::create_symlink("/dev/full", file());
    for (std::uint32_t value = 1; value <= 50; ++value)
        one->setValue(value);
    EXPECT_TRUE(std::filesystem::is_symlink(file()));
    std::filesystem::remove(file());
    other->setValue(1); // the next change wakes the writer
    finish();
    EXPECT_EQ(read(file()), good("G:A|g:n=50\nG:B|g:n=1\n"));
}

// A medium with room for so many bytes a file: what is written beyond that breaks off.
class SmallMedium {
public:
    explicit SmallMedium(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        m_ignored = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallMedium() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_ignored);
    }
    SmallMedium(const SmallMedium&) = delete;
    SmallMedium& operator=(const SmallMedium&) = delete;

private:
    rlimit m_before{};
    void (*m_ignored)(int) = nullptr;
};

std::string valuesOf(const std::wstring& path) {
    PropertyFileEntries entries;
    std::string values = PropertyFileStore::parseFile(path, entries) ? "" : "damaged ";
    for (const PropertyFileEntry& entry : entries)
        values.append(entry.value).append(" ");
    return values;
}

TEST_F(PropertyManagerTest, AnInterruptedRewriteLosesAndInventsNothing) {
    const std::wstring path = L"/store/AppPreferences.ini";
    const std::string before = good("G:A|g:n=111111\nG:B|g:n=222222\nG:C|g:n=333333\n");
    for (rlim_t room = 0; room <= before.size(); ++room) {
        for (const bool isSameProcess : {true, false}) {
            write(file(), before);
            write(backup(), before);
            auto writer = std::make_unique<PropertyFileWriter>();
            {
                const SmallMedium medium(room);
                writer->queueLine("G:A|g:n", "444444", path);
                writer->drainWriteQueue();
            }
            if (!isSameProcess)
                writer = std::make_unique<PropertyFileWriter>();
            writer->queueLine("G:C|g:n", "555555", path);
            writer->drainWriteQueue();
            const bool isChanged = isSameProcess || room == before.size();
            EXPECT_EQ(valuesOf(path), isChanged ? "444444 222222 555555 " : "111111 222222 555555 ")
                << room << isSameProcess;
        }
    }
}

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

TEST_F(PropertyManagerTest, AValueWithALineEndIsNotWrittenAndHarmsNoOther) {
    start();
    const auto text = add<StringProperty>("A", "");
    const auto number = add<UInt32Property>("B", 0U);
    text->setValue("one");
    text->setValue("two\nlines");
    number->setValue(7);
    finish();
    EXPECT_EQ(read(file()), good("G:A|g:n=one\nG:B|g:n=7\n"));
}

TEST_F(PropertyManagerTest, AFileThatCannotBeReadIsNotTakenForAnEmptyOne) {
    constexpr uid_t kNobody = 65534; // root reads everything
    const std::string before = good("G:A|g:n=1\nG:B|g:n=2\n");
    write(file(), before);
    std::filesystem::permissions(root(), std::filesystem::perms::all);
    std::filesystem::permissions(root() / "store", std::filesystem::perms::all);
    std::filesystem::permissions(file(), std::filesystem::perms{0222});
    const bool isRoot = ::geteuid() == 0;
    PropertyFileWriter writer;
    writer.queueLine("G:A|g:n", "3", L"/store/AppPreferences.ini");
    ASSERT_EQ(isRoot ? ::seteuid(kNobody) : 0, 0);
    writer.drainWriteQueue();
    ASSERT_EQ(isRoot ? ::seteuid(0) : 0, 0);
    std::filesystem::permissions(file(), std::filesystem::perms{0666});
    EXPECT_EQ(read(file()), before);
    writer.drainWriteQueue();
    EXPECT_EQ(read(file()), good("G:A|g:n=3\nG:B|g:n=2\n"));
}

TEST_F(PropertyManagerTest, AfterBothWereDamagedValuesPersistAgain) {
    write(file(), "G:A|g:n=1\ntorn\nG:B|g");
    write(backup(), "bad");
    start();
    add<UInt32Property>("B", 5U)->setValue(6);
    start();
    EXPECT_FALSE(loadingFailed());
    EXPECT_EQ(add<UInt32Property>("A", 0U)->getValue(), 1U);
    EXPECT_EQ(add<UInt32Property>("B", 5U)->getValue(), 6U);
}

TEST_F(PropertyManagerTest, ALoadDoesNotBringBackWhatASetHasReplaced) {
    write(file(), good("G:A|g:n=1\n"));
    start();
    const auto number = add<UInt32Property>("A", 0U);
    for (std::uint32_t value = 2; value < 30; ++value) {
        number->setValue(value);
        manager->loadTrigger()->setValue(true);
        ASSERT_EQ(number->getValue(), value);
    }
}

TEST_F(PropertyManagerTest, AnOverrideThatWaitsForRoomIsNotTakenAgainOverALaterSet) {
    write(file(), good("G:A|g:n=1\n"));
    write(overrideFile(), good("G:A|g:n=8\n"));
    {
        const SmallMedium medium(0);
        start();
        const auto number = add<UInt32Property>("A", 0U);
        EXPECT_EQ(number->getValue(), 8U);
        number->setValue(9);
        manager->loadTrigger()->setValue(true);
        EXPECT_EQ(number->getValue(), 9U);
    }
    add<UInt32Property>("B", 0U)->setValue(2); // wakes the writer
    finish();
    EXPECT_EQ(read(file()), good("G:A|g:n=9\nG:B|g:n=2\n"));
    EXPECT_FALSE(std::filesystem::exists(overrideFile()));
}

TEST_F(PropertyManagerTest, WithoutAThreadTheEndWritesWhatIsQueued) {
    {
        const NoThreads none;
        start();
    }
    add<UInt32Property>("A", 0U)->setValue(1);
    finish();
    EXPECT_EQ(read(file()), good("G:A|g:n=1\n"));
}

TEST_F(PropertyManagerTest, AfterItsEndNothingMoreIsWritten) {
    start();
    const auto number = add<UInt32Property>("A", 0U);
    std::atomic<bool> isDone = false;
    std::thread setter([&] {
        for (std::uint32_t value = 1; !isDone; ++value)
            number->setValue(value);
    });
    ASSERT_TRUE(eventually([this] { return std::filesystem::exists(file()); }));
    finish();
    ASSERT_TRUE(eventually(
        [] { return valuesOf(L"/store/AppPreferences.ini").find("damaged") == std::string::npos; }));
    const std::string atTheEnd = read(file());
    const std::uint32_t value = number->getValue();
    ASSERT_TRUE(eventually([&] { return number->getValue() > value + 1000; }));
    isDone = true;
    setter.join();
    EXPECT_EQ(read(file()), atTheEnd);
}

TEST_F(PropertyManagerTest, LargeFilesAndLongLinesLoadAndChange) {
    std::string lines;
    for (int i = 0; i < 10'000; ++i)
        lines += "G:" + std::to_string(i) + "|g:n=" + std::to_string(i) + '\n';
    const std::string longText(800'000, 'x');
    write(file(), good(lines + "G:L|g:n=" + longText + '\n'));
    start();
    EXPECT_EQ(add<StringProperty>("L", "")->getValue(), longText);
    const auto last = add<UInt32Property>("9999", 0U);
    EXPECT_EQ(last->getValue(), 9999U);
    last->setValue(1);
    EXPECT_TRUE(eventually([&] { return read(file()).find("\nG:9999|g:n=1\n") != std::string::npos; }));
}

TEST_F(PropertyManagerTest, RepeatedStoresQueueOneLineForEachProperty) {
    ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0); // nothing can be written
    start();
    static_cast<void>(add<StringProperty>("A", std::string(10'000, 'x')));
    const std::size_t before = residentBytes();
    for (int i = 0; i < 26'000; ++i)
        named("Store Properties")->setFromString("True");
    EXPECT_LT(residentBytes(), before + (32U << 20U));
}

TEST_F(PropertyManagerTest, LoadsRegistrationsSetsAndRemovalsMeetWithoutADeadlock) {
    write(file(), good("G:A0|g:n=1\nG:A1|g:n=2\n"));
    start();
    std::atomic<bool> isDone = false;
    std::thread loader([&] {
        while (!isDone)
            manager->loadTrigger()->setValue(true);
    });
    for (int i = 0; i < 100; ++i) {
        const auto property = std::make_shared<UInt32Property>(0U, "A" + std::to_string(i), "n", "G", "g");
        manager->addPersistentProperty(property);
        property->setValue(static_cast<std::uint32_t>(i) + 10);
        manager->removeProperty(property, nullptr);
    }
    isDone = true;
    loader.join();
    finish();
    EXPECT_NE(read(file()).find("G:A99|g:n=109\n"), std::string::npos);
}

} // namespace
