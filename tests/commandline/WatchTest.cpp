#include "tests/commandline/CommandTest.h"

#include <nlohmann/json.hpp>

namespace {

const std::string kPeriod = " Screens/General/Period";
const std::string kLanguage = " Screens/General/Language";
const std::string kNoTime = "            ";
const std::string kTime = "##:##:##.###";

class Watch : public CommandTest {
protected:
    Watch() {
        server.add("Screens", "General", "Period", "500");
        server.add("Screens", "General", "Language", "english");
    }

    ScriptedServer server;
};

TEST_F(Watch, TellsEachChangeAtOnceAndNothingTwice) {
    const auto watch = start({"watch"});
    std::string text = kNoTime + kLanguage + " = english\n" + kNoTime + kPeriod + " = 500\n";
    ASSERT_TRUE(watch->prints(text)) << watch->out();
    ASSERT_TRUE(server.hasSubscriber());
    server.repeat();
    server.change("Period", "1000");
    text += kTime + kPeriod + " = 1000\n";
    EXPECT_TRUE(watch->prints(text)) << watch->out();
    server.change("Period", "a\nb");
    text += kTime + kPeriod + " = a\\nb\n";
    server.remove("Language");
    text += kTime + kLanguage + " is gone; it was english\n";
    server.add("Screens", "General", "Language", "english");
    text += kTime + kLanguage + " is back = english\n";
    server.add("Other", "General", "Late", "1");
    text += kTime + " Other/General/Late is new = 1\n";
    EXPECT_TRUE(watch->prints(text)) << watch->out();
    watch->signal(SIGINT);
    EXPECT_EQ(watch->status(), 0);
    EXPECT_EQ(watch->err(), "");
}

TEST_F(Watch, OfSomeTellsThoseInTheOrderOfTheirNames) {
    const auto watch = start({"watch", "period", "Language", "--count", "2"});
    std::string text = kNoTime + kPeriod + " = 500\n" + kNoTime + kLanguage + " = english\n";
    ASSERT_TRUE(watch->prints(text)) << watch->out();
    ASSERT_TRUE(server.hasSubscriber());
    server.add("Screens", "General", "Late", "1");
    server.change("Period", "1");
    server.change("Language", "deutsch");
    EXPECT_EQ(watch->status(), 0) << "two were enough";
    text += kTime + kPeriod + " = 1\n" + kTime + kLanguage + " = deutsch\n";
    EXPECT_TRUE(watch->prints(text)) << watch->out();
}

TEST_F(Watch, EndsWithItsTimeOrWithASignal) {
    EXPECT_EQ(start({"watch", "--for", "0.05"})->status(), 0);
    const auto watch = start({"watch", "Period"});
    ASSERT_TRUE(server.hasSubscriber());
    ASSERT_TRUE(watch->prints(kNoTime + kPeriod + " = 500\n"));
    watch->signal(SIGTERM);
    EXPECT_EQ(watch->status(), 0);
}

TEST_F(Watch, IsInterruptedAlsoWhileItWaitsForTheFirstAnswer) {
    server.let(&ScriptedServer::saysInstead, std::string(1, '\xB3'));
    const auto watch = start({"watch", "--timeout", "1000"});
    ASSERT_TRUE(server.wasAsked());
    watch->signal(SIGINT);
    EXPECT_EQ(watch->status(), 0);
    EXPECT_EQ(watch->err(), "");
}

TEST_F(Watch, TellsThatTheServerHasGone) {
    const auto watch = start({"watch", "Period"});
    ASSERT_TRUE(watch->prints(kNoTime + kPeriod + " = 500\n"));
    server.hangUp();
    EXPECT_EQ(watch->status(), 1);
    EXPECT_EQ(watch->err(), "picl: the property server has gone; start it again with \"picl serve\"\n");
}

TEST_F(Watch, PrintsAnObjectALineForOtherPrograms) {
    const auto watch = start({"watch", "--json", "Period", "--count", "1"});
    ASSERT_TRUE(server.hasSubscriber());
    server.change("Period", "\xff\n");
    EXPECT_EQ(watch->status(), 0);
    std::istringstream lines(watch->out());
    std::string line;
    ASSERT_TRUE(std::getline(lines, line));
    const auto first = nlohmann::json::parse(line);
    EXPECT_EQ(first["event"], "present");
    EXPECT_EQ(first["value"], "500");
    ASSERT_TRUE(std::getline(lines, line));
    const auto second = nlohmann::json::parse(line);
    EXPECT_EQ(second["event"], "changed");
    EXPECT_EQ(second["valueInHex"], "ff0a");
    EXPECT_EQ(second["time"].get<std::string>().size(), std::string("2024-02-29T12:00:00.000+01:00").size());
}

} // namespace
