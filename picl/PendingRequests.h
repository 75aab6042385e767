#pragma once

#include "picl/PropertyRecords.h"
#include "platform/KeltoMutex.h"
#include "platform/SimpleEvent.h"

#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

/// What a question has brought; shared by who asked and who hears the answer.
struct PendingResult {
    /// Looks at a report the moment it comes, before anything behind it is read.
    using Taker = std::function<void(const PropertyGetResponse&)>;

    explicit PendingResult(Taker theTaker) : taker(std::move(theTaker)) {}

    const Taker taker; ///< May be empty. Called for the answer to a question for one property.
    SimpleEvent answered{true};
    PropertyGetResponses reports; ///< Readable once `answered` was signalled.
};

/// The questions on their way to other programs, the oldest first.
///
/// A question ends in one of four ways: by the report that answers it, by the end of the message that answers
/// for its group, by the answer for all properties, or withdrawn by who no longer waits. An empty GUID asks
/// for a group, three empty texts ask for everything.
///
/// Takers are called, and who waits is woken, with no lock held. Thread: any adds and withdraws, the reader
/// answers.
class PendingRequests {
public:
    /// Groups of other programs that a message reported on: component, group.
    using Groups = std::set<std::pair<std::string, std::string>>;

    /// Appends a request and returns its result, which is filled when the answer arrives.
    std::shared_ptr<PendingResult> addPending(PropertyGetRequest request, PendingResult::Taker taker = {});

    /// Ends the question of @p result, if it is still there, without an answer.
    void withdraw(const std::shared_ptr<PendingResult>& result);

    /// Ends the first question for exactly the property of @p report, if there is one.
    void answerExactly(const PropertyGetResponse& report);

    /// Ends the first question that @p report fits. One for its group collects it instead, stays, and is
    /// noted in @p touched.
    void answer(const PropertyGetResponse& report, Groups& touched);

    /// Ends for each of @p touched the first question for this group.
    void finishGroups(const Groups& touched);

    /// Ends the first question for everything, if there is one, with what @p read returns.
    void answerAll(const std::function<PropertyGetResponses()>& read);

private:
    struct PendingRequest {
        PropertyGetRequest request;
        std::shared_ptr<PendingResult> result;
    };
    using Match = std::function<bool(const PendingRequest&)>;

    [[nodiscard]] std::shared_ptr<PendingResult> take(const Match& match);
    [[nodiscard]] bool collect(const PropertyGetResponse& report);

    KeltoMutex m_lock;
    std::deque<PendingRequest> m_requests KELTO_GUARDED_BY(m_lock);
};
