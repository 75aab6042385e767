#include "tools/propertyserver/Hub.h"

#include "property/PropertyKey.h"
#include "tools/propertyserver/Parcel.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace {

constexpr std::size_t kLongestComponent = 64; // a GUID has 36
constexpr std::size_t kWeightOfGroup = 64;
constexpr std::size_t kWeightOfAll = 256;
constexpr std::size_t kBytesAsOne = 1024; // of a set, which has the weight of one more for as many
constexpr std::size_t kSetsForMark = 64;
constexpr std::size_t kBytesBeside = 512; // that anything kept takes, roughly, beside its texts
constexpr std::string_view kNoGroup = "00000000-0000-0000-0000-000000000000";

// As a GUID is, and without what separates it from the property in an id.
bool isComponent(std::string_view text) {
    return !text.empty() && text.size() <= kLongestComponent && text.find('\n') == std::string_view::npos;
}

// A line of the log holds no more of what a program calls itself.
std::string quoted(std::string_view text) {
    constexpr std::size_t most = 64;
    return '"' + escapeText(text.substr(0, most)) + (text.size() > most ? "...\"" : "\"");
}

bool isTooLong(const PropertyGetRequest& request) {
    return request.group.size() + request.guid.size() > Hub::kLongestKey;
}

PropertyGetRequest escaped(PropertyGetRequest request) {
    for (std::string* text : {&request.component, &request.group, &request.guid})
        escapeInPlace(*text);
    return request;
}

std::size_t bytesOf(const PropertyGetRequest& request) {
    return kBytesBeside + 2 * (request.component.size() + request.group.size() + request.guid.size());
}

std::size_t bytesOf(const Directory::Program& program) {
    return program.bytes + program.known * kBytesBeside;
}

std::ptrdiff_t difference(std::size_t from, std::size_t to) { return static_cast<std::ptrdiff_t>(to - from); }

using Kind = Question::Item::Kind;

} // namespace

/// A question in the making, with what goes on to the owners for it, a message for each.
class Hub::Inquiry {
public:
    Inquiry(Hub& hub, Peer& asker) : m_hub(hub), m_question(asker, false) {}

    /// Has the owner of @p request subscribed to, if it is not yet.
    void subscribe(const PropertyGetRequest& request) {
        if (Directory::Program* program = connected(request.component); program && !program->isSubscribed)
            m_parts[program].subscribes = true;
    }

    /// Adds an item. Returns whether there was room.
    [[nodiscard]] bool add(PropertyGetRequest request) {
        const Kind kind = request.guid.empty() ? Kind::Group : Kind::Property;
        Question::Item item(kind, std::move(request));
        const auto [place, isNew] = m_known.try_emplace(item.id, m_question.items.size());
        m_question.order.push_back(place->second);
        if (isNew) {
            Directory::Program* const program = connected(item.request.component);
            if (program != nullptr && !isTooLong(item.request))
                m_parts[program].add(m_question.items.size(), kind);
            else
                item.report = makeNotFound(item.request);
            m_question.weight += kind == Kind::Group ? kWeightOfGroup : 1;
            m_question.items.push_back(std::move(item));
        }
        return m_question.order.size() <= kMostItems;
    }

    /// Puts a mark behind each group, by which it is known to be complete.
    void mark() {
        for (auto& [program, part] : m_parts) {
            if (!part.hasGroup)
                continue;
            const std::string component = m_question.items[part.items[0]].request.component;
            part.add(m_question.items.size(), Kind::Mark);
            m_question.items.emplace_back(Kind::Mark, m_hub.nextMark(component));
        }
    }

    void handOn() const {
        for (const auto& [program, part] : m_parts) {
            Parcel parcel(*program->owner, part.subscribes);
            for (const std::size_t i : part.items)
                parcel.add(part.subscribes ? &JSONPICL::addSubscribeRequest : &JSONPICL::addGetRequest,
                           escaped(m_question.items[i].request));
            program->isSubscribed |= part.subscribes;
            parcel.send();
        }
    }

    [[nodiscard]] Question take() { return std::move(m_question); }

private:
    struct Part {
        void add(std::size_t item, Kind kind) {
            items.push_back(item);
            hasGroup |= kind == Kind::Group;
        }

        std::vector<std::size_t> items;
        bool subscribes = false;
        bool hasGroup = false;
    };

    [[nodiscard]] Directory::Program* connected(const std::string& component) const {
        Directory::Program* program = m_hub.m_directory.find(component);
        return program != nullptr && program->owner != nullptr ? program : nullptr;
    }

