#include "picl/FrameReader.h"
#include "tests/picl/ScriptedPeer.h"
#include "tests/propertyserver/ScriptedHub.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

struct Conversation {
    const char* name;
    const char* script;
};

bool isSame(const PropertyGetResponse& one, const PropertyGetResponse& other) {
    const auto texts = [](const PropertyGetResponse& r) {
        return std::tie(r.group, r.groupString, r.guid, r.nameString, r.value, r.status, r.component,
                        r.componentString);
    };
    return texts(one) == texts(other);
}

class HubConversation : public testing::TestWithParam<Conversation> {};

TEST_P(HubConversation, Goes) {
    ScriptedHub hub;
    const std::string script = std::string(GetParam().script).substr(1);
    EXPECT_EQ(hub.play(script), script);
}

const Conversation kConversations[] = {
    {"SetsGoToTheOwnersOfTheProperties", R"(
A: tell X/G:P=1
B: tell Y/G:P=1 Z/G:P=1
C: set X/G:P=2 X/G:P=3 Y/G:P=4 NOBODY/G:P=5 Z/G:P=6 X/G:Q=7
    A: set X/G:P=2 X/G:P=3 X/G:Q=7
    B: set Y/G:P=4 Z/G:P=6
)"},
    {"AnAnswerHasEachItemInTheOrderAskedHoweverOftenAndWhoeverOwnsIt", R"(
A: tell X/G:P=1 X/G:Q=2
B: tell Y/G:P=3
C: get Y/G:P X/G:Q X/G:P X/G:Q NOBODY/G:P X/H:R NOBODY/G:
    A: get X/G:Q X/G:P X/H:R
    B: get Y/G:P
A: tell X/G:Q=2 X/G:P=5 miss X/H:R
B: tell Y/G:P=4
    C: has the answer tell Y/G:P=4 X/G:Q=2 X/G:P=5 X/G:Q=2 miss NOBODY/G:P X/H:R NOBODY/G:
)"},
    {"AGroupIsWhatCameBeforeTheMark", R"(
A: tell X/G:P=1 X/G:Q=2 X/H:R=3
B: get X/G: X/NONE: X/H:R
    A: get X/G: X/NONE: X/H:R X/mark
A: tell X/G:P=1 X/G:Q=2 X/H:R=3
A: miss X/mark
    B: has the answer tell X/G:P=1 X/G:Q=2 X/H:R=3
B: get X/NONE:
    A: get X/NONE: X/mark
A: miss X/mark
    B: has the answer 
)"},
    {"WhoAsksForAGroupLaterHasWhatCameSince", R"(
A: tell X/G:P=1
B: get X/G:
    A: get X/G: X/mark
A: tell X/G:P=2 X/G:Q=3 X/G:R=4
C: get X/G:
    A: get X/G: X/mark
A: tell X/G:Q=5
A: lose X/G:R=4
A: miss X/mark
    B: has the answer tell X/G:P=2 X/G:Q=5
A: tell X/G:S=6
A: miss X/mark
    C: has the answer tell X/G:Q=5 X/G:S=6
)"},
    {"AQuestionForAllIsAnsweredWithWhatTheOthersSayNow", R"(
A: tell X/G:P=1
B: tell Y/G:P=2
C: tell Z/G:P=3
C: get-all
    A: get-all
    A: get X/mark
    B: get-all
    B: get Y/mark
A: all-there-is tell X/G:P=7 X/G:Q=8
B: all-there-is tell Y/G:P=2
A: miss X/mark
B: miss Y/mark
    C: has the answer all-there-is tell X/G:P=7 X/G:Q=8 Y/G:P=2
)"},
    {"NobodyElseIsThereToTellOfAll", R"(
A: tell X/G:P=1
A: get-all
    A: has the answer all-there-is
)"},
    {"TheProgramThatIsAskedGoes", R"(
A: tell X/G:P=1
B: tell Y/G:P=2
C: get X/G:P Y/G:P X/H:
    A: get X/G:P X/H: X/mark
    B: get Y/G:P
D: get-all
    A: get-all
    A: get X/mark
    B: get-all
    B: get Y/mark
A leaves
B: tell Y/G:P=2
    C: has the answer miss X/G:P tell Y/G:P=2
B: miss Y/mark
    D: has the answer all-there-is tell Y/G:P=2
)"},
    {"TheProgramGoesWhenOneHasItsReportAndOneHasNot", R"(
A: tell X/G:P=1
B: tell Y/G:P=1
C: get X/G:P Y/G:P
    A: get X/G:P
    B: get Y/G:P
A: tell X/G:P=2
D: get X/G:P Y/G:P
    A: get X/G:P
    B: get Y/G:P
A leaves
B: tell Y/G:P=3
    C: has the answer tell X/G:P=2 Y/G:P=3
E: tell X/G:P=4
B: tell Y/G:P=5
    D: has the answer tell X/G:P=4 Y/G:P=5
)"},
    {"TheOneWhoAsksGoes", R"(
A: tell X/G:P=1
B: get X/G:P
    A: get X/G:P
C: get X/G:P
    A: get X/G:P
B leaves
A: tell X/G:P=2
    C: has the answer tell X/G:P=2
A: tell X/G:P=3
)"},
    {"AnOwnerThatDoesNotAnswerIsWaitedForInVain", R"(
A: tell X/G:P=1
B: tell Y/G:P=1
C: get X/G:P Y/G:P
    A: get X/G:P
    B: get Y/G:P
D: get X/G:P
    A: get X/G:P
E: get-all
    A: get-all
    A: get X/mark
    B: get-all
    B: get Y/mark
B: tell Y/G:P=2
time passes
    C: has the answer tell Y/G:P=2
    E: has the answer all-there-is tell X/G:P=1 Y/G:P=2
A: tell X/G:P=3
)"},
    {"AReportBeforeTheAnswerCountsAndALaterOneCountsMore", R"(
A: tell X/G:P=1 X/G:Q=1
B: get X/G:P X/G:Q
    A: get X/G:P X/G:Q
A: tell X/G:P=2
A: tell X/G:P=3 X/G:Q=4
    B: has the answer tell X/G:P=3 X/G:Q=4
)"},
    {"ThatAPropertyGoesIsNoAnswer", R"(
A: tell X/G:P=1
B: get X/G:P
    A: get X/G:P
A: lose X/G:P=1
A: miss X/G:P
    B: has the answer miss X/G:P
C: get X/G:P X/G: X/H:R
    A: get X/G:P X/G: X/H:R X/mark
A: tell X/G:P=2 X/G:Q=3
A: lose X/G:P=2
A: miss X/H:R X/mark
    C: has the answer miss X/G:P tell X/G:Q=3 miss X/H:R
)"},
    {"TwoAskForOneProperty", R"(
A: tell X/G:P=1
B: get X/G:P
    A: get X/G:P
C: get X/G:P
    A: get X/G:P
A: tell X/G:P=2
    B: has the answer tell X/G:P=2
A: tell X/G:P=3
    C: has the answer tell X/G:P=3
)"},
    {"WhoWatchesHearsEveryChange", R"(
A: tell X/G:P=1 X/H:Q=1
B: watch X/G:P
    A: watch X/G:P
A: tell X/G:P=1
    B: has the answer tell X/G:P=1
C: watch X/H:
    A: get X/H: X/mark
A: tell X/H:Q=2
    C: hears tell X/H:Q=2
A: miss X/mark
    C: has the answer tell X/H:Q=2
A: tell X/G:P=2 X/H:Q=3 X/H:R=4 X/I:S=5
    B: hears tell X/G:P=2
    C: hears tell X/H:Q=3
    C: hears tell X/H:R=4
B leaves
A: tell X/G:P=3
)"},
    {"WhoWatchesBeforeTheProgramIsThereHearsOfItWhenItComes", R"(
A: watch X/G:P X/H:
    A: has the answer miss X/G:P X/H:
B: watch-all
    B: has the answer all-there-is
C: tell X/G:P=1 X/H:Q=2
    A: hears tell X/G:P=1
    A: hears tell X/H:Q=2
    B: hears tell X/G:P=1
    B: hears tell X/H:Q=2
    C: watch-all
C: tell X/G:P=1 X/H:Q=2
    A: hears tell X/G:P=1
    A: hears tell X/H:Q=2
    B: hears tell X/G:P=1
    B: hears tell X/H:Q=2
C leaves
    A: hears lose X/G:P=1
    A: hears lose X/H:Q=2
    B: hears lose X/G:P=1
    B: hears lose X/H:Q=2
D: tell X/H:Q=3
    A: hears tell X/H:Q=3
    B: hears tell X/H:Q=3
    D: watch-all
D: lose X/H:Q=4
    A: hears lose X/H:Q=4
    B: hears lose X/H:Q=4
D: tell X/H:Q=5
    A: hears tell X/H:Q=5
    B: hears tell X/H:Q=5
)"},
    {"TheFirstKeepsAComponentUntilItGoes", R"(
A: tell X/G:P=1
B: tell X/G:P=2 Y/G:P=3
C: get X/G:P
    A: get X/G:P
B: tell X/G:P=2
A: tell X/G:P=1
    C: has the answer tell X/G:P=1
A leaves
    B: get-all
B: all-there-is tell X/G:P=2 Y/G:P=3
C: set X/G:P=9
    B: set X/G:P=9
)"},
    {"NobodyWaitsForAnHeirThatIsSilentOrGoes", R"(
A: tell X/G:P=1
B: tell X/G:P=2
C: tell X/G:P=3
D: tell X/G:P=4
A leaves
    B: get-all
    C: get-all
    D: get-all
B leaves
D: all-there-is tell X/G:P=4
C: all-there-is tell X/G:P=3
E: set X/G:P=9
    D: set X/G:P=9
D leaves
    C: get-all
)"},
    {"ANoticeThatNothingIsFoundIsNoClaim", R"(
A: miss X/G:P
B: tell X/G:P=1
C: get X/G:P
    B: get X/G:P
A: miss X/G:P
B: tell X/G:P=1
    C: has the answer tell X/G:P=1
)"},
    {"AnAnswerThatTellsNothingNewIsNoChange", R"(
A: tell X/G:P=1
B: watch X/G:P
    A: watch X/G:P
A: tell X/G:P=1
    B: has the answer tell X/G:P=1
C: get X/G:P
    A: get X/G:P
A: tell X/G:P=1
    C: has the answer tell X/G:P=1
D: get X/G:P
    A: get X/G:P
A: tell X/G:P=2
    B: hears tell X/G:P=2
    D: has the answer tell X/G:P=2
)"},
    {"WhoSaysGoodbyeIsTakenAtItsWordBehindItsMessage", R"(
A: tell X/G:P=1
B: set X/G:P=2 goodbye
    A: set X/G:P=2
    B: ends, has said goodbye
)"},
    {"SetsComeBeforeReportsAndThoseBeforeQuestions", R"(
A: tell X/G:P=1
B: get X/G:P Y/G:P set Y/G:P=1 tell Y/G:P=2 watch Y/G:Q
    A: get X/G:P
    B: watch Y/G:P Y/G:Q
)"},
};

