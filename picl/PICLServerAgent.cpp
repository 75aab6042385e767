#include "picl/PICLServerAgent.h"

#include "picl/JSONPICL.h"
#include "picl/Publisher.h"
#include "picl/ReportFrames.h"
#include "platform/Stream.h"
#include "property/Property.h"
#include "property/PropertyManager.h"
#include "property/UInt32Property.h"

#include <exception>
#include <new>
#include <utility>

namespace {

constexpr std::size_t kLongestValue = frame::kLargestText - 1024; // the keys and GUIDs have room beside it

} // namespace

PICLServerAgent::PICLServerAgent(std::shared_ptr<PropertyManager> manager,
                                 const std::shared_ptr<ThreadFactory>& threads, std::int32_t priority,
                                 std::shared_ptr<Property> component)
    : PICLInterface(std::move(manager), threads, priority, std::move(component)),
      m_publishStream(std::make_shared<PublishStream>()),
      m_publisher(
          std::make_shared<Publisher>(m_lists, m_publishStream, m_publishingPeriod, m_componentProperty)),
      m_disconnectThread(*threads, priority) {}

PICLServerAgent::~PICLServerAgent() { disconnect(); }

// "Disconnect" has a thread of its own: a peer that does not read blocks its write, and the publisher thread
// may wait for the JSON engine.
void PICLServerAgent::disconnect() {
    if (m_publishStream->hasEnded())
        return;
    m_publishStream->end();
    m_publisher->end();
    if (!m_publishStream->isEmpty()) // without a thread the connection ends without "Disconnect"
        static_cast<void>(m_disconnectThread.start([stream = m_publishStream] { stream->disconnect(); }));
    stopPublishing();
    m_disconnectThread.stop();
}

std::function<void()> PICLServerAgent::run() {
    return [publisher = m_publisher] { publisher->run(); };
}

bool PICLServerAgent::processNextMessage(const std::shared_ptr<Stream>& stream) {
    try {
        auto request = std::make_unique<JSONPICL>();
        return request->importFrom(*stream) &&
               processMessage(stream, std::move(request), std::make_unique<JSONPICL>()) &&
               !m_publishStream->hasEnded();
    } catch (const std::bad_alloc& failure) {
        closeAfter(failure, *stream);
        return false;
    }
}

bool PICLServerAgent::processMessage(const std::shared_ptr<Stream>& stream, std::unique_ptr<JSONPICL> request,
                                     std::unique_ptr<JSONPICL> response) {
    handleSetRequests(*request);
    if (request->has(keys::kGetAllResponse))
        handleGetAllResponse(*request);
    else
        handleGetResponses(*request);

    if (request->subscribes())
        setPublishStream(stream);
    return !request->asks() || answer(*stream, *request, *response);
}

bool PICLServerAgent::answer(Stream& stream, const JSONPICL& request, JSONPICL& response) {
    const bool isForAll = request.asksForAll();
    return m_publishStream->answer(stream, [&](const PublishStream::Send& send) {
        ReportFrames frames(response,
                            isForAll ? ReportFrames::Kind::GetAllAnswer : ReportFrames::Kind::Reports, send);
        const ReportSink add = [&](PropertyGetResponse report) { return frames.add(std::move(report)); };
        bool goesOn = true;
        if (isForAll)
            getAllProperties(add);
        else
            request.forEachGetRequest(
                [&](const PropertyGetRequest& one) { goesOn = goesOn && getProperties(one, add); });
        return frames.finish();
    });
}

void PICLServerAgent::setPublishStream(std::shared_ptr<Stream> stream) {
    m_publishStream->set(std::move(stream), [this](const PublishStream::Send& send) {
        JSONPICL message;
        ReportFrames frames(message, ReportFrames::Kind::Reports, send);
        getAllProperties([&](PropertyGetResponse report) { return frames.add(std::move(report)); });
        static_cast<void>(frames.finish()); // the next publication meets the same failure and acts on it
    });
}

bool PICLServerAgent::setExternalValue(std::string_view component, std::string_view group,
                                       std::string_view guid, std::string_view value) {
    std::string escaped = escapeText(value);
    if (escaped.size() > kLongestValue)
        return false;
    JSONPICL message;
    message.addSetRequest({.guid = std::string(guid),
                           .group = std::string(group),
                           .component = std::string(component),
                           .value = std::move(escaped)});
    return m_publishStream->send(message);
}

// The mirror is made where the report is read: what is read next may be a newer value for it.
void PICLServerAgent::subscribe(const PropertyGetRequest& request, MirrorMaker makeMirror,
                                std::uint32_t timeoutMs) {
    if (m_publishStream->isEmpty())
        return;
    const std::shared_ptr<PendingResult> result = m_pendingRequests.addPending(
        request, [this, makeMirror](const PropertyGetResponse& report) { keepMirror(report, makeMirror); });
    JSONPICL message;
    message.addSubscribeRequest(request);
    static_cast<void>(sendAndWait(message, result, timeoutMs)); // what came of it stands in the tables
}

bool PICLServerAgent::sendAndWait(JSONPICL& message, const std::shared_ptr<PendingResult>& result,
                                  std::uint32_t timeoutMs) {
    if (m_publishStream->send(message) && result->answered.wait(timeoutMs))
        return true;
    m_pendingRequests.withdraw(result);
    return false;
}

void PICLServerAgent::keepMirror(const PropertyGetResponse& report, MirrorMaker makeMirror) {
    if (report.status != status::kSuccessful)
        return;
    try {
        m_externalTables.add(report.component, makeMirror(report));
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): a value that is none makes no mirror
    }
}

void PICLServerAgent::handleSetRequests(const JSONPICL& message) {
    message.forEachSetRequest([this](const PropertySetRequest& request) {
        if (m_publishStream->hasEnded())
            return;
        if (const std::shared_ptr<Property> property =
                m_propertyManager->findProperty(request.guid, request.group))
            applyText(*property, request.value);
    });
}

void PICLServerAgent::handleGetAllResponse(const JSONPICL& message) {
    m_pendingRequests.answerAll([&message] {
        PropertyGetResponses reports;
        message.readGetResponses(reports);
        return reports;
    });
}

void PICLServerAgent::handleGetResponses(const JSONPICL& message) {
    PendingRequests::Groups touched;
    message.forEachGetResponse([&](const PropertyGetResponse& report) {
        if (m_publishStream->hasEnded())
            return;
        const bool isMiss = report.status == status::kNotFound;
        const bool hasMirror = !isMiss && updateMirror(report);
        if (report.status == status::kNoLongerAvailable)
            return; // a pending request waits for the report that follows
        // A pending request for a property with a mirror was sent before the mirror existed.
        if (isMiss || hasMirror)
            m_pendingRequests.answerExactly(report);
        else
            m_pendingRequests.answer(report, touched);
    });
    m_pendingRequests.finishGroups(touched);
}

bool PICLServerAgent::updateMirror(const PropertyGetResponse& report) {
    const std::shared_ptr<Property> mirror =
        m_externalTables.find(report.component, report.group, report.guid);
    if (!mirror)
        return false;
    applyText(*mirror, report.value);
    if (report.status == status::kNoLongerAvailable)
        m_externalTables.remove(report.component, report.group, report.guid);
    return true;
}