    Hub& m_hub;
    Question m_question;
    std::unordered_map<std::string, std::size_t> m_known; // items by id
    std::map<Directory::Program*, Part> m_parts;
};

Hub::Hub(Log log, Later later)
    : m_log(std::move(log)),
      m_later(std::move(later)),
      m_questions([this](Question& question) { answer(question); }) {}

void Hub::join(Peer& peer) { m_places[&peer] = m_members.insert(m_members.end(), Member(peer)); }

void Hub::leave(Peer& peer, std::string_view why) {
    const auto place = m_places.find(&peer);
    const std::string& name = place->second->name;
    if (!name.empty() || (why != kHasGone && why != kHasSaidGoodbye))
        m_log((name.empty() ? "a program" : name) + ' ' + std::string(why));
    const auto owned = std::move(place->second->owned);
    m_questions.forget(peer);
    std::erase_if(m_answers, [&peer](const Question& question) { return question.asker == &peer; });
    if (place->second->watched > 0)
        m_directory.forget(peer);
    m_members.erase(place->second);
    m_places.erase(place);
    if (!owned.empty()) {
        for (Member& member : m_members)
            member.sets.erase(&peer);
    }
    for (const std::string& component : owned)
        release(component);
}

// To take leave of thousands of properties is long. It is done before somebody else may claim them.
void Hub::release(const std::string& component) {
    if (m_directory.release(component) <= kManyReports) {
        finishRelease(component);
        return;
    }
    m_released.push_back(component);
    m_later([this] { releaseNext(); });
}

void Hub::releaseNext() {
    if (m_released.empty())
        return;
    const std::string component = std::move(m_released.front());
    m_released.pop_front();
    finishRelease(component);
}

void Hub::finishRelease(const std::string& component) {
    m_directory.orphan(component);
    m_questions.settleGone(component);
    promote(component);
}

// Those who reported the component while it had another owner are asked to do so again: the first who does
// has it, so that nobody waits for one that is silent or goes.
void Hub::promote(const std::string& component) {
    for (Member& member : m_members) {
        if (member.wanted.erase(component) == 0)
            continue;
        JSONPICL message;
        message.addGetAll();
        member.peer->send(message);
    }
}

void Hub::take(Peer& peer, const JSONPICL& message, Questions::Clock::time_point now) {
    Member& member = memberOf(peer);
    handOnSets(member, message, now);
    takeReports(member, message);
    ask(member, message, now);
    if (message.has(keys::kDisconnect))
        peer.end(kHasSaidGoodbye);
}

Hub::Member& Hub::memberOf(const Peer& peer) { return *m_places.find(&peer)->second; }

void Hub::handOnSets(Member& member, const JSONPICL& message, Questions::Clock::time_point now) {
    if (!message.has(keys::kSetRequests))
        return;
    std::map<Peer*, Parcel> parcels;
    std::size_t count = 0;
    message.forEachSetRequest([&](const PropertySetRequest& request) {
        if (++count > kMostSets)
            return;
        const Directory::Program* program = m_directory.find(request.component);
        if (program == nullptr || program->owner == nullptr)
            return;
        member.sets[program->owner] += 1 + request.value.size() / kBytesAsOne;
        Parcel& parcel = parcels.try_emplace(program->owner, *program->owner).first->second;
        parcel.add(&JSONPICL::addSetRequest, PropertySetRequest{.guid = escapeText(request.guid),
                                                                .group = escapeText(request.group),
                                                                .component = escapeText(request.component),
                                                                .value = escapeText(request.value)});
    });
    for (auto& [owner, parcel] : parcels) {
        parcel.send();
        markSets(member, *owner, now);
    }
    if (count > kMostSets)
        member.peer->end("set too much at once");
}

// Sets are not answered. Behind many goes a mark, so that who sets faster than the owner takes it is held.
void Hub::markSets(Member& member, Peer& owner, Questions::Clock::time_point now) {
    const auto sets = member.sets.find(&owner);
    if (sets->second < kSetsForMark)
        return;
    Question question(*member.peer, false);
    question.isSilent = true;
    question.weight = sets->second;
    member.sets.erase(sets);
    question.items.emplace_back(Kind::Mark, nextMark(*memberOf(owner).owned.begin()));
    JSONPICL mark;
    mark.addGetRequest(escaped(question.items[0].request));
    enter(member, std::move(question), now);
    if (owner.takesMore())
        owner.send(mark);
}

