#include "tests/commandline/CommandTest.h"

namespace {

class Completion : public CommandTest {
protected:
    /// Returns what bash would offer behind @p line, a candidate a line.
    std::string offers(const std::string& line) const {
        const std::string script =
            "source '" COMPLETION_SCRIPT "'; COMP_LINE=$1 COMP_POINT=${#1}; _picl \"$0\"; "
            "[ ${#COMPREPLY[@]} = 0 ] || printf '%s\\n' \"${COMPREPLY[@]}\"";
        ChildProcess bash({"/bin/bash", "-c", script, PICL_PROGRAM, line}, root() / "out");
        EXPECT_EQ(bash.exitStatus(kDeadline), 0);
        std::ifstream file(root() / "out");
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(Completion, OffersWhatCanStandThere) {
    ScriptedServer server;
    server.add("Upgrade UI", "Display Preferences", "Language", "english");
    server.add("Upgrade UI", "Display Preferences", "It's \"$HOME\"", "");
    server.add("Upgrade UI", "General", "Dots", "1");
    server.add("Firmware", "General", "Dots", "1");
    server.add("Firmware", "Paths", "at: home", "");
    const std::string there = " --root '" + root().string() + "' ";
    const struct {
        const char* is;
        std::string line;
        std::string offered;
    } kRows[] = {
        {"commands", "picl ", "list\nget\nset\nwatch\ndump\nload\nserve\n"},
        {"the beginning of a command", "picl l", "list\nload\n"},
        {"options of a command", "picl list --g", "--group\n--guids\n"},
        {"options behind the root", "picl --root / watch --c", "--count\n"},
        {"a name with blanks", "picl get" + there + "it", "It\\'s\\ \\\"\\$HOME\\\"\n"},
        {"a name in single quotes", "picl get" + there + "'it", "It'\\''s \"$HOME\"\n"},
        {"a name in double quotes", "picl get" + there + "\"it", "It's \\\"\\$HOME\\\"\n"},
        {"a name as far as it was escaped", "picl get" + there + "display\\ preferences/l",
         "Display\\ Preferences/Language\n"},
        {"names that are not unique", "picl" + there + "watch Language --count 3 Upgrade\\ UI/G",
         "Upgrade\\ UI/General/Dots\n"},
        {"behind what readline takes for the end of a word", "picl get" + there + "at:", "\\ home\n"},
        {"a property to set", "picl set" + there + "lang", "Language\n"},
        {"a value", "picl set" + there + "Language ", ""},
        {"programs", "picl dump" + there, "Firmware\nUpgrade\\ UI\n"},
        {"programs as a filter", "picl list" + there + "--program u", "Upgrade\\ UI\n"},
        {"groups", "picl dump" + there + "Firmware --group ", "Display\\ Preferences\nGeneral\nPaths\n"},
        {"no options behind two dashes", "picl get" + there + "-- -", ""},
    };
    for (const auto& row : kRows)
        EXPECT_EQ(offers(row.line), row.offered) << row.is;
}

TEST_F(Completion, SaysNothingWithoutAServer) {
    EXPECT_EQ(offers("picl get --root '" + root().string() + "' "), "");
    ScriptedServer server;
    server.let(&ScriptedServer::saysInstead, std::string(1, '\xB3'));
    EXPECT_EQ(offers("picl get --root '" + root().string() + "' "), "");
}

} // namespace
