#include "app/UpgradeInterface.h"
#include "app/UpgradeMessage.h"
#include "app/UpgradeSharedRecord.h"

#include "platform/ThreadFactory.h"
#include "platform/os/NamedMutex.h"
#include "property/BoolProperty.h"
#include "property/PropertyManager.h"
#include "property/PropertyVocabulary.h"

#include "tests/support/DeviceRootTest.h"
#include "tools/upgrader/UpgraderLink.h"

#include <fstream>
#include <mutex>
#include <utility>
#include <vector>

namespace {

using namespace std::chrono_literals;
using vocabulary::components::kFirmwareDriver;
using vocabulary::groups::kBattery;
using vocabulary::properties::kBatteryACConnected;

/// The application's link and an upgrader's over the same named objects.
class RealObjects : public DeviceRootTest {
protected:
    ~RealObjects() override { endApplication(); } // its handler refers to what goes next

    void startUpgrader() {
        std::string why;
        upgrader.reset(); // before the new one looks whether the record is in use
        upgrader = UpgraderLink::create(why);
        ASSERT_NE(upgrader, nullptr) << why;
    }

    void startApplication(std::shared_ptr<UpgradeInterface> link = createUpgradeInterface()) {
        application = std::move(link);
        application->setDisplayHandler([this](UpgradeDisplay display) {
            const std::scoped_lock guard(m_lock);
            m_displays.push_back(static_cast<int>(display));
        });
        application->start();
    }

    void endApplication() {
        if (application)
            application->stop();
        application.reset();
    }

    std::vector<int> displays() {
        const std::scoped_lock guard(m_lock);
        return m_displays;
    }

    bool shows(std::vector<int> expected) {
        return eventually([&] { return displays() == expected; });
    }

    std::unique_ptr<UpgraderLink> upgrader;
    std::shared_ptr<UpgradeInterface> application;

private:
    std::mutex m_lock;
    std::vector<int> m_displays; // guarded by m_lock
};

TEST_F(RealObjects, CodesCommandsAndAcknowledgementsCross) {
    startUpgrader();
    startApplication();
    ASSERT_TRUE(upgrader->send(MsgFileFound, kDeadline));
    EXPECT_TRUE(shows({0}));
    application->sendUserAction(UserAction::ActionUpgrade);
    const auto command = upgrader->awaitReply(kDeadline);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->command, CommandStartUpgrade);

    upgrader->requestClose();
    const auto answer = upgrader->awaitReply(kDeadline);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->kind, UpgraderReply::Kind::Acknowledgement);
    EXPECT_EQ(displays(), (std::vector{0, 1, 12})) << "told before the acknowledgement";
    EXPECT_FALSE(upgrader->awaitReply(1ms));
}

TEST_F(RealObjects, AnUpgraderNeverOverrunsTheRing) {
    startUpgrader();
    const std::vector<std::uint8_t> many(200, MsgFailed);
    EXPECT_FALSE(upgrader->send(many, 10ms)) << "24 fit, and nobody takes them";
    startApplication();
    EXPECT_TRUE(upgrader->awaitTaken(kDeadline));
    EXPECT_EQ(displays().size(), 24U);
    EXPECT_TRUE(upgrader->send(many, kDeadline));
    EXPECT_TRUE(upgrader->awaitTaken(kDeadline));
    EXPECT_EQ(displays().size(), 224U);
}

TEST_F(RealObjects, ARestartedUpgraderFindsTheSameConversation) {
    startUpgrader();
    startApplication();
    ASSERT_TRUE(upgrader->send(std::vector<std::uint8_t>{MsgFailed, MsgCompleted}, kDeadline));
    ASSERT_TRUE(shows({5, 2}));
    startUpgrader();
    ASSERT_TRUE(upgrader->send(MsgFileCorrupted, kDeadline));
    EXPECT_TRUE(shows({5, 2, 3}));
}

TEST_F(RealObjects, ARecordThatNobodyHasOpenStartsAnew) {
    startUpgrader();
    ASSERT_TRUE(upgrader->send(MsgExitUi, kDeadline));
    startUpgrader();
    startApplication();
    ASSERT_TRUE(upgrader->send(MsgFailed, kDeadline));
    EXPECT_TRUE(shows({5})) << "not what the upgrader before had to say";
}

