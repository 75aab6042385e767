#include "tests/commandline/CommandTest.h"

#include "platform/os/DeviceRoot.h"
#include "property/PropertyVocabulary.h"
#include "tests/support/LoopbackPort.h"

#include <algorithm>
#include <iterator>

namespace {

class Faults : public CommandTest {
protected:
    void fill(ScriptedServer& server) {
        for (int number = 0; number < 100; ++number)
            server.add("Screens", "General", "Number " + std::to_string(number), std::to_string(number));
    }

    [[nodiscard]] std::string device() const { return (root() / "dev/PRN0").string(); }

    /// Expects that each command fails with @p err, and prints nothing.
    void eachFails(const std::string& err, const std::string& timeout = "20") {
        for (const std::vector<std::string>& command : {std::vector<std::string>{"list"},
                                                        {"get", "Number 7"},
                                                        {"set", "Number 7", "8"},
                                                        {"watch"},
                                                        {"dump", "Screens", "--all"}}) {
            std::vector<std::string> arguments{"--timeout", timeout};
            arguments.insert(arguments.end(), command.begin(), command.end());
            const auto run = start(arguments);
            EXPECT_EQ(run->status(), 1) << command[0];
            EXPECT_EQ(run->out(), "") << command[0];
            EXPECT_EQ(run->err(), err) << command[0];
        }
    }
};

TEST_F(Faults, NoServerIsToldWithWhatToDo) {
    const std::string hint = "; start one with \"picl serve\", or name its place by --root or --tcp\n";
    eachFails("picl: no property server listens on " + device() + hint);
    std::filesystem::create_directories(root() / "dev");
    std::ofstream(device()) << "a file";
    eachFails("picl: no property server listens on " + device() + hint);
}

TEST_F(Faults, OneThatHangsUpOrTalksNonsenseIsTold) {
    ScriptedServer server;
    server.let(&ScriptedServer::endsInsteadOfAnswer, true);
    eachFails("picl: the property server on " + device() + " has ended the connection\n");
    server.let(&ScriptedServer::endsInsteadOfAnswer, false);
    server.let(&ScriptedServer::saysInstead, "HTTP/1.1 400 Bad Request\r\n\r\n");
    eachFails("picl: what answers on " + device() +
              " is no property server; name another place by --root or --tcp\n");
}

TEST_F(Faults, OneThatDoesNotAnswerCostsTheTimeOutAndNoMore) {
    ScriptedServer server;
    server.let(&ScriptedServer::saysInstead, std::string(1, '\xB3'));
    eachFails("picl: the property server on " + device() +
                  " did not answer within 0.05 s; wait for longer with --timeout\n",
              "0.05");
}

TEST_F(Faults, AProgramThatDoesNotAnswerKeepsBackNothingOfOthers) {
    ScriptedServer server;
    fill(server);
    server.add("Silent", "Preferences", "Quiet", "1");
    server.let(&ScriptedServer::silentProgram, "Silent");
    const auto get = start({"--timeout", "0.5", "get", "Quiet", "Number 7"});
    EXPECT_EQ(get->status(), 1);
    EXPECT_EQ(get->out(), "Number 7 = 7\n");
    EXPECT_EQ(get->err(), "picl: the program of \"Quiet\" does not answer; wait for longer with --timeout\n");
    const auto dump = start({"--timeout", "0.2", "dump", "Silent"});
    EXPECT_EQ(dump->status(), 1) << "what the server remembers may be old";
    EXPECT_EQ(dump->out(), "");
    const auto set = start({"--timeout", "0.2", "set", "Quiet", "2"});
    EXPECT_EQ(set->status(), 1);
    EXPECT_EQ(set->err(),
              "picl: the property server on " + device() +
                  " passed on no answer of the owner within 0.2 s; wait for longer with --timeout\n");
}

TEST_F(Faults, AProgramThatHangsKeepsBackNothingThatIsNamedByAllItsGuids) {
    const std::string component(vocabulary::components::kFirmwareDriver.guid);
    const std::string group(vocabulary::groups::kGeneral.guid);
    const std::string guid(vocabulary::properties::kDotsPerInch.guid);
    const std::string name = component + ':' + group + ':' + guid;
    const std::string told = name + " = 300\n";
    ScriptedServer server;
    server.add({.group = group,
                .groupString = "General",
                .guid = guid,
                .nameString = "Dots Per Inch",
                .value = "300",
                .status = std::string(status::kSuccessful),
                .component = component,
                .componentString = "Firmware Driver"});
    server.let(&ScriptedServer::isSilentForAll, true);
    for (const auto& [arguments, out] :
         {std::pair<std::vector<std::string>, std::string>{{"get", name}, "300\n"},
          {{"get", name, name}, told + told},
          {{"set", name, "203"}, name + " = 203\n"},
          {{"watch", name, "--for", "0.001"},
           "             Firmware Driver/General/Dots Per Inch = 203\n"}}) {
        const auto run = start(arguments);
        EXPECT_EQ(run->status(), 0) << run->err();
        EXPECT_EQ(run->out(), out);
    }
    server.let(&ScriptedServer::isSilentForAll, false);
    const auto none = start({"get", component + ':' + group + ':' + component, name});
    EXPECT_EQ(none->status(), 1);
    EXPECT_EQ(none->out(), name + " = 203\n");
}

TEST_F(Faults, AnAnswerInManyFramesAndInPiecesIsOne) {
    ScriptedServer server;
    fill(server);
    server.add("Screens", "General", "Long", std::string(3'000'000, 'x'));
    const auto whole = start({"list"});
    EXPECT_EQ(whole->status(), 0);
    const std::string out = whole->out();
    EXPECT_EQ(std::ranges::count(out, '\n'), 102);
    server.let(&ScriptedServer::reportsOfFrame, 7U);
    server.let(&ScriptedServer::largestWrite, 1000U);
    const auto parts = start({"list"});
    EXPECT_EQ(parts->status(), 0);
    EXPECT_TRUE(parts->out() == out) << parts->out().size();
}

TEST_F(Faults, AValueThatNoMessageHoldsIsNotSent) {
    ScriptedServer server;
    server.add("Screens", "Preferences", "Text", "short");
    const auto dump = start({"dump", "Screens"});
    ASSERT_EQ(dump->status(), 0);
    const auto load = [&](const std::string& character, int count) {
        std::string value;
        for (int i = 0; i < count; ++i)
            value += character;
        std::string document = dump->out();
        document.replace(document.find("short"), 5, value);
        return start({"load", "-"}, document);
    };
    const auto tooLong = load("\\u0001", 800'000);
    EXPECT_EQ(tooLong->status(), 1);
    EXPECT_EQ(tooLong->err(),
              "picl: Preferences/Text: the value is longer than a message can be; make it shorter\n");
    EXPECT_EQ(server.sets(), 0);
    EXPECT_EQ(load("x", 4'000'000)->status(), 0);
    EXPECT_EQ(server.valueOf("Text").size(), 4'000'000U);
}

TEST_F(Faults, AReaderThatGoesIsNoErrorAndAFullDiskIsOne) {
    ScriptedServer server;
    fill(server);
    server.add("Screens", "General", "Long", std::string(3'000'000, 'x'));
    const std::string picl = std::string("'") + PICL_PROGRAM + "' --root '" + root().string() + "' ";
    const auto shell = [&](const std::string& command) {
        ChildProcess process({"/bin/bash", "-c", command}, root() / "out");
        EXPECT_TRUE(process.exitStatus(kDeadline)) << command;
        std::ifstream file(root() / "out");
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    EXPECT_EQ(shell(picl + "list | head -n 1"), "PROGRAM  GROUP    NAME       TYPE  VALUE\n");
    EXPECT_EQ(shell("trap '' PIPE; " + picl + "list | head -n 1"),
              "PROGRAM  GROUP    NAME       TYPE  VALUE\n");
    EXPECT_EQ(shell(picl + "list > /dev/full; echo $?"), "picl: cannot print: No space left on device\n1\n");
    EXPECT_EQ(shell(picl + "dump Screens --all -o /dev/full; echo $?"),
              "picl: cannot write /dev/full; name another file by -o\n1\n");
}

TEST_F(Faults, ByTcpAServerIsAskedToo) {
    LoopbackPort port;
    const std::string place = "127.0.0.1:" + std::to_string(port.number());
    const std::vector<std::string> command{PICL_PROGRAM, "list", "--tcp", place, "--timeout", "0.1"};
    const auto said = [&] {
        ChildProcess process(command, root() / "out");
        EXPECT_EQ(process.exitStatus(kDeadline), 1);
        std::ifstream file(root() / "out");
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    EXPECT_EQ(said(), "picl: no property server listens on " + place +
                          "; start one with \"picl serve\", or name its place by --root or --tcp\n");
    port.listen();
    EXPECT_EQ(said(), "picl: the property server on " + place +
                          " did not answer within 0.1 s; wait for longer with --timeout\n");
}

} // namespace
