#pragma once

#include "picl/PropertyRecords.h"
#include "platform/SimpleEvent.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

class Property;
class PublishLists;
class PublishStream;
class ReportFrames;
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

    /// Returns the number of whole waits of 250 ms in a publishing period, at least one wait and at most one
    /// day.
    [[nodiscard]] static std::uint32_t waitsPerPeriod(std::uint32_t periodMs);

    /// Publishes until end() is called. While there is no stream, changes are dropped and removals wait.
    /// Blocks.
    void run();

    /// Makes run() return after the write in progress. Thread-safe.
    void end() { m_stopEvent.signal(); }

private:
    using Properties = std::vector<std::shared_ptr<Property>>;

    /// What waits for the end of a period.
    struct Waiting {
        PropertyGetResponses reports;
        std::size_t textSize = 0; ///< Of the reports; at most the room of one frame.
        Properties late; ///< Changed when there was no room; each once, reported with its final value.
    };

    void collectAndPublish(Waiting& waiting, std::uint32_t& waitsLeft) const;
    void collect(const Properties& changes, Waiting& waiting) const;
    void publish(Waiting waiting) const;
    void addEach(const Properties& properties, std::string_view status, ReportFrames& frames) const;

    const std::shared_ptr<PublishLists> m_lists;
    const std::shared_ptr<PublishStream> m_stream;
    const std::shared_ptr<UInt32Property> m_period;
    const std::shared_ptr<Property> m_component;
    SimpleEvent m_stopEvent{true};
};
