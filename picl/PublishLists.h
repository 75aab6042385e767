#pragma once

#include "platform/KeltoMutex.h"
#include "property/PropertyKey.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class Property;

/// What a program has to tell of its own properties: those that changed, those that are told every period
/// and those that have gone. Setters fill it, the publisher empties it.
///
/// Order of locks: m_polledKeysLock, then m_polledPropertiesLock; each of the others is held alone. Under
/// none of them is a property asked for its value, and none goes to its end.
class PublishLists : public std::enable_shared_from_this<PublishLists> {
public:
    using Properties = std::vector<std::shared_ptr<Property>>;

    /// How many changes can wait; further ones are dropped.
    static constexpr std::uint32_t kMostChanges = 499;

    PublishLists();

    /// Has the property of @p key told every period. Requires: comes before add() of that property.
    /// Thread: any.
    void addPolledKey(PropertyKey key);

    /// Takes @p property: from now on its changes wait here, or it is polled; in both cases its present value
    /// counts as a change. Requires: a shared pointer holds this object. Thread: any.
    void add(const std::shared_ptr<Property>& property);

    /// Puts @p property among the removed ones, as often as it is called. Thread: any.
    void remove(std::shared_ptr<Property> property);

    /// Queues @p property behind the other changes, or drops it where 499 wait. Allocates nothing.
    /// Thread: any.
    void queueChange(std::shared_ptr<Property> property);

    /// Returns how many changes wait. Thread: any.
    [[nodiscard]] std::uint32_t countOfChanges() const;

    /// Removes and returns all changes, the newest first. Thread-safe.
    [[nodiscard]] Properties takeChanges();

    /// Returns the polled properties in the order of their adding. Thread: any.
    [[nodiscard]] Properties polled() const;

    /// Takes the removed properties, the oldest first. Thread: any.
    [[nodiscard]] Properties takeRemoved();

private:
    [[nodiscard]] bool pollsIfWished(const std::shared_ptr<Property>& property);

    KeltoMutex m_polledKeysLock;
    std::vector<PropertyKey> m_polledKeys KELTO_GUARDED_BY(m_polledKeysLock);
    mutable KeltoMutex m_polledPropertiesLock;
    Properties m_polledProperties KELTO_GUARDED_BY(m_polledPropertiesLock);
    KeltoMutex m_removedPropertiesLock;
    Properties m_removedProperties KELTO_GUARDED_BY(m_removedPropertiesLock);
    mutable KeltoMutex m_changedLock;
    std::atomic<std::uint32_t> m_changedCount = 0; // changed under m_changedLock alone
    std::array<std::shared_ptr<Property>, kMostChanges>
        m_changedProperties KELTO_GUARDED_BY(m_changedLock); // a stack
};