TEST_F(RealObjects, WithoutAnyEventTheLinkIsSilentAndEnds) {
    startApplication();
    application->sendUserAction(UserAction::ActionReboot);
    application.reset();
    EXPECT_TRUE(displays().empty());
}

TEST_F(RealObjects, PowerThatIsLostAgainAndThenConnectedContinuesTheDialogue) {
    std::filesystem::create_directory(root() / "boot");
    std::ofstream(root() / "boot/systemfeatures.json") << R"({"features": ["Battery"]})";
    const auto manager = std::make_shared<PropertyManager>(std::make_shared<ThreadFactory>(kThreadPriority),
                                                           kThreadPriority, kThreadPriority, L"", L"");
    startUpgrader();
    startApplication(createUpgradeInterface(nullptr, manager));
    const auto power = std::dynamic_pointer_cast<BoolProperty>(manager->findProperty(
        std::string(kFirmwareDriver.guid) + '-' + std::string(kBatteryACConnected.guid), kBattery.guid));
    ASSERT_NE(power, nullptr);
    power->setFromString("False");
    ASSERT_TRUE(upgrader->send(MsgFileFound, kDeadline));
    ASSERT_TRUE(shows({11}));
    power->setFromString("False");
    power->notifyListeners();
    EXPECT_EQ(displays(), std::vector{11});
    power->setFromString("True");
    EXPECT_EQ(displays(), (std::vector{11, 0}));
}

TEST_F(RealObjects, AMutexThatCannotBeOpenedCountsAsAnAbsentRecord) {
    startUpgrader();
    const std::filesystem::path mutex = objectFile(kUpgradeMutexName);
    std::filesystem::remove(mutex);
    std::filesystem::create_directory(mutex);
    startApplication();
    application->sendUserAction(UserAction::ActionReboot);
    EXPECT_FALSE(upgrader->awaitReply(0ms));
}

TEST_F(RealObjects, ATruncatedRecordCountsAsAbsentUntilItIsRestored) {
    startUpgrader();
    startApplication();
    ASSERT_TRUE(upgrader->send(MsgFailed, kDeadline));
    ASSERT_TRUE(shows({5}));
    std::filesystem::resize_file(objectFile(kUpgradeRecordName), 0);
    EXPECT_FALSE(upgrader->send(MsgCompleted, kDeadline));
    application->sendUserAction(UserAction::ActionReboot);
    EXPECT_FALSE(upgrader->awaitReply(0ms)) << "no command";
    upgrader->signalCodes();
    upgrader->requestClose();
    EXPECT_TRUE(upgrader->awaitReply(kDeadline)) << "the acknowledgement";
    EXPECT_EQ(displays(), (std::vector{5, 12}));

    std::filesystem::resize_file(objectFile(kUpgradeRecordName), sizeof(UpgradeSharedRecord));
    application->sendUserAction(UserAction::ActionReboot);
    EXPECT_TRUE(upgrader->awaitReply(kDeadline));
}

TEST_F(RealObjects, AMutexThatIsKeptDelaysTheExitNoLongerThanItsLimit) {
    startUpgrader();
    startApplication();
    ASSERT_TRUE(upgrader->send(MsgCompletedNoReboot, kDeadline));
    ASSERT_TRUE(shows({10}));
    os::NamedMutex kept(kUpgradeMutexName);
    ::testing::internal::CaptureStderr();
    kept.lock();
    upgrader->signalCodes(); // the listener, too, waits for the mutex
    application->sendUserAction(UserAction::ActionUiExiting);
    application->stop();
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("exiting without access to the shared record"),
              std::string::npos);
    kept.unlock();
    EXPECT_FALSE(upgrader->awaitReply(0ms)) << "no command without the mutex";
}

TEST_F(RealObjects, LinksComeAndGoUnderFire) {
    startUpgrader();
    for (int round = 0; round < 100; ++round) {
        startApplication();
        ASSERT_TRUE(upgrader->send(std::vector<std::uint8_t>{7, 8, 13}, kDeadline));
        application->sendUserAction(UserAction::ActionOk);
        endApplication();
        startUpgrader();
    }
}

} // namespace
