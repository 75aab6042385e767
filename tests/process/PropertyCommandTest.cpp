#include "property/PropertyFile.h"
#include "property/PropertyVocabulary.h"
#include "tests/commandline/PiclRun.h"
#include "tests/process/ProcessTest.h"

#include <nlohmann/json.hpp>

namespace {

/// The application and "picl" at the property server that "picl" is, too.
class PropertyCommandTest : public ProcessTest {
protected:
    PropertyCommandTest() {
        std::filesystem::create_directory(printer() / "store");
        server = start({"serve"});
        EXPECT_TRUE(server->prints("Listening on " + (printer() / "dev/PRN0").string() + '\n'));
        application = startApplication();
        EXPECT_TRUE(isUp()) << output("UpgradeUI");
    }

    std::unique_ptr<PiclRun> start(const std::vector<std::string>& arguments, const std::string& input = "") {
        return std::make_unique<PiclRun>(printer(), arguments, input);
    }

    /// Returns what "picl" prints on @p arguments; its errors where it fails.
    std::string says(const std::vector<std::string>& arguments, const std::string& input = "") {
        const auto run = start(arguments, input);
        return run->status() == 0 ? run->out() : run->err();
    }

    /// Starts an application with a device root of its own, but for the property server; @p unit is its
    /// "Measurement Unit".
    std::unique_ptr<ChildProcess> startBeside(const std::string& name, const std::string& unit) {
        namespace fs = std::filesystem;
        const fs::path folder = programFolder() / name;
        for (const char* part : {"dev", "store"})
            fs::create_directories(folder / "printer" / part);
        fs::copy(programFolder() / "UpgradeUI", folder);
        fs::create_directory_symlink(printer() / "hard disk", folder / "printer/hard disk");
        fs::create_symlink(printer() / "dev/PRN0", folder / "printer/dev/PRN0");
        std::ofstream(folder / "printer/store/AppPreferences.ini", std::ios::binary) << withFileCheck(
            std::string(vocabulary::groups::kDisplayPreferences.guid) + ':' +
            std::string(vocabulary::properties::kMeasurementUnit.guid) + "|a group:a name=" + unit + '\n');
        return std::make_unique<ChildProcess>(std::vector{(folder / "UpgradeUI").string()},
                                              folder / "output");
    }

    /// Returns whether a value comes to be @p value.
    bool becomes(const std::string& name, const std::string& value) {
        return eventually([&] { return says({"get", name}) == value + '\n'; });
    }

    // This one comes last.
    bool isUp() {
        return eventually([this] { return says({"get", "Screen Resolution Height"}) == "600\n"; });
    }

