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