void Hub::takeReports(Member& member, const JSONPICL& message) {
    if (!message.has(keys::kGetResponses))
        return;
    const bool isAnswer = message.has(keys::kGetAllResponse);
    std::size_t count = 0;
    message.forEachGetResponse([&](PropertyGetResponse arrived) {
        if (++count <= kMostReports)
            takeReport(member, std::move(arrived), isAnswer);
    });
    if (count > kMostReports)
        refuseMore(member);
}

void Hub::refuseMore(Member& member) {
    if (!std::exchange(member.isFull, true))
        m_log((member.name.empty() ? "a program" : member.name) + " has more properties than are kept");
}

void Hub::takeReport(Member& member, PropertyGetResponse arrived, bool isAnswer) {
    const bool isFound = arrived.status != status::kNotFound;
    Directory::Program* program = programOf(member, arrived);
    if (program == nullptr)
        return;
    const auto report = std::make_shared<const Report>(std::move(arrived));
    bool isTaken = false;
    const std::size_t before = bytesOf(*program);
    // Before it is an answer: answers hold what is known.
    const SharedReport last = isFound ? m_directory.remember(*program, report, isTaken) : nullptr;
    isAnswer |= m_questions.settle(report);
    if (!isFound)
        return;
    member.peer->charge(difference(before, bytesOf(*program)));
    if (!isTaken)
        refuseMore(member);
    const bool isGone = report->record.status == status::kNoLongerAvailable;
    const bool isNews = last ? isGone || !isAnswer || last->record.value != report->record.value : !isGone;
    if (isTaken && isNews)
        m_directory.deliver(*program, report);
}

// Returns null where the report is not to be taken.
Directory::Program* Hub::programOf(Member& member, const PropertyGetResponse& report) {
    const std::string& component = report.component;
    if (member.owned.find(component) != member.owned.end())
        return m_directory.find(component);
    if (report.status == status::kNotFound || !isComponent(component) ||
        member.wanted.find(component) != member.wanted.end() ||
        member.owned.size() + member.wanted.size() >= kMostPrograms)
        return nullptr;
    return claim(member, report);
}

Directory::Program* Hub::claim(Member& member, const PropertyGetResponse& report) {
    if (std::erase(m_released, report.component) > 0)
        finishRelease(report.component);
    Directory::Program* program = m_directory.claim(*member.peer, report.component);
    const std::string name = quoted(report.componentString);
    if (program == nullptr) {
        member.wanted.insert(report.component);
        m_log(name + " is connected already; what another program says in its name is not taken");
        return nullptr;
    }
    if (member.owned.empty()) {
        member.name = name;
        m_log(name + " has come");
    }
    member.owned.insert(report.component);
    if (m_directory.isWatched(*program)) {
        JSONPICL message;
        message.addSubscribeAll();
        program->isSubscribed = true;
        member.peer->send(message);
    }
    return program;
}

void Hub::ask(Member& member, const JSONPICL& message, Questions::Clock::time_point now) {
    if (message.asksForAll()) {
        askForAll(member, message.hasSubscribeAll(), now);
        return;
    }
    if (!message.asks())
        return;

    Inquiry inquiry(*this, *member.peer);
    bool isWithinLimits = subscribe(member, message, inquiry);
    message.forEachGetRequest([&](PropertyGetRequest request) {
        isWithinLimits = isWithinLimits && inquiry.add(std::move(request));
    });
    if (!isWithinLimits) {
        member.peer->end("asked for too much");
        return;
    }
    inquiry.mark();
    inquiry.handOn(); // what is answered comes later
    enter(member, inquiry.take(), now);
}

// Returns whether that was within the limits.
bool Hub::subscribe(Member& member, const JSONPICL& message, Inquiry& inquiry) {
    bool isWithinLimits = true;
    message.forEachSubscribeRequest([&](const PropertyGetRequest& request) {
        isWithinLimits =
            isWithinLimits && request.component.size() <= kLongestComponent && member.watched < kMostWatched;
        if (!isWithinLimits || isTooLong(request)) // the latter is not found
            return;
        if (m_directory.watch(*member.peer, request.component, request.group, request.guid))
            noteWatch(member, bytesOf(request));
        inquiry.subscribe(request);
    });
    return isWithinLimits;
}

void Hub::noteWatch(Member& member, std::size_t bytes) {
    ++member.watched;
    member.peer->charge(difference(0, bytes));
}