    std::unique_ptr<PiclRun> server;
    std::unique_ptr<ChildProcess> application;
};

TEST_F(PropertyCommandTest, EachPropertyOfThePrinterIsThereWithItsType) {
    const auto all = nlohmann::json::parse(says({"list", "--json"}));
    EXPECT_EQ(all.size(), 42U);
    for (const auto& property : all)
        EXPECT_TRUE(property["type"].is_string()) << property;
    EXPECT_EQ(says({"get", "Dots Per Inch"}), "300\n");
    EXPECT_EQ(says({"get", "firmware driver/battery/battery ac connected"}), "True\n");
}

TEST_F(PropertyCommandTest, WhatIsSetIsReadBackAndStored) {
    EXPECT_EQ(says({"set", "Printer Status Display", "größe \"x\"\n\\"}),
              "Printer Status Display = größe \"x\"\\n\\\n");
    EXPECT_EQ(says({"get", "Printer Status Display"}), "größe \"x\"\n\\\n");
    EXPECT_EQ(says({"set", "Measurement Unit", "007"}), "Measurement Unit = 7\n");
    for (const std::string none : {"abc", "", "-1", "7 mm", "4294967296"}) {
        EXPECT_EQ(says({"set", "Measurement Unit", "--", none}),
                  "picl: \"Measurement Unit\" is a whole number from 0 to 4294967295; \"" + none +
                      "\" is not sent\n");
    }
    EXPECT_EQ(says({"get", "Measurement Unit"}), "7\n");
    EXPECT_EQ(says({"set", "Measurement Unit", "4294967295"}), "Measurement Unit = 4294967295\n");
    EXPECT_EQ(says({"set", "Hour Format 24", "true"}), "Hour Format 24 = True\n");
    EXPECT_TRUE(eventually([this] {
        return contents("store/AppPreferences.ini").find("Hour Format 24=True") != std::string::npos;
    }));
    EXPECT_EQ(says({"set", "Store Properties", "true"}), "Store Properties: fired; it succeeded\n");
}

TEST_F(PropertyCommandTest, ADumpBringsPreferencesBack) {
    const std::string dump = says({"dump", "Upgrade UI"});
    EXPECT_EQ(says({"set", "Language", "deutsch"}), "Language = deutsch\n");
    EXPECT_EQ(says({"set", "YB File Location", ""}), "YB File Location = \n");
    EXPECT_EQ(says({"load", "-"}, dump), "Display Preferences/Language: deutsch -> english\n"
                                         "Locally Stored Preferences/YB File Location:  -> "
                                         "\\\\server\\manufacturing\\yb\n"
                                         "2 changed, 13 had their value, 0 not there, 0 refused\n");
    EXPECT_EQ(says({"dump", "Upgrade UI"}), dump);
}

TEST_F(PropertyCommandTest, AWatchSeesTheApplicationGoAndComeBackAndTheServerGo) {
    const auto watch = start({"watch", "Hour Format 24"});
    const std::string name = " Upgrade UI/Display Preferences/Hour Format 24";
    std::string text = "            " + name + " = False\n";
    ASSERT_TRUE(watch->prints(text)) << watch->out();
    EXPECT_EQ(says({"set", "Hour Format 24", "TRUE"}), "Hour Format 24 = True\n");
    text += "##:##:##.###" + name + " = True\n";
    EXPECT_TRUE(watch->prints(text)) << watch->out();
    ASSERT_TRUE(eventually([this] {
        return contents("store/AppPreferences.ini").find("Hour Format 24=True") != std::string::npos;
    }));
    application->kill();
    text += "##:##:##.###" + name + " is gone; it was True\n";
    EXPECT_TRUE(watch->prints(text)) << watch->out();
    application = startApplication();
    text += "##:##:##.###" + name + " is back = True\n";
    EXPECT_TRUE(watch->prints(text)) << watch->out();
    server->signal(SIGTERM);
    EXPECT_EQ(server->status(), 0);
    EXPECT_EQ(watch->status(), 1);
    EXPECT_EQ(watch->err(), "picl: the property server has gone; start it again with \"picl serve\"\n");
}

TEST_F(PropertyCommandTest, ThreeApplicationsShareAServerAndTheNextSpeaksWhereOneGoes) {
    const std::string come = "picl serve: \"Upgrade UI\" has come\n";
    const std::string waits =
        "picl serve: \"Upgrade UI\" is connected already; what another program says in its "
        "name is not taken\n";
    const std::string gone = "picl serve: \"Upgrade UI\" has gone\n";
    const auto tells = [this](const std::string& text) {
        return eventually([&] { return server->err() == text; });
    };
    const auto second = startBeside("second", "2");
    EXPECT_TRUE(tells(come + waits)) << server->err();
    EXPECT_EQ(says({"get", "Measurement Unit"}), "0\n") << "the first keeps its place";
    application->kill();
    EXPECT_TRUE(becomes("Measurement Unit", "2"));
    const auto third = startBeside("third", "3");
    EXPECT_TRUE(tells(come + waits + gone + come + waits)) << server->err();
    second->kill();
    EXPECT_TRUE(becomes("Measurement Unit", "3"));
    EXPECT_EQ(says({"set", "Measurement Unit", "5"}), "Measurement Unit = 5\n");
}

} // namespace
