#pragma once

#include "picl/PropertyReports.h"
#include "picl/PublishLists.h"
#include "platform/Worker.h"

#include <cstdint>
#include <functional>
#include <memory>

class JSONPICL;
class PropertyManager;
class Stream;
class ThreadFactory;
class UInt32Property;

/// An endpoint of the property system, as far as it does not depend on the kind of its peer: it knows the
/// properties of this program, answers questions about them and collects what is to be published.
///
/// A property of this program is published in one of three ways: by each of its changes, once a period
/// (addPolledKey()), or, when it has gone, once more (removeProperty()). What listens on properties keeps the
/// lists alive only weakly, so properties may outlive the endpoint.
class PICLInterface {
public:
    virtual ~PICLInterface();

    PICLInterface(const PICLInterface&) = delete;
    PICLInterface& operator=(const PICLInterface&) = delete;

    /// Reads one message from @p stream and deals with it. Returns false when no further one is to be read.
    /// Blocks until a message has come.
    [[nodiscard]] virtual bool processNextMessage(const std::shared_ptr<Stream>& stream) = 0;

    /// Takes a property of this program under care; its present value is published too. Thread: any.
    virtual void addProperty(const std::shared_ptr<Property>& property);

    /// Has the property of @p key published by period. Requires: comes before addProperty() of it.
    /// Thread: any.
    virtual void addPolledKey(PropertyKey key);

    /// Publishes that @p property has gone, with its last value. Thread: any.
    virtual void removeProperty(std::shared_ptr<Property> property);

    /// Starts the publisher thread unless it runs. Returns false if the host cannot create it. Thread: the
    /// owner's.
    virtual bool startPublishing();

    /// Passes the answer to @p request to @p add, one report at a time, so that an answer of any length takes
    /// the memory of one report. Returns false if @p add did. Thread-safe.
    virtual bool getProperties(const PropertyGetRequest& request, const ReportSink& add) const;

    /// Passes a report on every property of this program to @p add. Returns false if @p add did. Thread-safe.
    virtual bool getAllProperties(const ReportSink& add) const;

    /// Returns the body of the publisher thread. It runs until the endpoint ends it and shares the ownership
    /// of what it touches: the thread may be let go, and then outlives the endpoint.
    [[nodiscard]] virtual std::function<void()> run() = 0;

    /// Acts on @p request, which came from @p stream, and answers there in @p response. Returns false if an
    /// answer could not be written. Blocks as the stream does.
    [[nodiscard]] virtual bool processMessage(const std::shared_ptr<Stream>& stream,
                                              std::unique_ptr<JSONPICL> request,
                                              std::unique_ptr<JSONPICL> response) = 0;

    /// Queues @p property for the next publication. Beyond 499 it is dropped. Thread: any.
    void queueChangedProperty(std::shared_ptr<Property> property);

    /// Returns how many changes are queued. Thread: any.
    [[nodiscard]] std::uint32_t countOfChangedProperties() const { return m_lists->countOfChanges(); }

protected:
    /// @p component stands for this program in every report. Adds "Property Publishing Period in ms" to
    /// @p manager.
    PICLInterface(std::shared_ptr<PropertyManager> manager, const std::shared_ptr<ThreadFactory>& threads,
                  std::int32_t priority, std::shared_ptr<Property> component);

    /// Joins the publisher thread, or detaches it after 500 ms. Requires: the thread was requested to end.
    void stopPublishing();

    const std::shared_ptr<PropertyManager> m_propertyManager;
    const std::shared_ptr<PublishLists> m_lists;
    const std::shared_ptr<UInt32Property> m_publishingPeriod;
    const std::shared_ptr<Property> m_componentProperty;

private:
    Worker m_publisherThread;
    bool m_isPublishing = false;
};
