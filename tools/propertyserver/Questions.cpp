#include "tools/propertyserver/Questions.h"

#include "picl/PropertyReports.h"
#include "property/PropertyKey.h"

#include <iterator>
#include <utility>

SharedReport makeNotFound(const PropertyGetRequest& request) {
    auto report = std::make_shared<Report>(PropertyGetResponse{});
    report->id = idOf(request.component, request.group, request.guid);
    report->record = notFoundReport(request);
    return report;
}

void Questions::add(Question question, Clock::time_point now) {
    const Place place = m_questions.insert(m_questions.end(), {std::move(question), 0, now + kPatience});
    const std::vector<Question::Item>& items = place->question.items;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].report)
            continue;
        indexOf(items[i])[items[i].id].push_back({place, i});
        if (items[i].kind != Question::Item::Kind::Group)
            ++place->open;
    }
    if (place->open == 0)
        finish(place);
}

bool Questions::settle(const SharedReport& report) {
    if (m_questions.empty())
        return false;
    if (report->record.status == status::kNoLongerAvailable) {
        recall(report);
        return false;
    }
    if (!m_groups.empty())
        collect(report);
    const auto found = m_properties.find(report->id);
    if (found == m_properties.end())
        return false;
    for (const Ref ref : found->second) {
        if (!give(ref, report))
            continue;
        if (--ref.place->open == 0)
            finish(ref.place);
        return true;
    }
    return false;
}

// Returns whether the item had no report before.
bool Questions::give(const Ref& ref, const SharedReport& report) {
    return std::exchange(ref.place->question.items[ref.item].report, report) == nullptr;
}

void Questions::collect(const SharedReport& report) {
    if (report->record.status == status::kNotFound)
        return;
    const auto found = m_groups.find(idOf(report->component(), splitKey(report->key()).groupGuid));
    if (found == m_groups.end())
        return;
    for (const Ref& ref : found->second)
        ref.place->question.items[ref.item].group[std::string(report->key())] = report;
}

// What was said of the property before holds no more; whoever has heard nothing yet will be answered.
void Questions::recall(const SharedReport& gone) {
    if (const auto found = m_properties.find(gone->id); found != m_properties.end()) {
        for (const Ref& ref : found->second) {
            Question::Item& item = ref.place->question.items[ref.item];
            if (item.report)
                item.report = makeNotFound(item.request);
        }
    }
    const auto group = m_groups.find(idOf(gone->component(), splitKey(gone->key()).groupGuid));
    if (group == m_groups.end())
        return;
    for (const Ref& ref : group->second)
        ref.place->question.items[ref.item].group.erase(std::string(gone->key()));
}

void Questions::settleGone(std::string_view component) {
    for (auto place = m_questions.begin(); place != m_questions.end();) {
        const Place next = std::next(place);
        for (Question::Item& item : place->question.items) {
            if (item.kind == Question::Item::Kind::Group || item.report ||
                item.request.component != component)
                continue;
            item.report = makeNotFound(item.request);
            --place->open;
        }
        if (place->open == 0)
            finish(place);
        place = next;
    }
}

void Questions::forget(const Peer& asker) {
    for (auto place = m_questions.begin(); place != m_questions.end();) {
        const Place next = std::next(place);
        if (place->question.asker == &asker) {
            place->question.asker = nullptr;
            finish(place);
        }
        place = next;
    }
}

void Questions::expire(Clock::time_point now) {
    while (!m_questions.empty() && m_questions.front().deadline <= now)
        finish(m_questions.begin());
}

Questions::Index& Questions::indexOf(const Question::Item& item) {
    return item.kind == Question::Item::Kind::Group ? m_groups : m_properties;
}

void Questions::finish(Place place) {
    for (const Question::Item& item : place->question.items) {
        Index& index = indexOf(item);
        const auto found = index.find(item.id);
        if (found == index.end())
            continue;
        std::erase_if(found->second, [&](const Ref& ref) { return ref.place == place; });
        if (found->second.empty())
            index.erase(found);
    }
    Waiting ended = std::move(*place);
    m_questions.erase(place);
    if (ended.question.asker != nullptr)
        m_answer(ended.question);
}
