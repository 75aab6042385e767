#include "picl/PendingRequests.h"
#include "picl/PublishLists.h"
#include "picl/ReportFrames.h"
#include "property/UInt32Property.h"
#include "tests/support/MemoryStream.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<UInt32Property> makeNumber(const char* guid) {
    return std::make_shared<UInt32Property>(0U, guid, "n", "G", "g");
}

TEST(PublishLists, HoldsTheOldest499ChangesAndGivesTheNewestFirst) {
    const auto lists = std::make_shared<PublishLists>();
    const auto first = makeNumber("first");
    const auto last = makeNumber("last");
    lists->add(first);
    for (std::uint32_t i = 1; i <= 498; ++i)
        first->setValue(i);
    lists->add(last);
    EXPECT_EQ(lists->countOfChanges(), 499U);
    EXPECT_EQ(lists->takeChanges(), PublishLists::Properties(499, first));
    last->setValue(1); // there is room again
    first->setValue(0);
    EXPECT_EQ(lists->takeChanges(), (PublishLists::Properties{first, last}));
    EXPECT_TRUE(lists->takeChanges().empty());
}

TEST(PublishLists, APolledPropertyIsQueuedOnceAndListedFromThenOn) {
    auto lists = std::make_shared<PublishLists>();
    const auto polled = makeNumber("polled");
    const auto other = makeNumber("other");
    lists->addPolledKey({"G", "polled"});
    lists->addPolledKey({"G", "polled"});
    lists->add(polled);
    lists->add(other);
    EXPECT_EQ(lists->takeChanges().size(), 2U);
    polled->setValue(1);
    EXPECT_EQ(lists->countOfChanges(), 0U);
    EXPECT_EQ(lists->polled(), PublishLists::Properties{polled});
    lists->remove(other);
    lists->remove(other);
    EXPECT_EQ(lists->takeRemoved(), (PublishLists::Properties{other, other}));
    EXPECT_TRUE(lists->takeRemoved().empty());
    lists.reset();
    other->setValue(1); // its listener finds nobody
}

PropertyGetResponse reportOn(std::string component, std::string group, std::string guid) {
    PropertyGetResponse report;
    report.component = std::move(component);
    report.group = std::move(group);
    report.guid = std::move(guid);
    return report;
}

struct PendingRow {
    const char* name;
    std::vector<PropertyGetRequest> questions;
    std::function<void(PendingRequests&)> message;
    std::vector<std::size_t> expected; // reports for each question; kOpen where it still waits
};

constexpr std::size_t kOpen = 99;

void hearAll(PendingRequests& pending, const std::vector<PropertyGetResponse>& reports) {
    PendingRequests::Groups touched;
    for (const PropertyGetResponse& report : reports)
        pending.answer(report, touched);
    pending.finishGroups(touched);
}

TEST(PendingRequests, EndAsTheirAnswersCome) {
    const PendingRow rows[] = {
        {"the oldest question for the property is answered, by one report",
         {{"C", "G", "P"}, {"C", "G", "P"}},
         [](PendingRequests& p) { hearAll(p, {reportOn("C", "G", "P")}); },
         {1, kOpen}},
        {"another property, group or program answers nothing",
         {{"C", "G", "P"}},
         [](PendingRequests& p) {
             hearAll(p, {reportOn("C", "G", "Q"), reportOn("C", "H", "P"), reportOn("D", "G", "P")});
         },
         {kOpen}},
        {"a group collects all of the message and leaves the other question alone",
         {{"C", "G", "Q"}, {"C", "G", ""}},
         [](PendingRequests& p) {
             hearAll(p, {reportOn("C", "G", "P"), reportOn("C", "G", "R")});
         },
         {kOpen, 2}},
        {"the answer for all ends the question for everything",
         {{"C", "G", ""}, {"", "", ""}},
         [](PendingRequests& p) {
             p.answerAll([] {
                 return PropertyGetResponses{reportOn("C", "G", "P"), reportOn("C", "G", "Q")};
             });
         },
         {kOpen, 2}},
        {"a miss ends only the exact question",
         {{"C", "G", ""}, {"C", "G", "P"}},
         [](PendingRequests& p) { p.answerExactly(reportOn("C", "G", "P")); },
         {kOpen, 1}},
    };
    for (const PendingRow& row : rows) {
        SCOPED_TRACE(row.name);
        PendingRequests pending;
        std::vector<std::shared_ptr<PendingResult>> results;
        for (const PropertyGetRequest& question : row.questions)
            results.push_back(pending.addPending(question));
        row.message(pending);
        for (std::size_t i = 0; i < results.size(); ++i) {
            const bool isAnswered = results[i]->answered.wait(0);
            EXPECT_EQ(isAnswered ? results[i]->reports.size() : kOpen, row.expected[i]) << i;
        }
    }
}

TEST(PendingRequests, AWithdrawnQuestionLeavesTheLikeOfItInPlace) {
    PendingRequests pending;
    const auto first = pending.addPending({"C", "G", "P"});
    const auto second = pending.addPending({"C", "G", "P"});
    pending.withdraw(second);
    pending.answerExactly(reportOn("C", "G", "P"));
    EXPECT_TRUE(first->answered.wait(0));
    EXPECT_TRUE(second->reports.empty());
}

// Frames of reports with values of these sizes; each number is a count of reports.
std::vector<std::size_t> framesOf(const std::vector<std::size_t>& valueSizes, ReportFrames::Kind kind) {
    std::vector<std::size_t> counts;
    JSONPICL message;
    ReportFrames frames(message, kind, [&](JSONPICL& frame) {
        MemoryStream stream;
        EXPECT_TRUE(frame.exportTo(stream));
        EXPECT_EQ(frame.has(keys::kGetAllResponse), kind == ReportFrames::Kind::GetAllAnswer);
        stream.input = stream.output;
        JSONPICL received;
        EXPECT_TRUE(received.importFrom(stream)) << stream.output.size();
        PropertyGetResponses reports;
        received.readGetResponses(reports);
        counts.push_back(reports.size());
        return true;
    });
    for (const std::size_t size : valueSizes) {
        PropertyGetResponse report;
        report.value.assign(size, 'v');
        frames.add(report);
    }
    EXPECT_TRUE(frames.finish());
    return counts;
}

TEST(ReportFrames, NoFrameIsLongerThanThePeerTakes) {
    using Kind = ReportFrames::Kind;
    using Counts = std::vector<std::size_t>;
    EXPECT_EQ(framesOf({}, Kind::Reports), Counts{0});
    EXPECT_EQ(framesOf({2000000, 2000000, 300000, 10}, Kind::GetAllAnswer), (Counts{2, 2}));
    EXPECT_EQ(framesOf({10, frame::kLargestText, 10}, Kind::Reports), Counts{2});
    Counts most(2000, 2);
    for (std::size_t i = 0; i < 2000; ++i)
        most[i] = 1990 + i % 3;
    std::size_t sum = 0;
    for (const std::size_t count : framesOf(most, Kind::GetAllAnswer))
        sum += count;
    EXPECT_EQ(sum, 2000U);
}

} // namespace
