#include "picl/PublishStream.h"
#include "picl/Publisher.h"
#include "tests/picl/AgentTest.h"
#include "tests/support/MemoryStream.h"
#include "json/JSONReader.h"

namespace {

using namespace std::chrono_literals;

/// A property whose value cannot be told.
class Untold final : public StringProperty {
public:
    using StringProperty::StringProperty;
    [[nodiscard]] std::string getStringValue() const override { throw 5; }
};

TEST_F(AgentTest, ChangesLeaveInOneFrameTheNewestFirstWithTheValueOfNow) {
    connect();
    const auto first = add<UInt32Property>("A", 0U);
    const auto second = add<UInt32Property>("B", 0U);
    first->setValue(5);
    add<Untold>("U", "");
    manager->removeProperty(second, nullptr);
    agent->startPublishing();
    const std::string a = report(*first);
    const std::string b = report(*second);
    EXPECT_EQ(peer->hears(), frameOf(reports(a + "," + b + "," + a + "," + report(*period) + "," +
                                             report(*second, "Property No Longer Available"))));
}

TEST_F(AgentTest, WhatWasThereBeforeThePublisherIsAnnouncedInOrder) {
    PublishingPropertyManager early(threads, kThreadPriority, kThreadPriority, L"/store/e.ini", L"/boot/e");
    const auto first = std::make_shared<UInt32Property>(1U, "A", "n", "G", "g");
    EXPECT_TRUE(early.addProperty(first));
    EXPECT_FALSE(early.addProperty(std::make_shared<UInt32Property>(2U, "A", "n", "G", "g")));
    const std::uint32_t before = agent->countOfChangedProperties();
    early.setPublisher(agent);
    EXPECT_EQ(agent->countOfChangedProperties(), before + 2);
    EXPECT_FALSE(early.addProperty(first)); // refused, and announced all the same
    EXPECT_EQ(agent->countOfChangedProperties(), before + 3);
}

TEST(Publisher, APeriodIsWholeWaitsAndAtMostOneDay) {
    struct {
        std::uint32_t periodMs;
        std::uint32_t waits;
    } const kRows[] = {{0, 1},    {249, 1},           {250, 1},           {749, 2},
                       {1000, 4}, {86400000, 345600}, {86400250, 345600}, {4294967295, 345600}};
    for (const auto& [periodMs, waits] : kRows)
        EXPECT_EQ(Publisher::waitsPerPeriod(periodMs), waits) << periodMs;
}

TEST_F(AgentTest, APolledPropertyIsReportedAtEachPeriod) {
    const auto polled = std::make_shared<UInt32Property>(0U, "P", "n", "G", "g");
    agent->addPolledKey({"G", "P"});
    manager->addProperty(polled);
    connect();
    agent->startPublishing();
    EXPECT_EQ(peer->hears(),
              frameOf(reports(report(*polled) + "," + report(*period) + "," + report(*polled))));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(peer->hears(), frameOf(reports(report(*polled))));
}

TEST_F(AgentTest, ChangesWithoutRoomInTheFrameAreReportedOnceWithTheirFinalValue) {
    const auto text = add<StringProperty>("T", "");
    const auto number = add<UInt32Property>("N", 1U);
    connect();
    for (char letter = 'a'; letter <= 'z'; ++letter)
        text->setValue(std::string(frame::kLargestText / 2, letter));
    agent->startPublishing();
    const std::string first =
        peer->hears(); // the value leaves room for small reports, not for a second value
    EXPECT_TRUE(first.ends_with(report(*period) + "]}"));
    EXPECT_LT(first.size(), frame::kLargestText);
    EXPECT_EQ(peer->hears(), frameOf(reports(report(*text))));
    number->setValue(2);
    EXPECT_EQ(peer->hears(), frameOf(reports(report(*number))));
}

TEST_F(AgentTest, AReportThatFitsIntoNoFrameIsLoggedOnce) {
    static int runs = 0; // the process remembers what it logged
    const std::string guid = "L" + std::to_string(++runs);
    const auto text = add<StringProperty>(guid.c_str(), std::string(frame::kLargestText, 'x'));
    const auto number = add<UInt32Property>("N", 1U);
    testing::internal::CaptureStderr();
    for (int i = 0; i < 2; ++i) {
        peer->says(R"({"PropertyGetRequests": [{"GUID": "G:)" + guid + R"("},{"GUID": "G:N"}]})");
        EXPECT_TRUE(agent->processNextMessage(peer));
        EXPECT_EQ(peer->hears(), frameOf(reports(report(*number))));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\"a name\" (G:" + guid + ") is not reported: its value is too long for a frame\n");
}

TEST_F(AgentTest, AfterAFailedWriteThereIsSilenceUntilSomebodySubscribes) {
    connect();
    agent->startPublishing();
    peer->fail(true);
    EXPECT_TRUE(peer->sees(2)); // the first frame, and the one that fails
    EXPECT_TRUE(eventually([&] { return agent->countOfChangedProperties() == 0; }));
    EXPECT_TRUE(eventually([&] { return !agent->setExternalValue("OWNER", "XG", "XP", "v"); }));
    peer->fail(false);
    EXPECT_FALSE(agent->setExternalValue("OWNER", "XG", "XP", "v"));
    EXPECT_TRUE(agent->getExternalProperty<BoolProperty>("OWNER", "XG", "XP", 60000).expired());
    agent->removeProperty(period); // which is told when there is somebody again
    connect();
    EXPECT_TRUE(agent->setExternalValue("OWNER", "XG", "XP", "a\"b"));
    EXPECT_EQ(
        peer->hears(),
        frameOf(R"({"PropertySetRequests": [{"Component": "OWNER","GUID": "XG:XP","Value": "a\"b"}]})"));
    EXPECT_EQ(peer->hears(), frameOf(reports(report(*period, "Property No Longer Available"))));
}

