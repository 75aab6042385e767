#pragma once

#include "tools/propertyserver/Directory.h"
#include "tools/propertyserver/Questions.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// Hands messages between the programs that are connected: sets and questions to the owner of the property,
/// answers to who asked, changes to who watches.
///
/// Knows nothing of sockets and time: connections are peers, the time is told. Belongs to one thread. Blocks
/// nowhere.
class Hub {
public:
    // What one peer may do. Beyond it a peer is held, or its connection ends.
    static constexpr std::size_t kMostOpen = 1024;   ///< Asked for and set, and not dealt with: it is held.
    static constexpr std::size_t kMostItems = 4096;  ///< Asked for in one message.
    static constexpr std::size_t kMostSets = 16'384; ///< In one message.
    static constexpr std::size_t kMostReports = 16'384; ///< In one message; further ones are not taken.
    static constexpr std::size_t kLongestKey = 1024;    ///< Of group and property; longer ones are not found.
    static constexpr std::size_t kMostWatched = 4096;   ///< Properties and groups.
    static constexpr std::size_t kMostPrograms = 16;    ///< That it speaks for, or would like to.

    static constexpr std::size_t kManyReports = 256; ///< What is to do with more takes its turn.

    using Log = std::function<void(std::string_view)>;
    using Work = std::function<void()>;
    using Later = std::function<void(Work)>;

    /// @p log takes sentences about what a person should know. @p later does work in turn with other long
    /// work, or at once.
    Hub(Log log, Later later);

    void join(Peer& peer);

    /// Takes leave of @p peer: what it owned has gone, what it asked is forgotten. @p why goes into the log,
    /// but for one that was never known and just went.
    void leave(Peer& peer, std::string_view why = kHasGone);

    /// Deals with a message of @p peer: its sets, its reports, its questions, in this order.
    void take(Peer& peer, const JSONPICL& message, Questions::Clock::time_point now);

    /// Answers what has waited too long with what there is.
    void expire(Questions::Clock::time_point now) { m_questions.expire(now); }

    /// Returns whether a question waits, and expire() is of use.
    [[nodiscard]] bool isWaiting() const { return !m_questions.isEmpty(); }

private:
    struct Member {
        explicit Member(Peer& thePeer) : peer(&thePeer) {}

        Peer* peer;
        std::string name;                          // of its first component, as people read it
        std::set<std::string, std::less<>> owned;  // components
        std::set<std::string, std::less<>> wanted; // components that others own
        std::map<const Peer*, std::size_t> sets;   // for each owner, since its last mark
        std::size_t open = 0;
        std::size_t watched = 0;
        bool isHeld = false;
        bool isFull = false; // something of it was not taken
    };
    class Inquiry;

    [[nodiscard]] Member& memberOf(const Peer& peer);
    void handOnSets(Member& member, const JSONPICL& message, Questions::Clock::time_point now);
    void markSets(Member& member, Peer& owner, Questions::Clock::time_point now);
    void takeReports(Member& member, const JSONPICL& message);
    void refuseMore(Member& member);
    [[nodiscard]] Directory::Program* programOf(Member& member, const PropertyGetResponse& report);
    [[nodiscard]] Directory::Program* claim(Member& member, const PropertyGetResponse& report);
    void promote(const std::string& component);
    void takeReport(Member& member, PropertyGetResponse arrived, bool isAnswer);
    void ask(Member& member, const JSONPICL& message, Questions::Clock::time_point now);
    void noteWatch(Member& member, std::size_t bytes);
    void askForAll(Member& member, bool subscribes, Questions::Clock::time_point now);
    [[nodiscard]] bool subscribe(Member& member, const JSONPICL& message, Inquiry& inquiry);
    void enter(Member& member, Question question, Questions::Clock::time_point now);
    void release(const std::string& component);
    void finishRelease(const std::string& component);
    void releaseNext();
    void answer(Question& question);
    void finishAnswer(const Question& question);
    void answerNext();
    [[nodiscard]] std::size_t reportsIn(const Question& question);
    [[nodiscard]] std::vector<SharedReport> everythingBut(const Peer& asker);
    [[nodiscard]] PropertyGetRequest nextMark(std::string_view component);

    const Log m_log;
    const Later m_later;
    std::list<Member> m_members; // in the order of their coming
    std::map<const Peer*, std::list<Member>::iterator> m_places;
    Directory m_directory;
    Questions m_questions;
    std::deque<Question> m_answers;     // that are long, and have their turn to come
    std::deque<std::string> m_released; // components that have gone with much, likewise
    std::random_device m_chance;        // of which marks are made
};
