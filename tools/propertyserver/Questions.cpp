#include "tools/propertyserver/Questions.h"

#include "picl/PropertyReports.h"
#include "property/PropertyKey.h"

#include <utility>

namespace {

std::size_t bytesOf(const SharedReport& report) { return report ? report->bytes() : 0; }

} // namespace

SharedReport makeNotFound(const PropertyGetRequest& request) {
    auto report = std::make_shared<Report>(PropertyGetResponse{});
    report->id = idOf(request.component, request.group, request.guid);
    report->record = notFoundReport(request);
    return report;
}

void Questions::Group::tell(Number number, const SharedReport& report) {
    forget(report->key());
    bytes += bytesOf(report);
    told.emplace_hint(told.end(), number, report);
    byKey.emplace(report->key(), number);
}

void Questions::Group::forget(std::string_view key) {
    const auto found = byKey.find(key);
    if (found == byKey.end())
        return;
    const auto place = told.find(found->second);
    bytes -= bytesOf(place->second);
    byKey.erase(found);
    told.erase(place);
}

void Questions::Group::forgetBefore(Number number) {
    while (!told.empty() && told.begin()->first < number)
        forget(told.begin()->second->key());
}

void Questions::add(Question question, Clock::time_point now) {
    const Number number = ++m_count;
    const std::size_t many = question.items.size();
    m_asked[question.asker].insert(number);
    const auto place = m_questions.emplace_hint(
        m_questions.end(), number,
        Waiting{std::move(question), std::vector<Number>(many, kFromTheStart), 0, now + kPatience});
    for (std::size_t i = 0; i < many; ++i)
        enter(place->second, {number, i});
    if (place->second.open == 0)
        finish(place);
}

void Questions::enter(Waiting& waiting, Ref ref) {
    const Question::Item& item = waiting.question.items[ref.item];
    if (item.report)
        return;
    waiting.told[ref.item] = 0;
    if (item.kind == Question::Item::Kind::Group) {
        m_groups[item.id].waiting.insert(ref);
        return;
    }
    Property& property = m_properties[item.id];
    property.open.insert(ref);
    ++property.waiting;
    m_components[item.request.component].insert(ref);
    ++waiting.open;
}

bool Questions::settle(const SharedReport& report) {
    const bool isAnswer = !m_questions.empty() && hand(report);
    while (m_bytes > kMostBytes)
        finish(m_questions.begin());
    return isAnswer;
}

bool Questions::hand(const SharedReport& report) {
    ++m_count;
    if (report->record.status == status::kNoLongerAvailable) {
        recall(report);
        return false;
    }
    if (!m_groups.empty())
        collect(report);
    const auto found = m_properties.find(report->id);
    if (found == m_properties.end())
        return false;
    Property& property = found->second;
    keep(property.last, report);
    property.told = m_count;
    const bool isAnswer = !property.open.empty();
    if (isAnswer)
        give(*property.open.begin(), report);
    return isAnswer;
}

void Questions::keep(SharedReport& place, SharedReport report) {
    m_bytes = m_bytes - bytesOf(place) + bytesOf(report);
    place = std::move(report);
}

void Questions::give(Ref ref, SharedReport report) {
    const auto place = m_questions.find(ref.question);
    Waiting& waiting = place->second;
    Question::Item& item = waiting.question.items[ref.item];
    keep(item.report, std::move(report));
    waiting.told[ref.item] = m_count;
    --waiting.open;
    close(item, ref);
    if (waiting.open == 0)
        finish(place);
}

// The item waits no more for a report of its own.
void Questions::close(const Question::Item& item, Ref ref) {
    m_properties.find(item.id)->second.open.erase(ref);
    const auto component = m_components.find(item.request.component);
    component->second.erase(ref);
    if (component->second.empty())
        m_components.erase(component);
}

void Questions::collect(const SharedReport& report) {
    if (report->record.status == status::kNotFound)
        return;
    const auto found = m_groups.find(idOf(report->component(), splitKey(report->key()).groupGuid));
    if (found == m_groups.end())
        return;
    m_bytes -= found->second.bytes;
    found->second.tell(m_count, report);
    m_bytes += found->second.bytes;
}

// What was said of the property before holds no more; whoever has heard nothing yet will be answered.
void Questions::recall(const SharedReport& gone) {
    if (const auto found = m_properties.find(gone->id); found != m_properties.end()) {
        keep(found->second.last, nullptr);
        found->second.told = m_count;
    }
    const auto group = m_groups.find(idOf(gone->component(), splitKey(gone->key()).groupGuid));
    if (group == m_groups.end())
        return;
    m_bytes -= group->second.bytes;
    group->second.forget(gone->key());
    m_bytes += group->second.bytes;
}

void Questions::settleGone(std::string_view component) {
    for (auto found = m_components.find(component); found != m_components.end();
         found = m_components.find(component)) {
        const Ref ref = *found->second.begin();
        give(ref, makeNotFound(m_questions.find(ref.question)->second.question.items[ref.item].request));
    }
}

void Questions::forget(const Peer& asker) {
    const auto asked = m_asked.extract(&asker);
    if (asked.empty())
        return;
    for (const Number number : asked.mapped()) {
        const auto place = m_questions.find(number);
        place->second.question.asker = nullptr;
        finish(place);
    }
}

void Questions::expire(Clock::time_point now) {
    while (!m_questions.empty() && m_questions.begin()->second.deadline <= now)
        finish(m_questions.begin());
}

void Questions::leaveProperty(Waiting& waiting, Ref ref) {
    Question::Item& item = waiting.question.items[ref.item];
    const auto found = m_properties.find(item.id);
    Property& property = found->second;
    m_bytes -= bytesOf(item.report);
    if (!item.report)
        close(item, ref);
    else if (waiting.told[ref.item] < property.told)
        item.report = property.last ? property.last : makeNotFound(item.request);
    if (--property.waiting > 0)
        return;
    m_bytes -= bytesOf(property.last);
    m_properties.erase(found);
}

void Questions::leaveGroup(Question::Item& item, Ref ref) {
    const auto found = m_groups.find(item.id);
    Group& group = found->second;
    for (auto told = group.told.upper_bound(ref.question); told != group.told.end(); ++told)
        item.group.push_back(told->second);
    group.waiting.erase(ref);
    m_bytes -= group.bytes;
    if (group.waiting.empty()) {
        m_groups.erase(found);
        return;
    }
    group.forgetBefore(group.waiting.begin()->question);
    m_bytes += group.bytes;
}

void Questions::finish(Waitings::iterator place) {
    Waiting ended = std::move(place->second);
    const Number number = place->first;
    m_questions.erase(place);
    for (std::size_t i = 0; i < ended.told.size(); ++i) {
        Question::Item& item = ended.question.items[i];
        if (ended.told[i] == kFromTheStart)
            continue;
        if (item.kind == Question::Item::Kind::Group)
            leaveGroup(item, {number, i});
        else
            leaveProperty(ended, {number, i});
    }
    if (ended.question.asker == nullptr)
        return;
    const auto asked = m_asked.find(ended.question.asker);
    asked->second.erase(number);
    if (asked->second.empty())
        m_asked.erase(asked);
    m_answer(ended.question);
}
