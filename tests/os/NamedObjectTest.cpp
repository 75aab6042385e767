#include "tests/support/DeviceRootTest.h"

#include "platform/os/EventWaiter.h"
#include "platform/os/InstanceLock.h"
#include "platform/os/NamedEvent.h"
#include "platform/os/NamedMemory.h"
#include "platform/os/NamedMutex.h"
#include "platform/os/NamedObjectFolder.h"

#include <array>
#include <atomic>
#include <fstream>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using os::EventRight;
using os::EventWaiter;
using os::NamedEvent;
using Outcome = os::EventWaiter::Outcome;
using namespace std::chrono_literals;

class NamedObject : public DeviceRootTest {
protected:
    static NamedEvent made(std::string_view name, EventRight right) {
        std::error_code why;
        NamedEvent event = NamedEvent::create(name, right, why);
        EXPECT_FALSE(why) << why.message();
        return event;
    }
    static mode_t modeOf(const std::filesystem::path& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777U;
    }
};

TEST_F(NamedObject, OpeningNeverMakesAnEventAndTakesNothingElseForOne) {
    EXPECT_FALSE(NamedEvent::open("absent", EventRight::Set).isPresent());
    ASSERT_FALSE(os::makeNamedObjectFolder());
    EXPECT_FALSE(NamedEvent::open("absent", EventRight::Set).isPresent());
    EXPECT_FALSE(std::filesystem::exists(objectFile("absent")));
    std::ofstream(objectFile("file")) << "x";
    EXPECT_FALSE(NamedEvent::open("file", EventRight::Set).isPresent());
    EXPECT_FALSE(NamedEvent::open("../upgrade/file", EventRight::Set).isPresent());
    EXPECT_FALSE(NamedEvent().set());
}

TEST_F(NamedObject, AppearUnderTheirOwnNamesWithTheirFinalModeWhateverTheUmask) {
    const mode_t before = ::umask(0777);
    ASSERT_FALSE(os::makeNamedObjectFolder());
    const os::Descriptor watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    ASSERT_NE(::inotify_add_watch(watch.value(), (root() / "run/upgrade").c_str(), IN_ATTRIB), -1);
    made(R"(Global\AN_EVENT)", EventRight::Wait);
    const os::NamedMutex mutex(R"(Global\A_MUTEX)");
    const os::NamedMemory memory(R"(Global\A_MEMORY)", 336);
    ::umask(before);

    std::string changed(65536, '\0'); // the names of the files whose mode was changed, among other bytes
    ASSERT_GT(::read(watch.value(), changed.data(), changed.size()), 0);
    EXPECT_EQ(modeOf(root() / "run/upgrade"), 03770U);
    for (const char* name : {R"(Global\AN_EVENT)", R"(Global\A_MUTEX)", R"(Global\A_MEMORY)"}) {
        EXPECT_EQ(modeOf(root() / "run/upgrade" / name), 0660U) << name;
        EXPECT_EQ(changed.find(name), std::string::npos) << name << " appeared with another mode";
    }
}

TEST_F(NamedObject, AnEventRefusesWhatItWasNotOpenedFor) {
    NamedEvent setter = made("event", EventRight::Set);
    NamedEvent waiter = NamedEvent::open("event", EventRight::Wait);
    EXPECT_FALSE(waiter.set());
    EXPECT_FALSE(setter.isSet());
    EXPECT_TRUE(setter.set());
    EventWaiter wait;
    wait.watch(setter, 0);
    EXPECT_EQ(wait.wait(1ms).outcome, Outcome::TimedOut);
}

