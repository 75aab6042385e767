#include "tests/process/ProcessTest.h"

#include "app/UpgradeMessage.h"
#include "app/UpgradePlatform.h"
#include "app/UpgradeSharedRecord.h"
#include "platform/os/NamedMemory.h"
#include "platform/os/NamedMutex.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class Application : public ProcessTest {};

TEST_F(Application, FollowsAnUpgradeFromFileFoundToItsExit) {
    startUpgrader();
    upgrader->writePackageInfo({"1.5.0", "Label Printer", "EU"});
    upgrader->writePackageSize(1);
    ASSERT_TRUE(upgrader->send(std::vector<std::uint8_t>{MsgPackageInfo, MsgFileFound}, kDeadline));
    const auto application = startApplication();
    ASSERT_TRUE(upgrader->awaitTaken(kDeadline));
    for (std::uint8_t stage = ProgressInitiated; stage <= ProgressFinalOperation; ++stage)
        ASSERT_TRUE(upgrader->send(stage, kDeadline));
    ASSERT_TRUE(upgrader->send(MsgCompleted, kDeadline));
    EXPECT_TRUE(repliesWith(CommandProceed)) << "at the end of the countdown";
    upgrader->requestClose();
    EXPECT_TRUE(acknowledges());
    EXPECT_EQ(application->exitStatus(kDeadline), 0);
    EXPECT_EQ(output("UpgradeUI"), "") << "nothing to complain about";
}

TEST_F(Application, AnExitThatCameBeforeTheScreensIsNotLost) {
    startUpgrader();
    ASSERT_TRUE(upgrader->send(MsgExitUi, kDeadline));
    const auto application = startApplication();
    EXPECT_TRUE(repliesWith(CommandUiExiting));
    EXPECT_EQ(application->exitStatus(kDeadline), 0);
}

TEST_F(Application, ASecondStartEndsAtOnceAndTouchesNothing) {
    startUpgrader();
    const auto first = startApplication();
    upgrader->confirmStart();
    ASSERT_TRUE(acknowledges()) << "it listens";
    ASSERT_TRUE(upgrader->send(ProgressExtractingPkg, kDeadline));
    os::NamedMemory record(kUpgradeRecordName, sizeof(UpgradeSharedRecord));
    std::array<std::byte, sizeof(UpgradeSharedRecord)> bytes{};
    constexpr std::size_t kCommand = offsetof(UpgradeSharedRecord, uiCommand);
    ASSERT_TRUE(record.write(std::array{std::byte{77}}, kCommand)); // the second start must not clear it
    EXPECT_EQ(startApplication()->exitStatus(kDeadline), 0);
    ASSERT_TRUE(record.read(bytes));
    EXPECT_EQ(bytes[kCommand], std::byte{77});
    EXPECT_FALSE(upgrader->awaitReply(std::chrono::milliseconds(0)));
    ASSERT_TRUE(upgrader->send(MsgExitUi, kDeadline));
    EXPECT_TRUE(repliesWith(CommandUiExiting)) << "the first one is still there";
    EXPECT_EQ(first->exitStatus(kDeadline), 0);
}

TEST_F(Application, WithoutItsControlLibraryItGoesOnListening) {
    std::filesystem::remove_all(root() / "printer/hard disk");
    startUpgrader();
    const auto application = startApplication();
    for (int time = 0; time < 3; ++time) {
        upgrader->confirmStart();
        ASSERT_TRUE(acknowledges());
    }
    ASSERT_TRUE(eventually([&] { return !output("UpgradeUI").empty(); }))
        << "the engine reports the missing module";
    ASSERT_TRUE(upgrader->send(MsgExitUi, kDeadline));
    ASSERT_TRUE(upgrader->awaitTaken(kDeadline));
    EXPECT_TRUE(application->isRunning());
}

TEST_F(Application, GoesOnWhenTheUpgraderDiesWithTheMutexInItsHands) {
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    startUpgrader();
    const pid_t dying = ::fork();
    if (dying == 0) {
        os::NamedMutex mutex(kUpgradeMutexName);
        mutex.lock();
        if (::write(ready[1], "x", 1) == 1)
            ::pause(); // until it is killed
        ::_exit(1);
    }
    char held = 0;
    ASSERT_EQ(::read(ready[0], &held, 1), 1);
    const auto application = startApplication();
    upgrader->confirmStart();
    ASSERT_TRUE(acknowledges()) << "for that it needs no record";
    ::kill(dying, SIGKILL);
    ::waitpid(dying, nullptr, 0);
    ASSERT_TRUE(upgrader->send(MsgExitUi, kDeadline));
    EXPECT_TRUE(repliesWith(CommandUiExiting));
    EXPECT_EQ(application->exitStatus(kDeadline), 0);
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST_F(Application, ARestartedUpgraderGoesOnWithIt) {
    startUpgrader();
    const auto application = startApplication();
    ASSERT_TRUE(upgrader->send(MsgFileFound, kDeadline));
    ASSERT_TRUE(upgrader->awaitTaken(kDeadline));
    startUpgrader();
    ASSERT_TRUE(upgrader->send(MsgRequestClose, kDeadline));
    EXPECT_TRUE(repliesWith(CommandUiExiting));
    EXPECT_EQ(application->exitStatus(kDeadline), 0);
}

TEST_F(Application, SleepsWhileNothingHappensWithEventsAndWithoutAny) {
    {
        const auto application = startApplication();
        EXPECT_TRUE(eventually([&] { return sleeps(*application); })) << "no event there at all";
        EXPECT_TRUE(application->isRunning());
    }
    startUpgrader();
    const auto application = startApplication();
    ASSERT_TRUE(upgrader->send(MsgFileFound, kDeadline));
    ASSERT_TRUE(upgrader->awaitTaken(kDeadline));
    EXPECT_TRUE(eventually([&] { return sleeps(*application); })) << "a screen that waits for the user";
    EXPECT_TRUE(application->isRunning());
}

} // namespace
