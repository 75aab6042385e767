#include "app/UpgradeInterface.h"
#include "app/UpgradeMessage.h"

#include "tests/support/DeviceRootTest.h"
#include "tools/upgrader/ConsoleReport.h"
#include "tools/upgrader/ScenarioPlayer.h"

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
        start();
        ConsoleReport report(output, false);
        ScenarioOptions options;
        options.speed = 1000;
        options.patience = patience;
        return ScenarioPlayer(*m_link, options, report).play(*findScenario(name));
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

private:
    void endApplication() {
        if (m_application)
            m_application->stop();
        m_application.reset();
    }

    // Both anew: an application that joins a record in use would take its old codes.
    void start() {
        endApplication();
        m_link.reset();
        std::string why;
        m_link = UpgraderLink::create(why);
        ASSERT_NE(m_link, nullptr) << why;
        m_display = DisplayIdle;
        m_application = createUpgradeInterface();
        m_application->setDisplayHandler([this](UpgradeDisplay display) {
            const auto press = presses.find(display);
            const bool isNew = std::exchange(m_display, display) != display;
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
