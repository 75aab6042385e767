#include "tests/property/PropertyManagerTest.h"

#include "platform/os/FileSystem.h"
#include "property/BoolProperty.h"
#include "property/PropertyFileWriter.h"
#include "property/StringProperty.h"
#include "property/TriggerProperty.h"
#include "property/UInt32Property.h"
#include "tests/propertyserver/ResidentBytes.h"
#include "tests/support/NoThreads.h"

#include <atomic>
#include <thread>

namespace {

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
