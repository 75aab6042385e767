#include "tests/process/ProcessTest.h"

namespace {

class Simulator : public ProcessTest {};

struct RefusalRow {
    const char* name;
    std::vector<std::string> arguments;
    const char* told;
};

TEST_F(Simulator, RefusesWhatItCannotDoAndSaysWhy) {
    const RefusalRow kRows[] = {
        {"no command", {}, "subcommand is required"},
        {"unknown story", {"play", "victory"}, "there is no story \"victory\""},
        {"no story", {"play"}, "NAME is required"},
        {"unknown code", {"send", "99"}, "there is no code \"99\""},
        {"code beyond a byte", {"send", "--force", "256"}, "there is no code \"256\""},
        {"unknown name", {"send", "MsgNothing"}, "there is no code \"MsgNothing\""},
        {"missing folder", {"send", "4", "--root", "/no/such/folder"}, "/no/such/folder"},
        {"a text too long",
         {"play", "failed", "--package-version", std::string(50, 'v')},
         "at most 49 bytes"},
        {"speed", {"play", "failed", "--speed", "0"}, "0.01"},
        {"size", {"play", "failed", "--package-size", "-1"}, "-1"},
    };
    for (const RefusalRow& row : kRows) {
        EXPECT_EQ(startSimulator(row.arguments)->exitStatus(kDeadline), 2) << row.name;
        EXPECT_NE(output("upgrader-sim").find(row.told), std::string::npos) << row.name << '\n'
                                                                            << output("upgrader-sim");
    }
}

TEST_F(Simulator, AFolderThatCannotBeWrittenIsTold) {
    std::filesystem::remove_all(root() / "printer/run");
    std::filesystem::create_directories(root() / "printer");
    std::filesystem::create_symlink("/no/such/folder", root() / "printer/run");
    EXPECT_EQ(startSimulator({"send", "4"})->exitStatus(kDeadline), 2);
    EXPECT_NE(output("upgrader-sim").find("run/upgrade"), std::string::npos) << output("upgrader-sim");
}

TEST_F(Simulator, PlaysWithTheApplication) {
    const auto simulator = startSimulator({"play", "start-confirm", "--speed", "100", "--patience", "60"});
    ASSERT_TRUE(
        eventually([&] { return output("upgrader-sim").find("DLL_UI_START_CONFIRM") != std::string::npos; }));
    const auto application = startApplication();
    EXPECT_EQ(simulator->exitStatus(kDeadline + kDeadline), 0) << output("upgrader-sim");
    EXPECT_EQ(application->exitStatus(kDeadline), 0);
}

TEST_F(Simulator, SendsSingleCodesByNumberAndName) {
    const auto application = startApplication();
    const auto simulator = startSimulator({"send", "30", "MsgExitUi", "0x", "--force"});
    EXPECT_EQ(simulator->exitStatus(kDeadline), 2) << "0x is no number";
    EXPECT_EQ(startSimulator({"send", "--force", "30", "MsgFailed", "200"})->exitStatus(kDeadline), 0);
    EXPECT_EQ(output("upgrader-sim"), "-> 30 MsgPrinterInfo\n-> 18 MsgFailed\n-> 200 (no such code)\n");
}

} // namespace