void Hub::askForAll(Member& member, bool subscribes, Questions::Clock::time_point now) {
    if (subscribes && m_directory.watchAll(*member.peer))
        noteWatch(member, kBytesBeside);
    Question question(*member.peer, true);
    question.weight = kWeightOfAll;
    std::vector<Directory::Program*> programs;
    m_directory.forEachConnected([&](const std::string& component, Directory::Program& program) {
        if (program.owner == member.peer)
            return;
        question.items.emplace_back(Kind::Mark, nextMark(component));
        programs.push_back(&program);
    });
    const std::vector<Question::Item> marks = question.items;
    enter(member, std::move(question), now);
    for (std::size_t i = 0; i < programs.size(); ++i) {
        JSONPICL all;
        if (subscribes && !std::exchange(programs[i]->isSubscribed, true))
            all.addSubscribeAll();
        else if (programs[i]->owner->takesMore())
            all.addGetAll();
        else
            continue;
        programs[i]->owner->send(all);
        JSONPICL mark; // of its own: beside a question for all nothing else is answered
        mark.addGetRequest(escaped(marks[i].request));
        programs[i]->owner->send(mark);
    }
}

void Hub::enter(Member& member, Question question, Questions::Clock::time_point now) {
    for (const Question::Item& item : question.items)
        question.bytes += bytesOf(item.request);
    member.peer->charge(difference(0, question.bytes));
    member.open += question.weight;
    if (member.open >= kMostOpen && !std::exchange(member.isHeld, true))
        member.peer->hold(true);
    m_questions.add(std::move(question), now);
}

void Hub::answer(Question& question) {
    if (reportsIn(question) <= kManyReports) {
        finishAnswer(question);
        return;
    }
    m_answers.push_back(std::move(question));
    m_later([this] { answerNext(); });
}

void Hub::answerNext() {
    if (m_answers.empty())
        return;
    const Question question = std::move(m_answers.front());
    m_answers.pop_front();
    finishAnswer(question);
}

std::size_t Hub::reportsIn(const Question& question) {
    std::size_t count = 0;
    for (const Question::Item& item : question.items)
        count += item.group.size();
    if (question.isForAll)
        m_directory.forEachConnected(
            [&](const std::string&, const Directory::Program& program) { count += program.known; });
    return count;
}

void Hub::finishAnswer(const Question& question) {
    Member& asker = memberOf(*question.asker);
    asker.open -= question.weight;
    asker.peer->charge(difference(question.bytes, 0));
    if (asker.open < kMostOpen / 2 && std::exchange(asker.isHeld, false))
        asker.peer->hold(false);
    if (question.isSilent)
        return;
    std::vector<SharedReport> reports;
    if (question.isForAll)
        reports = everythingBut(*question.asker);
    for (const std::size_t i : question.order) {
        const Question::Item& item = question.items[i];
        if (item.report)
            reports.push_back(item.report);
        for (const SharedReport& report : item.group) { // its turn may have come late
            if (SharedReport latest = m_directory.latest(*report))
                reports.push_back(std::move(latest));
        }
    }
    const bool isComplete = std::all_of(question.items.begin(), question.items.end(), [](const auto& item) {
        return item.report || item.kind == Kind::Group;
    });
    // Where nothing came in time, the program that was asked is silent, and so is the server.
    if (isComplete || question.isForAll || !reports.empty())
        asker.peer->answer(std::move(reports), question.isForAll);
}

std::vector<SharedReport> Hub::everythingBut(const Peer& asker) {
    std::vector<SharedReport> reports;
    m_directory.forEachConnected([&](const std::string&, const Directory::Program& program) {
        if (program.owner == &asker)
            return;
        for (const auto& [key, property] : program.properties) {
            if (property.last)
                reports.push_back(property.last);
        }
    });
    return reports;
}

// Nobody can ask for one that is to come, and so have it answered before its time.
PropertyGetRequest Hub::nextMark(std::string_view component) {
    char guid[kNoGroup.size() + 1];
    const std::uint64_t mark = std::uint64_t{m_chance()} << 32U | m_chance();
    static_cast<void>(std::snprintf(guid, sizeof guid, "00000000-0000-0000-%04llX-%012llX",
                                    static_cast<unsigned long long>(mark >> 48U),
                                    static_cast<unsigned long long>(mark & 0xFFFF'FFFF'FFFFU)));
    return {.component = std::string(component), .group = std::string(kNoGroup), .guid = guid};
}
