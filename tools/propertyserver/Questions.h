#pragma once

#include "tools/propertyserver/Peer.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

/// What a program has asked, in one message, and what has come of it so far.
struct Question {
    /// One property that is asked for, a group, or the mark behind an answer: a property that cannot exist.
    struct Item {
        enum class Kind { Property, Group, Mark };

        Item(Kind theKind, PropertyGetRequest theRequest)
            : kind(theKind),
              request(std::move(theRequest)),
              id(kind == Kind::Group ? idOf(request.component, request.group)
                                     : idOf(request.component, request.group, request.guid)) {}

        Kind kind;
        PropertyGetRequest request;
        std::string id;                  ///< Of the property or the group.
        SharedReport report;             ///< On the property, as soon as there is one.
        std::vector<SharedReport> group; ///< On the properties of the group, in the order of their coming.
    };

    Question(Peer& theAsker, bool forAll) : asker(&theAsker), isForAll(forAll) {}

    Peer* asker;            ///< Absent once it has gone.
    bool isForAll;          ///< Answered out of the directory.
    bool isSilent = false;  ///< Not answered at all.
    std::size_t weight = 0; ///< Of the work that it makes, in properties.
    std::size_t bytes = 0;  ///< That it takes, roughly.
    std::vector<Item> items;
    std::vector<std::size_t> order; ///< Of the items in the answer, repeated ones repeatedly.
};

/// The questions that wait for the programs that know the answers.
///
/// An answer cannot be told from a publication. So each property that is asked for takes the next report on
/// it, but for what an older question waits for, and keeps the newest until its question is answered: once
/// each of its properties has a report. Whether a group is complete nobody tells. Behind it, and behind
/// questions for all, goes a mark, whose report is certain and comes behind the others.
///
/// Any number may wait for one property: what a report or the end of a question costs does not grow with it.
/// So what is newest is kept once for all who wait, and looked up when a question ends.
class Questions {
public:
    using Clock = std::chrono::steady_clock;
    using Answer = std::function<void(Question&)>;

    /// How long an answer is waited for. Less than what programs wait, who then still get a part of it.
    static constexpr std::chrono::milliseconds kPatience{2000};

    /// How many bytes of reports are kept, roughly; where they are more the oldest questions end.
    static constexpr std::size_t kMostBytes = 64U << 20U;

    /// @p answer is called for each question that is at its end.
    explicit Questions(Answer answer) : m_answer(std::move(answer)) {}

    /// Takes a question, and ends it at once if there is nothing to wait for.
    void add(Question question, Clock::time_point now);

    /// Hands @p report to who waits for it. Returns whether it was an answer; that a property has gone is
    /// none.
    bool settle(const SharedReport& report);

    /// Ends the waiting for a program that has gone: its properties are not found.
    void settleGone(std::string_view component);

    /// Forgets what @p asker asked.
    void forget(const Peer& asker);

    /// Ends the questions that have waited too long.
    void expire(Clock::time_point now);

    [[nodiscard]] bool isEmpty() const { return m_questions.empty(); }

private:
    // Questions and reports are numbered in the order of their coming.
    using Number = std::uint64_t;
    static constexpr Number kFromTheStart = std::numeric_limits<Number>::max();

    struct Waiting {
        Question question;
        std::vector<Number> told; // when each item got its report
        std::size_t open = 0;     // items without a report
        Clock::time_point deadline;
    };
    using Waitings = std::map<Number, Waiting>;
    struct Ref {
        Number question;
        std::size_t item;

        bool operator<(const Ref& other) const {
            return std::tie(question, item) < std::tie(other.question, other.item);
        }
    };
    using Refs = std::set<Ref>; // the oldest first

    struct Property {
        Refs open;               // who has no report yet
        std::size_t waiting = 0; // with those who have one
        SharedReport last;       // for the latter; absent once the property has gone
        Number told = 0;         // when that was said
    };

    // Each of those who wait gets what was told since it asked.
    struct Group {
        void tell(Number number, const SharedReport& report);
        void forget(std::string_view key);
        void forgetBefore(Number number);

        Refs waiting;
        std::size_t bytes = 0;                              // of what was told
        std::map<Number, SharedReport> told;                // the last on each property
        std::unordered_map<std::string_view, Number> byKey; // full keys, which the reports own
    };

    [[nodiscard]] bool hand(const SharedReport& report);
    void enter(Waiting& waiting, Ref ref);
    void give(Ref ref, SharedReport report);
    void close(const Question::Item& item, Ref ref);
    void collect(const SharedReport& report);
    void recall(const SharedReport& gone);
    void leaveProperty(Waiting& waiting, Ref ref);
    void leaveGroup(Question::Item& item, Ref ref);
    void keep(SharedReport& place, SharedReport report);
    void finish(Waitings::iterator place);

    const Answer m_answer;
    Number m_count = 0;
    std::size_t m_bytes = 0; // of reports, each as often as it is kept
    Waitings m_questions;    // the oldest first
    std::unordered_map<const Peer*, std::set<Number>> m_asked;
    std::unordered_map<std::string, Property> m_properties; // that are waited for, by id
    std::unordered_map<std::string, Group> m_groups;
    std::map<std::string, Refs, std::less<>> m_components; // who has no report from them yet
};

/// Returns the report that says that there is no property such as @p request asks for.
[[nodiscard]] SharedReport makeNotFound(const PropertyGetRequest& request);
