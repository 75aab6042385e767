#pragma once

#include "property/PropertyManager.h"

#include <deque>
#include <memory>

class PICLInterface;

/// A table that announces every property that enters or leaves it to a publisher, which may come later than
/// the first properties. What the manager enters by itself while it is built is not announced.
///
/// Publishing itself, its period and its thread, is the publisher's.
class PublishingPropertyManager : public virtual PropertyManager {
public:
    using PropertyManager::PropertyManager;
    ~PublishingPropertyManager() override;

    /// Announces @p property, remembers it for a publisher to come, and then adds it. The publisher hears of
    /// one that the table refuses, too. Thread: any.
    bool addProperty(std::shared_ptr<Property> property) override;

    /// Announces that @p property goes, forgets it, and removes it. Thread: any.
    void removeProperty(const std::shared_ptr<Property>& property,
                        std::shared_ptr<SimpleEvent> done) override;

    /// Announces that @p property goes and leaves the table as it is. Thread: any.
    virtual void announceRemoval(const std::shared_ptr<Property>& property);

    /// Announces to @p publisher, from now on, and first what is remembered, in the order of its adding; that
    /// stays remembered. The manager does not keep it alive. Requires: it is not empty. Thread: any.
    void setPublisher(const std::shared_ptr<PICLInterface>& publisher);

private:
    [[nodiscard]] std::shared_ptr<PICLInterface> publisher() const;

    mutable KeltoMutex m_publisherLock; // not held while the publisher is called
    std::weak_ptr<PICLInterface> m_publisher KELTO_GUARDED_BY(m_publisherLock);
    std::deque<std::shared_ptr<Property>> m_pendingProperties KELTO_GUARDED_BY(m_publisherLock);
};
