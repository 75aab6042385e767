#include "picl/FrameReader.h"
#include "tests/picl/ScriptedPeer.h"
#include "tests/propertyserver/ScriptedHub.h"

#include <gtest/gtest.h>

namespace {

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t found = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size()))
        ++found;
    return found;
}

// What goes on to an owner is written anew, and longer than it came: no owner may get what it cannot read.
TEST(HubLimits, WhatIsHandedOnFitsIntoFrames) {
    const std::string control(800'000, '\1');
    struct {
        const char* name;
        const char* key;
        std::string items;
        std::size_t arrive;
    } const kRows[] = {
        {"sets that are short", "PropertySetRequests",
         repeated(R"({"Component":"X"},)", Hub::kMostSets - 1) + "0", Hub::kMostSets - 1},
        {"sets that take more room escaped", "PropertySetRequests",
         repeated(R"({"Component":"X","GUID":"G:P","Value":")" + control.substr(0, 400'000) + "\"},", 9) +
             "0",
         9},
        {"a set that is too long by itself", "PropertySetRequests",
         R"({"Component":"X","GUID":"G:P","Value":")" + control + R"("},{"Component":"X"})", 1},
        {"gets whose keys have no colon", "PropertyGetRequests",
         numbered(R"({"Component":"X","GUID":")" + std::string(500, 'k'), "\"},", 4095) + "0", 4095},
        {"gets whose keys take more room escaped", "PropertyGetRequests",
         R"({"Component":"X","GUID":":)" + control + R"("},{"Component":"X","GUID":"G:P"})", 1},
    };
    for (const auto& [name, key, items, arrive] : kRows) {
        ScriptedHub hub;
        hub.say("A", "tell X/G:P=1");
        JSONPICL message;
        FrameReader reader;
        reader.take(frameOf("{\"" + std::string(key) + "\":[" + items + "]}"));
        ASSERT_EQ(reader.next(message), FrameReader::Result::Message) << name;
        hub.take("B", message);
        const std::string heard = hub.hears("A");
        EXPECT_EQ(count(heard, " X/") - count(heard, " X/mark"), arrive) << name;
    }
}

