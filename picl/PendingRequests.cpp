#include "picl/PendingRequests.h"

#include <algorithm>

namespace {

bool isOfGroup(const PropertyGetRequest& request, const PropertyGetResponse& report) {
    return request.component == report.component && request.group == report.group;
}

bool isExactly(const PropertyGetRequest& request, const PropertyGetResponse& report) {
    return isOfGroup(request, report) && request.guid == report.guid;
}

bool fits(const PropertyGetRequest& request, const PropertyGetResponse& report) {
    return isOfGroup(request, report) && (request.guid.empty() || request.guid == report.guid);
}

void finish(const std::shared_ptr<PendingResult>& result, const PropertyGetResponse& report) {
    if (!result)
        return;
    result->reports.push_back(report);
    if (result->taker)
        result->taker(report);
    result->answered.signal();
}

} // namespace

std::shared_ptr<PendingResult> PendingRequests::addPending(PropertyGetRequest request,
                                                           PendingResult::Taker taker) {
    auto result = std::make_shared<PendingResult>(std::move(taker));
    const KeltoGuard guard(m_lock);
    m_requests.push_back({std::move(request), result});
    return result;
}

void PendingRequests::withdraw(const std::shared_ptr<PendingResult>& result) {
    static_cast<void>(take([&](const PendingRequest& pending) { return pending.result == result; }));
}

void PendingRequests::answerExactly(const PropertyGetResponse& report) {
    finish(take([&](const PendingRequest& pending) { return isExactly(pending.request, report); }), report);
}

void PendingRequests::answer(const PropertyGetResponse& report, Groups& touched) {
    if (collect(report)) {
        touched.emplace(report.component, report.group);
        return;
    }
    answerExactly(report);
}

bool PendingRequests::collect(const PropertyGetResponse& report) {
    const KeltoGuard guard(m_lock);
    const auto first = std::ranges::find_if(
        m_requests, [&](const PendingRequest& pending) { return fits(pending.request, report); });
    if (first == m_requests.end() || !first->request.guid.empty())
        return false;
    first->result->reports.push_back(report);
    return true;
}

void PendingRequests::finishGroups(const Groups& touched) {
    for (const auto& group : touched) {
        const auto result = take([&](const PendingRequest& pending) {
            const PropertyGetRequest& request = pending.request;
            return request.component == group.first && request.group == group.second && request.guid.empty();
        });
        if (result)
            result->answered.signal();
    }
}

void PendingRequests::answerAll(const std::function<PropertyGetResponses()>& read) {
    const auto result = take([](const PendingRequest& pending) {
        const PropertyGetRequest& request = pending.request;
        return request.component.empty() && request.group.empty() && request.guid.empty();
    });
    if (!result)
        return;
    result->reports = read();
    result->answered.signal();
}

std::shared_ptr<PendingResult> PendingRequests::take(const Match& match) {
    const KeltoGuard guard(m_lock);
    const auto found = std::ranges::find_if(m_requests, match);
    if (found == m_requests.end())
        return nullptr;
    std::shared_ptr<PendingResult> result = std::move(found->result);
    m_requests.erase(found);
    return result;
}
