#include "tools/propertyserver/Outbox.h"

#include "picl/FrameReader.h"
#include "tests/propertyserver/ResidentBytes.h"
#include "tests/propertyserver/ShortHand.h"

#include <gtest/gtest.h>

namespace {

SharedReport report(const std::string& item) {
    JSONPICL message;
    write("tell " + item, message);
    PropertyGetResponses reports;
    message.readGetResponses(reports);
    return std::make_shared<const Report>(reports.front());
}

/// Takes all that is there, @p atOnce bytes at most at a time, and returns it in short hand, a frame a line.
std::string taken(Outbox& outbox, std::size_t atOnce = std::string::npos) {
    FrameReader reader;
    std::string text;
    for (std::string_view bytes = outbox.next(); !bytes.empty(); bytes = outbox.next()) {
        const std::string_view part = bytes.substr(0, atOnce);
        reader.take(part);
        outbox.sent(part.size());
        JSONPICL message;
        if (reader.next(message) == FrameReader::Result::Message)
            text += shortHand(message) + '\n';
    }
    EXPECT_EQ(reader.waiting(), 0U);
    EXPECT_EQ(outbox.waiting(), 0U);
    return text;
}

std::string frame(const ShortHand& text) {
    JSONPICL message;
    write(text, message);
    return message.toFrame();
}

TEST(Outbox, HasTheLastValueOfEachPropertyInTheOrderOfTheirLastChanges) {
    Outbox outbox;
    EXPECT_EQ(taken(outbox), "");
    for (const char* const item : {"X/G:P=1", "X/G:Q=1", "Y/G:P=1", "X/G:P=2", "X/G:R=1", "X/G:Q=2"})
        outbox.publish(report(item));
    EXPECT_EQ(taken(outbox), "tell Y/G:P=1 X/G:P=2 X/G:R=1 X/G:Q=2\n");
    outbox.publish(report("X/G:P=3"));
    EXPECT_EQ(taken(outbox), "tell X/G:P=3\n") << "after all has gone";
}

TEST(Outbox, HasMessagesAndAnswersInTheirOrderInFrontOfChanges) {
    Outbox outbox;
    outbox.publish(report("X/G:P=2"));
    outbox.send(frame("set X/G:P=5"));
    outbox.answer({report("X/G:P=1"), report("X/G:P=1")}, false);
    outbox.answer({}, true);
    outbox.answer({}, false);
    outbox.publish(report("X/G:Q=3"));
    EXPECT_EQ(taken(outbox), "set X/G:P=5\ntell X/G:P=1 X/G:P=1\nall-there-is\n\ntell X/G:P=2 X/G:Q=3\n");
}

TEST(Outbox, IsTakenInPartsOfAnySize) {
    for (std::size_t atOnce = 1; atOnce < 400; atOnce += 13) {
        Outbox outbox;
        outbox.send(frame("set X/G:P=5"));
        outbox.publish(report("X/G:P=1"));
        const std::string_view begin = outbox.next();
        outbox.publish(report("X/G:P=2"));
        EXPECT_EQ(outbox.next().data(), begin.data()) << "stays until it is sent";
        EXPECT_EQ(taken(outbox, atOnce), "set X/G:P=5\ntell X/G:P=2\n") << atOnce;
    }
}

TEST(Outbox, ChangesUnderWayStayWhatTheyAreAndNewerOnesFollow) {
    Outbox outbox;
    outbox.publish(report("X/G:P=1"));
    outbox.sent(outbox.next().size() - 1);
    outbox.publish(report("X/G:P=2"));
    outbox.sent(1);
    EXPECT_EQ(taken(outbox), "tell X/G:P=2\n");
}

TEST(Outbox, DoesNotGrowWithTheNumberOfChanges) {
    Outbox outbox;
    const SharedReport changes[] = {report("X/G:P=1"), report("X/G:P=2")};
    const std::size_t before = residentBytes();
    for (std::size_t i = 0; i < 5'000'000; ++i)
        outbox.publish(changes[i % 2]);
    EXPECT_LT(residentBytes(), before + (32U << 20U));
    EXPECT_EQ(taken(outbox), "tell X/G:P=2\n");
}

TEST(Outbox, WhatIsLongerThanAFrameGoesInSeveralAndOnlyOneAtATimeCounts) {
    Outbox outbox;
    const std::string value(1U << 20U, 'v');
    for (int i = 0; i < 20; ++i)
        outbox.publish(report("X/G:" + std::to_string(i) + '=' + value));
    EXPECT_FALSE(outbox.next().empty());
    EXPECT_LE(outbox.waitingForReader(), frame::kHeaderSize + frame::kLargestText);
    const std::string all = taken(outbox);
    for (int i = 0; i < 20; ++i)
        EXPECT_NE(all.find("X/G:" + std::to_string(i) + '='), std::string::npos) << i;
}

} // namespace
