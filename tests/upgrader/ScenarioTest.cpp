#include "app/UpgradeInterface.h"
#include "app/UpgradeMessage.h"
#include "platform/OXPLStreamDriverInterface.h"

#include "tests/picl/Member.h"
#include "tests/support/DeviceRootTest.h"
#include "tools/firmware/FirmwareDriver.h"
#include "tools/upgrader/ConsoleReport.h"
#include "tools/upgrader/ScenarioPlayer.h"

#include <fstream>
#include <map>
#include <sstream>

namespace {

using enum UpgradeDisplay;
using enum UserAction;

/// The simulator against a real link, with handlers that press buttons as soon as a screen offers them.
class ScenarioTest : public DeviceRootTest {
protected:
    ~ScenarioTest() override { endApplication(); } // the handlers refer to what goes next

    ScenarioPlayer::Ending play(std::string_view name, std::chrono::milliseconds patience = kDeadline) {
        const Scenario& scenario = *findScenario(name);
        start(scenario);
        ConsoleReport report(output, false);
        ScenarioOptions options;
        options.speed = 1000;
        options.patience = patience;
        return ScenarioPlayer(*m_link, options, report, m_firmware.get()).play(scenario);
    }

    std::map<UpgradeDisplay, UserAction> presses{
        {DisplayFileFound, ActionUpgrade},
        {DisplayCompleted, ActionReboot},
        {DisplayCompletedNoReboot, ActionOkNoReboot},
        {DisplayFileCorrupted, ActionOk},
        {DisplayFileIncompatible, ActionClose},
        {DisplayFailed, ActionOk},
        {DisplayFileNotFound, ActionOk},
        {DisplayNextBootSafe, ActionReboot},
        {DisplayExitUi, ActionUiExiting},
    };
    std::ostringstream output;
    std::vector<UpgradeDisplay> shown;

private:
    void endApplication() {
        if (m_application)
            m_application->stop();
        m_application.reset();
        m_member.reset();
        m_firmware.reset();
    }

    // A printer with a battery, whose firmware the application asks for the AC power.
    std::shared_ptr<UpgradeInterface> createOnBattery() {
        std::filesystem::create_directory(root() / "boot");
        std::ofstream(root() / "boot/systemfeatures.json") << R"({"features": ["Battery"]})";
        std::string why;
        m_firmware = FirmwareDriver::create(false, why);
        m_member = std::make_unique<Member>(
            "application", std::make_shared<OXPLStreamDriverInterface>(L"PRN0:", kFileOrDeviceStream));
        m_member->join();
        return createUpgradeInterface(m_member->agent, m_member->manager);
    }

    // Both anew: an application that joins a record in use would take its old codes.
    void start(const Scenario& scenario) {
        endApplication();
        m_link.reset();
        std::string why;
        m_link = UpgraderLink::create(why);
        ASSERT_NE(m_link, nullptr) << why;
        m_display = DisplayIdle;
        shown.clear();
        m_application = scenario.startsOnBattery ? createOnBattery() : createUpgradeInterface();
        m_application->setDisplayHandler([this](UpgradeDisplay display) {
            const auto press = presses.find(display);
            const bool isNew = std::exchange(m_display, display) != display;
            if (isNew)
                shown.push_back(display);
            if (isNew && press != presses.end())
                m_application->sendUserAction(press->second);
        });
        m_application->setRepairAvailableHandler([this](bool available) {
            if (available)
                m_application->sendUserAction(ActionRepair);
        });
        m_application->start();
    }

    std::unique_ptr<UpgraderLink> m_link;
    std::unique_ptr<FirmwareDriver> m_firmware;
    std::unique_ptr<Member> m_member;
    UpgradeDisplay m_display = DisplayIdle;
    std::shared_ptr<UpgradeInterface> m_application;
};

TEST_F(ScenarioTest, EveryStoryComesToItsEnd) {
    for (const Scenario& scenario : scenarios()) {
        presses[DisplayFileFound] = scenario.name == "cancelled" ? ActionCancel : ActionUpgrade;
        EXPECT_EQ(play(scenario.name), ScenarioPlayer::Ending::AsTold) << scenario.name << '\n'
                                                                       << output.str();
        output.str({});
    }
}

TEST_F(ScenarioTest, OnBatteryACPowerIsAskedForBeforeTheUpgradeIsOffered) {
    ASSERT_EQ(play("battery"), ScenarioPlayer::Ending::AsTold) << output.str();
    ASSERT_GE(shown.size(), 2U);
    EXPECT_EQ(shown[0], DisplayConnectACPower);
    EXPECT_EQ(shown[1], DisplayFileFound);
    EXPECT_NE(output.str().find("AC power is connected.\n"), std::string::npos) << output.str();

    presses[DisplayConnectACPower] = ActionCancel;
    EXPECT_EQ(play("battery"), ScenarioPlayer::Ending::Otherwise) << output.str();
}

TEST_F(ScenarioTest, ReportsEachCodeCommandAndAcknowledgement) {
    ASSERT_EQ(play("close-request"), ScenarioPlayer::Ending::AsTold);
    for (const char* line :
         {"-> 4 MsgFileFound\n", "<- 1 CommandStartUpgrade\n", "5% Copying the package\n",
          "-> Global\\DLL_REQUEST_CLOSE\n", "<- acknowledged\n", "<- 34 CommandUiExiting\n"})
        EXPECT_NE(output.str().find(line), std::string::npos) << line << output.str();
}

TEST_F(ScenarioTest, TellsWhenTheUserDecidesOtherwiseOrNobodyAnswers) {
    presses[DisplayFileFound] = ActionClose;
    EXPECT_EQ(play("success"), ScenarioPlayer::Ending::Otherwise);
    presses.clear();
    EXPECT_EQ(play("not-found", std::chrono::milliseconds(20)), ScenarioPlayer::Ending::NoAnswer);
}

} // namespace
