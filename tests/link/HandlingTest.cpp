#include "tests/link/ScriptedPlatform.h"

#include "app/UpgradeMessage.h"
#include "app/WindowsUpgradeInterface.h"

#include "tests/support/DeviceRootTest.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <pthread.h>
#include <thread>

namespace {

using enum UserAction;

void fill(RecordText& field, std::string_view text) {
    field.fill('\0');
    std::ranges::copy(text, field.begin());
}

struct CodeRow {
    std::uint8_t code;
    const char* handling; // from DisplayIdle
};

TEST(Handling, EveryCodeCallsItsHandlersInOrder) {
    constexpr CodeRow kRows[] = {
        {0, ""},
        {1, "display 9"},
        {2, "display 9"},
        {3, "display 12"},
        {4, "display 0"},
        {5, "progress 5, display 1"},
        {6, "size 3100000000, progress 6, display 1"},
        {7, "progress 7, display 1"},
        {8, "progress 8, display 1"},
        {9, "progress 9, display 1"},
        {10, "progress 10, display 1"},
        {11, "progress 11, display 1"},
        {12, "progress 12, display 1"},
        {13, "progress 13, display 1"},
        {14, "progress 14, display 1"},
        {15, "progress 15, display 1"},
        {16, "display 2"},
        {17, "display 7"},
        {18, "display 5"},
        {19, "display 5"},
        {20, "display 7"},
        {21, "display 3"},
        {22, "display 4"},
        {23, "display 5"},
        {24, "display 8"},
        {25, "display 8"},
        {26, "display 8"},
        {27, "display 8"},
        {28, "display 6"},
        {29, "display 4"},
        {30, "printer 1.4/Printer//"},
        {31, "package 1.5//EU"},
        {32, "display 12"},
        {33, "display 9"},
        {34, "display 9"},
        {35, "display 10"},
        {36, ""},
        {255, ""},
    };
    for (const CodeRow& row : kRows) {
        ScriptedLink scripted;
        UpgradeSharedRecord& record = scripted.platform->record;
        record.packageSize = 3'100'000'000;
        fill(record.printerVersion, "1.4");
        fill(record.printerDeviceName, "Printer/");
        fill(record.packageVersion, "1.5");
        fill(record.packageRegion, "EU");
        EXPECT_EQ(scripted.take({row.code}), row.handling)
            << messageRule(row.code).name << ' ' << int{row.code};
    }
}

struct FileFoundRow {
    const char* name;
    std::vector<std::uint8_t> before;
    const char* handling;
};

TEST(Handling, AFoundFileDependsOnTheDisplay) {
    const FileFoundRow kRows[] = {
        {"idle", {}, "display 0"},
        {"already offered", {4}, "repair 1"},
        {"in progress", {7}, "repair 1"},
        {"completed", {16}, "repair 1"},
        {"corrupted", {21}, "progress 5, display 0"},
        {"incompatible", {22}, "progress 5, display 0"},
        {"failed", {18}, "progress 5, display 0"},
        {"not found", {17}, "progress 5, display 0"},
        {"next boot safe", {24}, "repair 1"},
        {"system integrity", {28}, "repair 1"},
        {"failed after system integrity", {28, 18}, "repair 1"},
        {"corrupted after system integrity", {28, 21}, "repair 1"},
        {"no reboot needed", {35}, "repair 1"},
        {"exit", {3}, "repair 1"},
    };
    for (const FileFoundRow& row : kRows) {
        ScriptedLink scripted;
        scripted.take(row.before);
        EXPECT_EQ(scripted.take({4}), row.handling) << row.name;
    }
}

TEST(Handling, OnlyABatteryPrinterWithoutAcPowerAsksForIt) {
    struct {
        std::vector<std::string> features;
        bool acConnected;
        const char* handling;
    } const kRows[] = {{{"Cutter"}, false, "display 0"},
                       {{}, true, "display 0"},
                       {{"Battery"}, true, "display 0"},
                       {{"Cutter", "Battery"}, false, "display 11"}};
    for (const auto& row : kRows) {
        ScriptedLink scripted(row.features, row.acConnected);
        EXPECT_EQ(scripted.take({4}), row.handling) << row.features.size() << row.acConnected;
        if (row.features.size() == 2) {
            EXPECT_EQ(scripted.act(ActionClose), "command 2");
            EXPECT_EQ(scripted.take({4}), "display 0");
        }
    }
}

TEST(Handling, AcPowerLeadsOnWhoWasAskedForItAndNobodyElse) {
    for (unsigned code = 0; code <= 35; ++code) {
        ScriptedLink scripted({"Battery"}, false);
        scripted.take({static_cast<std::uint8_t>(code)});
        scripted.link->handleACPower(false);
        EXPECT_EQ(scripted.platform->takeNotes(), "") << code;
        scripted.link->handleACPower(true);
        EXPECT_EQ(scripted.platform->takeNotes(), code == 4 ? "display 0" : "") << code;
        scripted.link->handleACPower(true);
        EXPECT_EQ(scripted.platform->takeNotes(), "") << code;
    }
}

struct ActionRow {
    const char* name;
    std::vector<std::uint8_t> before;
    UserAction action;
    const char* handling;
};

TEST(Handling, EveryActionInEveryDisplayThatMatters) {
    const ActionRow kRows[] = {
        {"upgrade an offered file", {4}, ActionUpgrade, "display 1, command 1"},
        {"cancel an offered file", {4}, ActionCancel, "command 2"},
        {"close an offered file", {4}, ActionClose, "command 2"},
        {"repair", {28, 4}, ActionRepair, "repair 0, display 1, command 1"},
        {"dismiss a failure", {18}, ActionOk, "progress 5, command 33, display 9"},
        {"close a failure", {18}, ActionClose, "progress 5, command 33, display 9"},
        {"close a corrupted file", {21}, ActionClose, "progress 5, command 33, display 9"},
        {"dismiss after system integrity", {28}, ActionOk, "progress 5, display 6"},
        {"dismiss a failed repair", {28, 18}, ActionOk, "progress 5, display 6"},
        {"close a failed repair", {28, 18}, ActionClose, "progress 5, display 6"},
        {"leave without a reboot", {35}, ActionOkNoReboot, "display 12"},
        {"reboot", {16}, ActionReboot, "command 33"},
        {"reboot a second time", {16}, ActionReboot, "command 33"},
        {"exit", {3}, ActionUiExiting, "command 34"},
        {"no such action", {4}, static_cast<UserAction>(8), ""},
    };
    for (const ActionRow& row : kRows) {
        ScriptedLink scripted;
        scripted.take(row.before);
        EXPECT_EQ(scripted.act(row.action), row.handling) << row.name;
    }
}

TEST(Handling, AnActionLeavesTheDisplayThatFollows) {
    ScriptedLink scripted;
    scripted.take({18});
    scripted.act(ActionOk);
    EXPECT_EQ(scripted.take({33}), "display 9") << "a dismissed failure is idle";
    scripted.take({4});
    scripted.act(ActionUpgrade);
    EXPECT_EQ(scripted.take({33}), "display 1") << "an upgrade is in progress at once";
    scripted.act(ActionCancel);
    EXPECT_EQ(scripted.take({33}), "display 1") << "a cancelled one waits for the upgrader";
}

TEST(Handling, TheRingWrapsAndHoldsTwentyFourCodes) {
    ScriptedLink scripted;
    scripted.take(std::vector<std::uint8_t>(23, 0));
    EXPECT_EQ(scripted.take({17, 18, 200, 21}), "display 7, display 5, display 3") << "slots 23, 24, 0, 1";
    EXPECT_EQ(scripted.platform->record.writeIndex, 2);
    EXPECT_EQ(scripted.take({}), "") << "an unchanged index";

    std::vector<std::uint8_t> full(24, 0);
    full.front() = 16;
    full.back() = 17;
    EXPECT_EQ(scripted.take(full), "display 2, display 7");
    EXPECT_EQ(scripted.take(std::vector<std::uint8_t>(25, 18)), "") << "overfilled, the ring looks empty";

    scripted.platform->record.writeIndex = 25;
    EXPECT_EQ(scripted.take({}), "") << "no slot of the ring";
}

TEST(Handling, ARunThatJoinsARecordInUseTakesItFromTheFirstSlot) {
    ScriptedLink scripted;
    scripted.platform->record.messageRing = {16, 17};
    scripted.platform->record.writeIndex = 2;
    EXPECT_EQ(scripted.take({}), "display 2, display 7");
}

TEST(Handling, TheNumberOfCodesIsFixedAtTheWake) {
    ScriptedLink scripted;
    ScriptedPlatform* platform = scripted.platform.get();
    scripted.link->setProgressHandler([platform](UpgradeProgressMsg) { platform->queue({16}); });
    EXPECT_EQ(scripted.take({7, 17}), "display 1, display 7");
    EXPECT_EQ(scripted.take({}), "display 2") << "with the next signal";
}

TEST(Handling, CloseIsHandledBeforeItIsAcknowledgedAndConfirmAfter) {
    ScriptedLink scripted;
    ASSERT_TRUE(scripted.platform->signal(UpgradeEvent::StartConfirm));
    EXPECT_EQ(scripted.platform->takeNotes(), "acknowledge, progress 13, display 1");
    ASSERT_TRUE(scripted.platform->signal(UpgradeEvent::RequestClose));
    EXPECT_EQ(scripted.platform->takeNotes(), "display 12, acknowledge");
}

TEST(Handling, TextsEndAtTheirNulOrAtTheFiftiethByte) {
    ScriptedLink scripted;
    const std::string full(49, 'v');
    const std::string unended(50, 'd');
    fill(scripted.platform->record.printerVersion, full);
    fill(scripted.platform->record.printerDeviceName, unended);
    EXPECT_EQ(scripted.take({30}), "printer " + full + '/' + unended + '/');
}

TEST(Handling, ObjectsAreOpenedInOrderAndTheCommandIsCleared) {
    auto platform = std::make_shared<ScriptedPlatform>();
    platform->record.uiCommand = 33;
    const auto link = std::make_shared<WindowsUpgradeInterface>(platform);
    EXPECT_EQ(platform->takeNotes(),
              R"(open Global\UPGRADE_UI_EVENT, open Global\UPGRADE_COM_EVENT, open Global\UPGRADE_UI_ACK, )"
              R"(open Global\DLL_REQUEST_CLOSE, open Global\DLL_UI_START_CONFIRM, )"
              R"(open Global\UPGRADE_SHARED_MEMORY, open Global\UPGRADE_SHMEM_MUTEX uiCommand 0)");
}

TEST(Handling, WithoutRecordOrMutexTheLinkOnlyAcknowledges) {
    for (const bool hasRecord : {false, true}) {
        auto platform = std::make_shared<ScriptedPlatform>();
        platform->hasRecord = hasRecord;
        platform->hasMutex = !hasRecord;
        const auto link = std::make_shared<WindowsUpgradeInterface>(platform);
        link->setDisplayHandler([&](UpgradeDisplay) { platform->note("display"); });
        link->start();
        platform->queue({16});
        platform->takeNotes();
        ASSERT_TRUE(platform->signal(UpgradeEvent::UiEvent));
        ASSERT_TRUE(platform->signal(UpgradeEvent::RequestClose));
        link->sendUserAction(ActionReboot);
        EXPECT_EQ(platform->takeNotes(), "display, acknowledge") << "record: " << hasRecord;
    }
}

TEST(Handling, AMutexThatIsKeptDelaysNoStepThatNeedsNoRecord) {
    ScriptedLink scripted;
    ScriptedPlatform* platform = scripted.platform.get();
    scripted.link->setProgressHandler([platform](UpgradeProgressMsg) { platform->keepMutex(true); });
    platform->queue({7, 30});
    platform->raise(UpgradeEvent::UiEvent);
    ASSERT_TRUE(eventually([platform] { return platform->isMutexAwaited(); })) << "for the texts of code 30";
    platform->takeNotes();
    std::thread user([&scripted] { scripted.link->sendUserAction(ActionOkNoReboot); });
    std::string notes;
    EXPECT_TRUE(eventually([&] { return (notes += platform->takeNotes()) == "display 12"; })) << notes;
    platform->keepMutex(false);
    user.join();
    EXPECT_TRUE(eventually([&] { return (notes += platform->takeNotes()) == "display 12printer //"; }))
        << notes;
}

TEST(Handling, TheLastReferenceCanBeDroppedOnTheListenerItself) {
    ScriptedLink scripted;
    const std::shared_ptr<ScriptedPlatform> platform = scripted.platform;
    scripted.link->setDisplayHandler([&scripted](UpgradeDisplay) { scripted.link.reset(); });
    platform->queue({16, 17});
    platform->raise(UpgradeEvent::UiEvent);
    EXPECT_TRUE(eventually([&] { return platform->waitHasEnded() && platform.use_count() == 2; }));
}

// Each row is a step outside the listener.
const std::function<void(WindowsUpgradeInterface&)> kForeignSteps[] = {
    [](WindowsUpgradeInterface& link) { link.sendUserAction(ActionUpgrade); },
    [](WindowsUpgradeInterface& link) { link.handleACPower(true); },
};

TEST(Handling, TheLastReferenceCanBeDroppedInsideAStep) {
    for (const auto& step : kForeignSteps) {
        ScriptedLink scripted({"Battery"}, false);
        scripted.take({4});
        WindowsUpgradeInterface& link = *scripted.link;
        const std::weak_ptr<WindowsUpgradeInterface> alive = scripted.link;
        link.setDisplayHandler([&](UpgradeDisplay) {
            scripted.link.reset();
            ASSERT_FALSE(alive.expired()) << "the step holds a share";
        });
        step(link);
        EXPECT_TRUE(alive.expired());
        EXPECT_TRUE(scripted.platform->waitHasEnded());
    }
}

TEST(Handling, AStopInsideAStepDoesNotWaitForTheListener) {
    for (const auto& step : kForeignSteps) {
        ScriptedLink scripted({"Battery"}, false);
        scripted.take({4});
        ScriptedPlatform* platform = scripted.platform.get();
        scripted.link->setDisplayHandler([&](UpgradeDisplay) {
            if (platform->waitIsToEnd())
                return;
            platform->raise(UpgradeEvent::RequestClose);
            EXPECT_TRUE(eventually([platform] { return !platform->isWaiting(); })) << "the listener has it";
            scripted.link->stop();
        });
        step(*scripted.link);
        scripted.link->stop();
        EXPECT_TRUE(platform->takeNotes().ends_with("acknowledge"));
    }
}

TEST(Handling, AThreadThatCannotBeCreatedEndsNothing) {
    const auto platform = std::make_shared<ScriptedPlatform>();
    const auto link = std::make_shared<WindowsUpgradeInterface>(platform);
    pthread_attr_t before;
    pthread_attr_t tooLarge;
    ASSERT_EQ(pthread_getattr_default_np(&before), 0);
    ASSERT_EQ(pthread_attr_init(&tooLarge), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&tooLarge, std::size_t{1} << 47U), 0);
    ASSERT_EQ(pthread_setattr_default_np(&tooLarge), 0);
    ::testing::internal::CaptureStderr();
    link->start();
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("cannot start the thread"), std::string::npos);
    EXPECT_EQ(pthread_setattr_default_np(&before), 0);
    link->start();
    EXPECT_TRUE(platform->signal(UpgradeEvent::RequestClose)) << "a later start succeeds";
}