TEST(HubLimits, WhoAsksOrSetsOnAndOnIsHeldUntilHalfIsDealtWith) {
    struct {
        const char* name;
        std::string says;
        const char* isAnswered;
        int untilHeld;
    } const kRows[] = {
        {"single properties", "get X/G:P", "tell X/G:P=1", 1024},
        {"many at once", "get" + numbered(" X/G:", "", 512), nullptr, 2},
        {"sets", "set" + numbered(" X/G:", "=1", 64), "miss X/mark", 16},
        {"long sets", "set X/G:P=" + std::string(65'536, 'v'), "miss X/mark", 16},
        {"groups", "get X/G:", "miss X/mark", 16},
        {"all", "get-all", "miss X/mark", 4},
    };
    for (const auto& [name, says, isAnswered, untilHeld] : kRows) {
        ScriptedHub hub;
        hub.say("A", "tell X/G:P=1");
        int times = 0;
        for (; !hub.hears("B").ends_with("is held\n") && times <= untilHeld; ++times)
            hub.say("B", says);
        EXPECT_EQ(times, untilHeld) << name;
        int answers = 0;
        for (; !hub.hears("B").starts_with("is free\n") && answers <= untilHeld; ++answers)
            hub.say("A", isAnswered == nullptr ? "tell" + numbered(" X/G:", "=1", 512) : isAnswered);
        EXPECT_EQ(answers, untilHeld / 2 + 1) << name;
    }
}

TEST(HubLimits, WhoIsHeldIsFreeWhenNobodyAnswersInTime) {
    ScriptedHub hub;
    hub.say("A", "tell X/G:P=1");
    hub.say("B", "set X/G:P=" + std::string(1U << 20U, 'v'));
    EXPECT_EQ(hub.hears("B"), "is held\n");
    EXPECT_NE(hub.hears("A"), "");
    EXPECT_EQ(hub.play("time passes"), "time passes\n    B: is free\n");
}

TEST(HubLimits, WhoWantsMoreThanThereMayBeGoesOrIsNotHeard) {
    const std::string tooMuch = "ends, asked for too much\n";
    ScriptedHub hub;
    hub.say("A", "get" + numbered(" X/G:", "", Hub::kMostItems));
    hub.say("B", "get" + numbered(" X/G:", "", Hub::kMostItems + 1));
    hub.say("C", "watch" + numbered(" X/G:", "", Hub::kMostWatched));
    hub.say("D", "watch" + numbered(" X/G:", "", Hub::kMostWatched));
    hub.say("D", "watch Y/G:P");
    EXPECT_EQ(count(hub.hears("A"), "/"), Hub::kMostItems);
    EXPECT_EQ(hub.hears("B"), tooMuch);
    EXPECT_EQ(count(hub.hears("C"), "/"), Hub::kMostWatched);
    EXPECT_TRUE(hub.hears("D").ends_with(tooMuch));

    hub.say("E", "tell" + numbered(" P/G:", "=1", Directory::kMostProperties));
    hub.say("E", "tell P/G:beyond=1");
    hub.say("E", "tell P/G:beyond=1 P/G:1=2");
    hub.say("F", "tell" + numbered(" P", "/G:Q=1", Hub::kMostPrograms + 1));
    const std::vector<std::string> told{R"("a program" has come)",
                                        R"("a program" has more properties than are kept)",
                                        R"("a program" has come)"};
    EXPECT_EQ(hub.log, told);
    hub.say("A", "watch-all");
    const std::string all = hub.play("time passes\nturns");
    EXPECT_EQ(count(all, " P/G:"), Directory::kMostProperties);
    EXPECT_EQ(count(all, " P/G:1=2"), 1U);
    EXPECT_EQ(count(all, "/G:Q="), Hub::kMostPrograms);

    hub.say("G", "tell " + std::string(100, 'L') + "/G:P=1");
    hub.say("G", "tell /G:P=1");
    EXPECT_EQ(hub.hears("A"), "") << "components that can be none";
}

TEST(HubLimits, WhatIsKeptForAProgramIsKnown) {
    struct {
        const char* name;
        const char* keeps;
        const char* isDone;
    } const kRows[] = {
        {"a property", "B: tell X/G:P=1\n", "B: lose X/G:P=1\n"},
        {"a question", "A: tell Y/G:P=1\nB: get Y/G:P Y/G:\n", "time passes\n"},
        {"a question for all", "A: tell Y/G:P=1\nB: get-all\n", "A: all-there-is miss Y/mark\n"},
        {"what is watched", "B: watch X/G:P\n", nullptr},
        {"that all is watched", "B: watch-all\n", nullptr},
    };
    for (const auto& [name, keeps, isDone] : kRows) {
        ScriptedHub hub;
        hub.play(keeps);
        EXPECT_GE(hub.program("B").charged, 512) << name;
        if (isDone == nullptr)
            continue;
        hub.play(isDone);
        EXPECT_EQ(hub.program("B").charged, 0) << name;
    }
}

TEST(HubLimits, WhatIsLongHasItsTurn) {
    constexpr std::size_t many = Hub::kManyReports + 1;
    const std::string tell = "tell" + numbered(" X/G:", "=1", many);
    ScriptedHub hub;
    hub.say("A", tell);
    hub.say("B", "get-all");
    hub.say("C", "get-all");
    hub.say("D", "get X/G:");
    hub.say("A", tell);
    for (int i = 0; i < 3; ++i)
        hub.say("A", "miss X/mark");
    hub.play("C leaves");
    EXPECT_TRUE(hub.program("B").reports.empty());
    EXPECT_TRUE(hub.program("D").reports.empty());
    hub.play("B: get NOBODY/G:P\nturns");
    EXPECT_EQ(hub.program("B").reports.size(), many + 1);
    EXPECT_EQ(hub.program("D").reports.size(), many);

    const std::string twice = "    D: hears lose X/G:1=1\n    D: hears tell X/G:1=2\n";
    hub.play("D: watch X/G:1\nA: tell X/G:1=1\n");
    EXPECT_EQ(hub.play("A leaves\nB: get X/G:1\n"),
              "A leaves\nB: get X/G:1\n    B: has the answer miss X/G:1\n");
    const std::string heir = hub.play("E: tell X/G:1=2\n");
    EXPECT_EQ(heir.substr(heir.find("    D")).substr(0, twice.size()), twice);
    EXPECT_EQ(hub.play("turns"), "turns\n") << "it is the heir's now";

    hub.say("E", tell);
    hub.play("E leaves");
    EXPECT_EQ(hub.play("turns"), "turns\n    D: hears lose X/G:1=1\n");
    hub.say("F", tell);
    hub.play("F leaves\nD leaves\nturns");
    hub.say("F", "tell X/G:1=3");
    hub.play("B: get-all\nF: all-there-is tell X/G:1=3\n");
    EXPECT_EQ(hub.play("F: miss X/mark"),
              "F: miss X/mark\n    B: has the answer all-there-is tell X/G:1=3\n");
}

TEST(HubLimits, ALongAnswerIsNoOlderThanTheChangesBeforeIt) {
    ScriptedHub hub;
    hub.say("A", "tell X/G:P=1 X/G:Q=1" + numbered(" X/G:", "=1", Hub::kManyReports));
    hub.play("B: watch X/G:\nA: tell X/G:P=1 X/G:Q=1\n");
    hub.say("A", "tell" + numbered(" X/G:", "=1", Hub::kManyReports));
    hub.say("A", "miss X/mark");
    hub.play("A: tell X/G:P=2\nA: lose X/G:Q=1\n");
    const std::string answer = hub.play("turns");
    EXPECT_NE(answer.find("has the answer"), std::string::npos);
    EXPECT_NE(answer.find("X/G:P=2"), std::string::npos) << "changed since";
    EXPECT_EQ(answer.find("X/G:Q="), std::string::npos) << "gone since";
}

TEST(HubLimits, NobodyHasAMarkAnsweredBeforeItsTime) {
    ScriptedHub hub;
    hub.say("A", "tell X/G:P=1");
    hub.say("B", "get X/G:");
    const PropertyGetRequest mark = hub.program("A").marks.front();
    constexpr std::size_t digits = 8; // at its end, that count
    const std::string begin = mark.guid.substr(0, mark.guid.size() - digits);
    const std::size_t number = std::stoul(mark.guid.substr(begin.size()), nullptr, 16);
    JSONPICL question;
    for (std::size_t next = number + 1; next < number + 10; ++next) {
        char end[2 * digits + 1];
        std::snprintf(end, sizeof end, "%0*zX", static_cast<int>(digits), next);
        question.addGetRequest({mark.component, mark.group, begin + end});
    }
    hub.say("C", question);
    hub.play("C leaves");
    hub.say("D", "get X/G:");
    for (int i = 0; i < 10; ++i) // to B and to C
        hub.say("A", "miss X/mark");
    EXPECT_EQ(hub.hears("D"), "");
    hub.say("A", "tell X/G:P=2");
    hub.say("A", "miss X/mark");
    EXPECT_EQ(hub.hears("D"), "has the answer tell X/G:P=2\n");
}

TEST(HubLimits, TheLogHoldsTheBeginningOfALongName) {
    ScriptedHub hub;
    JSONPICL message;
    message.addGetResponse({.group = "G",
                            .groupString = "",
                            .guid = "P",
                            .nameString = "",
                            .value = "1",
                            .status = std::string(status::kSuccessful),
                            .component = "X",
                            .componentString = std::string(1U << 20U, 'n')});
    hub.say("A", message);
    EXPECT_EQ(hub.log, std::vector{'"' + std::string(64, 'n') + "...\" has come"});
}

TEST(HubLimits, WhatIsTooLongToBeFoundIsNotWatched) {
    const std::string property = "X/G:" + std::string(Hub::kLongestKey, 'p');
    ScriptedHub hub;
    EXPECT_EQ(hub.play("A: watch " + property + "\nB: tell " + property + "=1\n"),
              "A: watch " + property + "\n    A: has the answer miss " + property + "\nB: tell " + property +
                  "=1\n");
}

} // namespace
