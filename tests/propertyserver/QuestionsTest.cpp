#include "tools/propertyserver/Questions.h"
#include "tests/propertyserver/CountingPeer.h"

#include <gtest/gtest.h>

namespace {

using Kind = Question::Item::Kind;

// So many that whatever walks all of them at each step takes minutes.
constexpr std::size_t kMany = 50'000;

struct Crowd {
    CountingPeer asker;
    std::size_t answers = 0;
    std::string last; // the values in the last answer
    Questions questions{[this](const Question& question) {
        ++answers;
        last.clear();
        for (const Question::Item& item : question.items) {
            last += item.report ? item.report->record.value : "-";
            for (const SharedReport& report : item.group)
                last.append("(").append(report->key()).append(" ").append(report->record.value).append(")");
        }
    }};

    void tell(const std::string& guid) {
        const SharedReport older = reportOn("X", guid, "1");
        const SharedReport newer = reportOn("X", guid, "2");
        for (std::size_t i = 0; i < kMany; ++i)
            questions.settle(i + 1 < kMany ? older : newer);
    }
};

TEST(Questions, ManyThatWaitForOnePropertyDoNotWaitForEachOther) {
    const Questions::Clock::time_point start{};
    const PropertyGetRequest p{.component = "X", .group = "G", .guid = "P"};
    const PropertyGetRequest q{.component = "X", .group = "G", .guid = "Q"};
    const PropertyGetRequest group{.component = "X", .group = "G", .guid = ""};
    const Question::Item property(Kind::Property, p);
    const Question::Item other(Kind::Property, q);
    const Question::Item all(Kind::Group, group);
    const Question::Item mark(Kind::Mark, q);
    struct {
        const char* name;
        std::vector<Question::Item> items;
        void (*happens)(Crowd&);
        std::size_t answers; // before the time is over
        const char* last;
    } const kRows[] = {
        {"each is answered", {property}, [](Crowd& crowd) { crowd.tell("P"); }, kMany, "2"},
        {"none is answered", {property}, [](Crowd&) {}, 0, "-"},
        {"one of two is answered, again and again",
         {property, other},
         [](Crowd& crowd) {
             crowd.tell("P");
             crowd.tell("P");
         },
         0,
         "2-"},
        {"the program goes",
         {property, other},
         [](Crowd& crowd) { crowd.questions.settleGone("X"); },
         kMany,
         "Invalid ValueInvalid Value"},
        {"who asked goes", {property}, [](Crowd& crowd) { crowd.questions.forget(crowd.asker); }, 0, ""},
        {"others come and go",
         {property},
         [](Crowd& crowd) {
             for (std::size_t i = 0; i < kMany; ++i) {
                 crowd.questions.settleGone("Y");
                 crowd.questions.forget(CountingPeer());
             }
         },
         0,
         "-"},
        {"a group is told",
         {all, mark},
         [](Crowd& crowd) {
             crowd.tell("P");
             crowd.tell("Q");
         },
         kMany,
         "-(G:P 2)(G:Q 2)2"},
    };
    for (const auto& [name, items, happens, answers, last] : kRows) {
        Crowd crowd;
        for (std::size_t i = 0; i < kMany; ++i) {
            Question question(crowd.asker, false);
            question.items = items;
            crowd.questions.add(std::move(question), start);
        }
        happens(crowd);
        EXPECT_EQ(crowd.answers, answers) << name;
        crowd.questions.expire(start + Questions::kPatience);
        EXPECT_TRUE(crowd.questions.isEmpty()) << name;
        EXPECT_EQ(crowd.last, last) << name;
    }
}

TEST(Questions, TheOldestEndWhereMuchIsToldMeanwhile) {
    const Questions::Clock::time_point start{};
    constexpr std::size_t many = 100;
    const std::string value(1U << 20U, 'v');
    std::vector<Question::Item> each;
    for (std::size_t i = 0; i <= many; ++i) // the last one is never told
        each.emplace_back(Kind::Property,
                          PropertyGetRequest{.component = "X", .group = "G", .guid = std::to_string(i)});
    const PropertyGetRequest never{.component = "X", .group = "G", .guid = "never"};
    const std::vector<Question::Item> group{
        {Kind::Group, PropertyGetRequest{.component = "X", .group = "G", .guid = ""}}, {Kind::Mark, never}};
    for (const auto& items : {each, group}) {
        Crowd crowd;
        const auto ask = [&] {
            Question question(crowd.asker, false);
            question.items = items;
            crowd.questions.add(std::move(question), start);
        };
        const auto tell = [&](std::size_t properties) {
            for (std::size_t i = 0; i < properties; ++i)
                crowd.questions.settle(reportOn("X", std::to_string(i), value));
        };
        for (std::size_t round = 1; round <= 3; ++round) {
            ask();
            tell(many);
            EXPECT_EQ(crowd.answers, round);
            EXPECT_TRUE(crowd.questions.isEmpty());
        }
        for (std::size_t round = 0; round < 20; ++round) { // again and again the same is no more
            ask();
            tell(10);
            EXPECT_EQ(crowd.answers, 3 + round);
            crowd.questions.expire(start + Questions::kPatience);
        }
    }
}

} // namespace
