#pragma once

#include "picl/PropertyRecords.h"
#include "platform/SimpleEvent.h"

#include <cstdint>
#include <memory>

class Property;
class PublishLists;
class PublishStream;
class UInt32Property;

/// The work of the publisher thread: every 250 ms it turns what changed into reports, and every publishing
/// period it sends them. Its last act is the goodbye on the stream.
///
/// It shares the ownership of all that it touches. A thread that is let go while its write still blocks may
/// therefore outlive the endpoint; it ends when the stream is closed, or when the write gives up.
class Publisher {
public:
    Publisher(std::shared_ptr<PublishLists> lists, std::shared_ptr<PublishStream> stream,
              std::shared_ptr<UInt32Property> period, std::shared_ptr<Property> component);

    /// Publishes until end() is called, then says goodbye. Nothing is published while there is no stream:
    /// changes are forgotten meanwhile, removals wait. Blocks.
    void run();

    /// Makes run() end after the write that is under way. Thread: any.
    void end() { m_stopEvent.signal(); }

    /// Waits for the goodbye of run(). Returns whether it has been said. Thread: any. Blocks at most
    /// @p timeoutMs milliseconds.
    [[nodiscard]] bool awaitGoodbye(std::uint32_t timeoutMs) { return m_goodbye.wait(timeoutMs); }

private:
    [[nodiscard]] std::uint32_t waitsPerPeriod() const;
    void collectChanges(PropertyGetResponses& reports);
    void collectPolledAndRemoved(PropertyGetResponses& reports);
    void publish(PropertyGetResponses reports);

    const std::shared_ptr<PublishLists> m_lists;
    const std::shared_ptr<PublishStream> m_stream;
    const std::shared_ptr<UInt32Property> m_period;
    const std::shared_ptr<Property> m_component;
    SimpleEvent m_stopEvent{true};
    SimpleEvent m_goodbye{false};
};