TEST(Handling, AStopWaitsForTheAcknowledgementUnderWay) {
    ScriptedLink scripted;
    ScriptedPlatform* platform = scripted.platform.get();
    std::atomic<bool> inHandler = false;
    scripted.link->setDisplayHandler([&inHandler, platform](UpgradeDisplay) {
        inHandler = true;
        EXPECT_TRUE(eventually([platform] { return platform->waitIsToEnd(); }));
    });
    platform->raise(UpgradeEvent::RequestClose);
    ASSERT_TRUE(eventually([&inHandler] { return inHandler.load(); }));
    scripted.link->stop();
    EXPECT_EQ(platform->takeNotes(), "acknowledge");
    platform->raise(UpgradeEvent::StartConfirm);
    scripted.link->stop();
    EXPECT_EQ(platform->takeNotes(), "") << "for good";
}

// A handler may act: what it does is part of the step, and no other thread's step comes between.
TEST(Handling, StepsOfTwoThreadsNeverInterleave) {
    ScriptedLink scripted;
    UpgradeInterface* link = scripted.link.get();
    ScriptedPlatform* platform = scripted.platform.get();
    link->setProgressHandler([platform](UpgradeProgressMsg stage) {
        platform->note("[" + std::to_string(static_cast<int>(stage)));
        std::this_thread::yield();
    });
    link->setDisplayHandler([platform](UpgradeDisplay) { platform->note("]"); });
    std::thread user([link] {
        for (int i = 0; i < 200; ++i)
            link->sendUserAction(ActionOk);
    });
    for (int i = 0; i < 50; ++i) {
        platform->queue({7, 8, 13});
        EXPECT_TRUE(platform->signal(UpgradeEvent::UiEvent));
    }
    user.join();
    std::string notes = platform->takeNotes();
    for (std::size_t at = notes.find('['); at != std::string::npos; at = notes.find('[', at + 1))
        ASSERT_LT(notes.find(']', at), notes.find('[', at + 1)) << notes.substr(at, 60);
}

} // namespace
