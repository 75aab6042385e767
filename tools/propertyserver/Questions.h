#pragma once

#include "tools/propertyserver/Peer.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
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
        std::string id;                            ///< Of the property or the group.
        SharedReport report;                       ///< On the property, as soon as there is one.
        std::map<std::string, SharedReport> group; ///< On the properties of the group, by full key.
    };

    Question(Peer& theAsker, bool forAll) : asker(&theAsker), isForAll(forAll) {}

    Peer* asker;            ///< Absent once it has gone.
    bool isForAll;          ///< Answered out of the directory.
    bool isSilent = false;  ///< Not answered at all.
    std::size_t weight = 0; ///< Of the work that it makes, in properties.
    std::vector<Item> items;
    std::vector<std::size_t> order; ///< Of the items in the answer, repeated ones repeatedly.
};

/// The questions that wait for the programs that know the answers.
///
/// An answer cannot be told from a publication. So each property that is asked for takes the next report on
/// it, but for what an older question waits for, and keeps the newest until its question is answered: once
/// each of its properties has a report. Whether a group is complete nobody tells. Behind it, and behind
/// questions for all, goes a mark, whose report is certain and comes behind the others.
class Questions {
public:
    using Clock = std::chrono::steady_clock;
    using Answer = std::function<void(Question&)>;

    /// How long an answer is waited for. Less than what programs wait, who then still get a part of it.
    static constexpr std::chrono::milliseconds kPatience{2000};

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
    struct Waiting {
        Question question;
        std::size_t open = 0; // items without a report
        Clock::time_point deadline;
    };
    using Place = std::list<Waiting>::iterator;
    struct Ref {
        Place place;
        std::size_t item;
    };
    using Index = std::unordered_map<std::string, std::vector<Ref>>;

    static bool give(const Ref& ref, const SharedReport& report);
    void collect(const SharedReport& report);
    void recall(const SharedReport& gone);
    [[nodiscard]] Index& indexOf(const Question::Item& item);
    void finish(Place place);

    const Answer m_answer;
    std::list<Waiting> m_questions; // the oldest first
    Index m_properties;             // who waits, by id; the oldest first
    Index m_groups;
};

/// Returns the report that says that there is no property such as @p request asks for.
[[nodiscard]] SharedReport makeNotFound(const PropertyGetRequest& request);
