#pragma once

#include "picl/PropertyRecords.h"
#include "platform/SimpleEvent.h"

#include <cstdint>
#include <memory>

class Property;
class PublishLists;
class PublishStream;
class UInt32Property;

/// The body of the publisher thread: every 250 ms it turns changes into reports, and every publishing period
/// it sends them.
///
/// It shares ownership of everything that it uses, so a detached thread may outlive the endpoint. A blocked
/// write ends when the stream is closed or the write times out.
class Publisher {
public:
    Publisher(std::shared_ptr<PublishLists> lists, std::shared_ptr<PublishStream> stream,
              std::shared_ptr<UInt32Property> period, std::shared_ptr<Property> component);

    /// Publishes until end() is called. While there is no stream, changes are dropped and removals wait.
    /// Blocks.
    void run();

    /// Makes run() return after the write in progress. Thread-safe.
    void end() { m_stopEvent.signal(); }

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
};
