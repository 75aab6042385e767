#include "tests/process/ProcessTest.h"
#include "tests/process/ScriptedPropertyServer.h"

#include "app/UpgradeMessage.h"
#include "property/PropertyFile.h"

namespace {

struct BrokenPart {
    const char* name;
    const char* path; // what stands there before the start
    const char* contents;
};

class BrokenParts : public ProcessTest {};

TEST_F(BrokenParts, TheProgramStartsFollowsAndEnds) {
    constexpr const char* kFolder = nullptr;
    const std::string chinese = withFileCheck(
        KnownProperty{vocabulary::groups::kDisplayPreferences, vocabulary::properties::kLanguage, "chinese"}
            .line());
    const BrokenPart kRows[] = {
        {"neither store nor boot nor device", "nothing", ""},
        {"store is a file", "store", ""},
        {"property file is a folder", "store/AppPreferences.ini", kFolder},
        {"copy of the property file is a folder", "store/AppPreferences.ini.bak", kFolder},
        {"property file is damaged", "store/AppPreferences.ini", "A:B|a:b=c\nxx"},
        {"boot is a file", "boot", ""},
        {"no feature list", "boot/other", ""},
        {"feature list is no JSON", "boot/systemfeatures.json", R"({"features": [)"},
        {"feature list is a folder", "boot/systemfeatures.json", kFolder},
        {"feature list has no texts", "boot/systemfeatures.json", R"({"features": [{}, 5]})"},
        {"device is a file", "dev/PRN0", "{}"},
        {"device is a folder", "dev/PRN0", kFolder},
        {"languages are no JSON", "../translations/UpgradeUI/languages.json", "{"},
        {"languages are a folder", "../translations/UpgradeUI/languages.json", kFolder},
        {"translation is none", "../translations/UpgradeUI/chinese.qm", "<\xB8 no translation"},
        {"font of the program is none", "../fonts/a.ttf", "no font"},
        {"font of the printer is none", "boot/fonts/a.otf", "OTTO"},
    };
    tellScreens();
    for (const BrokenPart& row : kRows) {
        SCOPED_TRACE(row.name);
        for (const char* part : {"store", "boot", "dev", "../translations", "../fonts"})
            std::filesystem::remove_all(printer() / part);
        if (std::string_view(row.path).ends_with(".qm")) {
            place("store/AppPreferences.ini", chinese);
            place("../translations/UpgradeUI/languages.json",
                  R"({"languages": [{"name": "English", "file": ""}, {"name": "C", "file": "chinese.qm"}]})");
        }
        if (row.contents == kFolder)
            std::filesystem::create_directories(printer() / row.path);
        else
            place(row.path, row.contents);

        startUpgrader();
        const auto application = startApplication();
        ASSERT_TRUE(upgrader->send(std::vector<std::uint8_t>{MsgFileFound, MsgFailed}, kDeadline));
        EXPECT_TRUE(eventually([&] { return output("UpgradeUI").ends_with("qml: upgradeFailed\n"); }))
            << output("UpgradeUI");
        ASSERT_TRUE(upgrader->send(MsgExitUi, kDeadline));
        EXPECT_TRUE(repliesWith(CommandUiExiting));
        EXPECT_EQ(application->exitStatus(kDeadline), 0);
    }
}

} // namespace