INSTANTIATE_TEST_SUITE_P(, HubConversation, testing::ValuesIn(kConversations),
                         [](const auto& row) { return row.param.name; });

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

TEST(Hub, EveryTextArrivesAsItWasSent) {
    std::string all;
    for (int byte = 1; byte <= 0xFF; ++byte)
        all += static_cast<char>(byte);
    const std::string odd = "q\"u\\o\1t\ne\x7F/\xC3\xA9";
    ScriptedHub hub;
    PropertyGetResponse said{.group = odd + "g",
                             .groupString = all + "gs",
                             .guid = all + "p",
                             .nameString = all + "n",
                             .value = all + "v",
                             .status = odd + "s",
                             .component = "c\"\\\1\x7F/\xC3\xA9",
                             .componentString = all + "cs"};
    const auto escaped = [](PropertyGetResponse report) {
        for (std::string* text : {&report.group, &report.groupString, &report.guid, &report.nameString,
                                  &report.value, &report.status, &report.component, &report.componentString})
            *text = escapeText(*text);
        return report;
    };
    const auto tell = [&] {
        JSONPICL message;
        message.addGetResponses(std::make_unique<PropertyGetResponses>(1, escaped(said)));
        hub.say("A", message);
    };
    tell();
    JSONPICL questions;
    const PropertyGetResponse sent = escaped(said);
    questions.addSetRequest({sent.guid, sent.group, sent.component, sent.value});
    questions.addGetRequest({sent.component, sent.group, sent.guid});
    questions.addGetRequest({sent.component + "x", sent.group, sent.guid});
    hub.say("B", questions);
    EXPECT_EQ(hub.hears("A"), "set " + said.component + '/' + said.group + ':' + said.guid + '=' +
                                  said.value + "\nget " + said.component + '/' + said.group + ':' +
                                  said.guid + '\n');
    tell();
    const PropertyGetResponses& answer = hub.program("B").reports;
    ASSERT_EQ(answer.size(), 2U);
    EXPECT_TRUE(isSame(answer[0], said));
    EXPECT_EQ(answer[1].component, said.component + "x");
    EXPECT_EQ(answer[1].guid, said.guid);
}

} // namespace
