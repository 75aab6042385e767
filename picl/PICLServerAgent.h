#pragma once

#include "picl/ExternalTables.h"
#include "picl/PICLInterface.h"
#include "picl/PendingRequests.h"
#include "picl/PublishStream.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class Publisher;

/// This program's agent towards the property server of the printer: the one object that talks to it.
///
/// It answers the peer's questions about this program's properties and publishes their changes; it gets hold
/// of properties of other programs, keeps them up to date as mirrors, and forwards new values to their
/// owners. The stream is given to it: it neither opens one nor opens one again.
///
/// Who does what: PublishLists collects changes, Publisher sends them, PublishStream keeps frames whole,
/// PendingRequests holds the questions on their way, ExternalTables the mirrors. Each has its own locks. No
/// lock is held while another part is called, except that properties are read under the report lock of
/// PublishStream. No lock is held while waiting for an answer.
///
/// Lifetime: the threads of the agent share ownership of what they use, never of this object. A thread that
/// is blocked in a write on shutdown is detached; the owner of the stream ends the write by closing the
/// stream.
class PICLServerAgent : public PICLInterface {
public:
    PICLServerAgent(std::shared_ptr<PropertyManager> manager, const std::shared_ptr<ThreadFactory>& threads,
                    std::int32_t priority, std::shared_ptr<Property> component);

    /// Calls disconnect().
    ~PICLServerAgent() override;

    [[nodiscard]] bool processNextMessage(const std::shared_ptr<Stream>& stream) override;

    [[nodiscard]] std::function<void()> run() override;

    /// Deals with each kind of content that @p request has, in this order: sets, reports, subscriptions,
    /// questions.
    [[nodiscard]] bool processMessage(const std::shared_ptr<Stream>& stream,
                                      std::unique_ptr<JSONPICL> request,
                                      std::unique_ptr<JSONPICL> response) override;

    /// Publishes on @p stream from now on, and first of all a report on every property. Thread: any. Blocks
    /// as the stream does.
    virtual void setPublishStream(std::shared_ptr<Stream> stream);

    /// Asks the owner of a property for @p value, plain text. Returns whether the request went out, which it
    /// does not where the owner would refuse its length; what the owner makes of it comes back as a report.
    /// Thread: any. Blocks as the stream does, not for the owner.
    [[nodiscard]] virtual bool setExternalValue(std::string_view component, std::string_view group,
                                                std::string_view guid, std::string_view value);

    /// Returns the mirror of another program's property; one that is not held yet is subscribed to first.
    /// Returns nothing if there is no stream, if the owner has no such property, does not answer in time, or
    /// tells a value that is no T. Thread: any but the reader, which would wait for itself. Blocks at most
    /// @p timeoutMs milliseconds for the answer, and before that for the frames in front of the question.
    template <typename T>
    [[nodiscard]] std::weak_ptr<T> getExternalProperty(const std::string& component, const std::string& group,
                                                       const std::string& guid, std::uint32_t timeoutMs);

    /// Returns the mirror of another program's property, or nothing where it is not held. Thread: any.
    template <typename T>
    [[nodiscard]] std::weak_ptr<T> findExternalProperty(std::string_view component, std::string_view group,
                                                        std::string_view guid) const {
        return std::dynamic_pointer_cast<T>(m_externalTables.find(component, group, guid));
    }

    /// Ends publishing and reading, and sends "Disconnect" as the last frame. A peer that does not read
    /// within 500 ms may not receive it. May be called again. Owner's thread only. Blocks for up to 1 s.
    void disconnect();

private:
    using MirrorMaker = std::shared_ptr<Property> (*)(const PropertyGetResponse& report);

    void subscribe(const PropertyGetRequest& request, MirrorMaker makeMirror, std::uint32_t timeoutMs);
    bool sendAndWait(JSONPICL& message, const std::shared_ptr<PendingResult>& result,
                     std::uint32_t timeoutMs);
    void handleSetRequests(const JSONPICL& message);
    void handleGetAllResponse(const JSONPICL& message);
    void handleGetResponses(const JSONPICL& message);
    [[nodiscard]] bool updateMirror(const PropertyGetResponse& report);
    void keepMirror(const PropertyGetResponse& report, MirrorMaker makeMirror);
    [[nodiscard]] bool answer(Stream& stream, const JSONPICL& request, JSONPICL& response);

    const std::shared_ptr<PublishStream> m_publishStream;
    const std::shared_ptr<Publisher> m_publisher;
    Worker m_disconnectThread;
    PendingRequests m_pendingRequests;
    ExternalTables m_externalTables;
};

template <typename T>
std::weak_ptr<T> PICLServerAgent::getExternalProperty(const std::string& component, const std::string& group,
                                                      const std::string& guid, std::uint32_t timeoutMs) {
    const MirrorMaker makeMirror = [](const PropertyGetResponse& report) -> std::shared_ptr<Property> {
        return std::make_shared<T>(std::string_view(report.value), report.guid, report.nameString,
                                   report.group, report.groupString);
    };
    if (findExternalProperty<T>(component, group, guid).expired())
        subscribe({component, group, guid}, makeMirror, timeoutMs);
    return findExternalProperty<T>(component, group, guid);
}