TEST_F(NamedObject, AnEventSetTwiceSatisfiesOneWaitAlsoWhenThePipeIsFull) {
    NamedEvent setter = made("event", EventRight::Set);
    NamedEvent waiter = NamedEvent::open("event", EventRight::Wait);
    EventWaiter wait;
    wait.watch(waiter, 0);
    for (const int times : {2, 4096, 4097, 100'000}) {
        for (int i = 0; i < times; ++i)
            ASSERT_TRUE(setter.set());
        EXPECT_EQ(wait.wait(kDeadline).outcome, Outcome::Signalled) << times;
        EXPECT_EQ(wait.wait(0ms).outcome, Outcome::TimedOut) << times;
    }
}

TEST_F(NamedObject, TheLowestSetEventComesFirstAndAbsentOnesArePassedOver) {
    NamedEvent first = made("first", EventRight::Set);
    NamedEvent second = made("second", EventRight::Set);
    const NamedEvent absent;
    const NamedEvent firstWaiter = NamedEvent::open("first", EventRight::Wait);
    const NamedEvent secondWaiter = NamedEvent::open("second", EventRight::Wait);
    EventWaiter wait;
    wait.watch(secondWaiter, 2);
    wait.watch(firstWaiter, 1);
    wait.watch(absent, 0);
    second.set();
    first.set();
    EXPECT_EQ(wait.wait(kDeadline).index, 1U);
    EXPECT_EQ(wait.wait(kDeadline).index, 2U);
    EXPECT_EQ(wait.wait(0ms).outcome, Outcome::TimedOut);
}

TEST_F(NamedObject, AWaitEndsForGoodFromAnotherThreadAlsoWithoutAnyEvent) {
    const NamedEvent absent;
    EventWaiter wait;
    wait.watch(absent, 0);
    std::atomic<int> ended = 0;
    std::thread waiting([&] {
        for (int i = 0; i < 2; ++i)
            ended += wait.wait().outcome == Outcome::Ended ? 1 : 0;
    });
    wait.end();
    waiting.join();
    EXPECT_EQ(ended, 2);
}

TEST_F(NamedObject, AnEventIsInUseWhileAnyoneHasItOpen) {
    {
        const NamedEvent event = made("event", EventRight::Wait);
        EXPECT_TRUE(NamedEvent::isInUse("event"));
    }
    EXPECT_FALSE(NamedEvent::isInUse("event"));
    EXPECT_FALSE(NamedEvent::isInUse("absent"));
}

TEST_F(NamedObject, MemoryIsZerosWithItsRoomReservedAndIsShared) {
    ASSERT_FALSE(os::makeNamedObjectFolder());
    std::ofstream(objectFile("empty")).close();
    for (const char* name : {"absent", "empty"}) {
        os::NamedMemory one(name, 336);
        const os::NamedMemory other(name, 336);
        struct stat status {};
        ASSERT_EQ(::stat(objectFile(name).c_str(), &status), 0);
        EXPECT_EQ(status.st_size, 336);
        EXPECT_GT(status.st_blocks, 0) << "a sparse file has no room for its bytes";
        std::array<std::byte, 336> bytes{std::byte{1}};
        EXPECT_TRUE(other.read(bytes));
        EXPECT_EQ(bytes, (std::array<std::byte, 336>{})) << name;
        EXPECT_TRUE(one.write(std::array{std::byte{'x'}}, 335));
        EXPECT_TRUE(other.read(bytes));
        EXPECT_EQ(bytes.back(), std::byte{'x'});
    }
}

TEST_F(NamedObject, MemoryOfAnotherSizeIsLeftAloneAndCannotBeAccessed) {
    ASSERT_FALSE(os::makeNamedObjectFolder());
    for (const std::uintmax_t size : {13U, 335U, 337U}) {
        std::ofstream(objectFile("other")) << std::string(size, 'x');
        os::NamedMemory other("other", 336);
        EXPECT_TRUE(other.failure());
        os::NamedMemory truncated("truncated", 336);
        std::filesystem::resize_file(objectFile("truncated"), size % 336);
        for (os::NamedMemory* memory : {&truncated, &other}) {
            std::array<std::byte, 336> bytes{};
            EXPECT_FALSE(memory->read(bytes)) << size;
            EXPECT_FALSE(memory->write(bytes)) << size;
        }
        EXPECT_EQ(std::filesystem::file_size(objectFile("truncated")), size % 336);
        EXPECT_EQ(std::filesystem::file_size(objectFile("other")), size);
        std::filesystem::remove(objectFile("truncated"));
    }
}

TEST_F(NamedObject, TheMutexExcludesThreadsAndOtherHolders) {
    os::NamedMutex one("mutex");
    os::NamedMutex other("mutex");
    std::array<os::NamedMutex*, 4> holders{&one, &one, &other, &other};
    std::array<std::thread, 4> threads;
    std::atomic<int> most = 0;
    std::atomic<int> now = 0;
    for (std::size_t i = 0; i < threads.size(); ++i) {
        threads[i] = std::thread([&, i] {
            for (int round = 0; round < 200; ++round) {
                const std::scoped_lock guard(*holders[i]);
                most = std::max(most.load(), ++now);
                --now;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(most, 1);
}

TEST_F(NamedObject, OneInstanceHoldsThePlaceUntilItEnds) {
    {
        const os::InstanceLock first("program");
        EXPECT_FALSE(first.isHeldByAnother());
        EXPECT_TRUE(os::InstanceLock("program").isHeldByAnother());
        EXPECT_FALSE(os::InstanceLock("another").isHeldByAnother());
    }
    EXPECT_FALSE(os::InstanceLock("program").isHeldByAnother());
    std::filesystem::remove_all(root());
    EXPECT_FALSE(os::InstanceLock("program").isHeldByAnother()) << "no folder to hold a place in";
}

} // namespace