TEST_F(AgentTest, ASetThatFailsIsNoEnd) {
    connect();
    peer->fail(true);
    EXPECT_FALSE(agent->setExternalValue("OWNER", "XG", "XP", "v"));
    peer->fail(false);
    EXPECT_FALSE(agent->setExternalValue("OWNER", "XG", "XP", std::string(frame::kLargestText, 'v')));
    EXPECT_TRUE(agent->setExternalValue("OWNER", "XG", "XP", "v"));
}

TEST_F(AgentTest, ASecondAgentTakesOverWhereTheFirstEnded) {
    const auto number = add<UInt32Property>("N", 1U);
    agent = std::make_shared<PICLServerAgent>(manager, threads, kThreadPriority, component);
    manager->setPublisher(agent);
    connect();
    period->setValue(250);
    number->setValue(2);
    agent->startPublishing();
    EXPECT_EQ(peer->hears(), frameOf(reports(report(*number) + "," + report(*period) + "," + report(*number) +
                                             "," + report(*period))));
}

TEST_F(AgentTest, TheGoodbyeIsTheLastFrameWhoeverHoldsTheAgent) {
    for (const bool publishes : {false, true}) {
        SCOPED_TRACE(publishes);
        connect();
        if (publishes)
            agent->startPublishing();
        startReader();
        agent->disconnect();
        EXPECT_EQ(peer->hears(), frameOf(kGoodbye));
        EXPECT_FALSE(agent->setExternalValue("OWNER", "XG", "XP", "v"));
        peer->says(R"({"SubscribeAllCurrentAndNewProperties": 0})");
        reader.join(); // its answer is refused
        EXPECT_TRUE(peer->heardAll());
        agent = std::make_shared<PICLServerAgent>(manager, threads, kThreadPriority, component);
    }
}

TEST_F(AgentTest, DisconnectDoesNotWaitForTheJsonEngine) {
    connect();
    period->setValue(250);
    agent->startPublishing();
    EXPECT_FALSE(peer->hears().empty());
    const KeltoGuard parsing(jsonEngineLock);
    period->setValue(0); // the publisher waits for the engine to format its frame
    EXPECT_TRUE(eventually([&] { return agent->countOfChangedProperties() == 0; }));
    agent->disconnect();
    EXPECT_EQ(peer->hears(), frameOf(kGoodbye));
}

TEST_F(AgentTest, DisconnectEndsAMessageOfManyRecords) {
    const auto first = add<UInt32Property>("A", 0U);
    const auto second = add<UInt32Property>("B", 0U);
    connect();
    first->addListener([this](const std::shared_ptr<Property>&) { agent->disconnect(); });
    peer->says(R"({"PropertySetRequests": [{"GUID": "G:A","Value": "1"},{"GUID": "G:B","Value": "1"}]})");
    EXPECT_FALSE(agent->processNextMessage(peer));
    EXPECT_EQ(second->getValue(), 0U);
}

/// A stream that runs a function when it is released.
class ReleasedStream final : public MemoryStream {
public:
    ~ReleasedStream() override { onRelease(); }
    std::function<void()> onRelease;
};

TEST(PublishStream, RefusesFramesFromTheReleaseOfTheStreamOn) {
    PublishStream connection;
    MemoryStream other;
    bool isSent = true;
    auto stream = std::make_shared<ReleasedStream>();
    stream->onRelease = [&] {
        JSONPICL late;
        isSent = connection.answer(other, [&](const PublishStream::Send& send) { return send(late); });
    };
    connection.set(std::move(stream), [](const PublishStream::Send&) {});
    connection.disconnect();
    EXPECT_FALSE(isSent);
}

TEST_F(AgentTest, APeerThatDoesNotReadHoldsUpNobody) {
    for (const bool readsOn : {false, true}) {
        SCOPED_TRACE(readsOn);
        auto last = std::make_shared<ScriptedPeer>();
        auto mine = std::make_shared<PICLServerAgent>(manager, threads, kThreadPriority, component);
        mine->setPublishStream(last);
        last->hears();
        last->stall(true);
        mine->addProperty(period);
        mine->startPublishing();
        ASSERT_TRUE(last->sees(2)); // now the publisher is inside its write
        const auto begin = ScriptedPeer::Clock::now();
        mine.reset();
        EXPECT_LT(ScriptedPeer::Clock::now() - begin, 2s);
        if (readsOn) { // late, but whole and in order
            last->stall(false);
            EXPECT_EQ(last->hears(), frameOf(reports(report(*period))));
            EXPECT_EQ(last->hears(), frameOf(kGoodbye));
        }
        last->close();
        EXPECT_TRUE(
            eventually([&] { return last.use_count() == 1; })); // the thread that was let go has ended
    }
}

} // namespace
