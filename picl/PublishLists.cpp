#include "picl/PublishLists.h"

#include "property/Property.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kUsualPolled = 25;
constexpr std::size_t kUsualRemoved = 50;

} // namespace

PublishLists::PublishLists() {
    m_polledKeys.reserve(kUsualPolled);
    m_polledProperties.reserve(kUsualPolled);
    m_removedProperties.reserve(kUsualRemoved);
}

void PublishLists::addPolledKey(PropertyKey key) {
    const KeltoGuard guard(m_polledKeysLock);
    if (std::ranges::find(m_polledKeys, key) == m_polledKeys.end())
        m_polledKeys.push_back(std::move(key));
}

void PublishLists::add(const std::shared_ptr<Property>& property) {
    if (!pollsIfWished(property)) {
        property->addListener([self = weak_from_this()](const std::shared_ptr<Property>& changed) {
            if (const std::shared_ptr<PublishLists> lists = self.lock())
                lists->queueChange(changed);
        });
    }
    queueChange(property);
}

bool PublishLists::pollsIfWished(const std::shared_ptr<Property>& property) {
    const PropertyKey key{property->getGroupGuid(), property->getGuid()};
    const KeltoGuard guard(m_polledKeysLock);
    if (std::ranges::find(m_polledKeys, key) == m_polledKeys.end())
        return false;
    const KeltoGuard propertiesGuard(m_polledPropertiesLock);
    m_polledProperties.push_back(property);
    return true;
}

void PublishLists::remove(std::shared_ptr<Property> property) {
    const KeltoGuard guard(m_removedPropertiesLock);
    m_removedProperties.push_back(std::move(property));
}

void PublishLists::queueChange(std::shared_ptr<Property> property) {
    // What stood in the place leaves with the argument, after the lock.
    const KeltoGuard guard(m_changedLock);
    if (m_changedCount < kMostChanges)
        m_changedProperties[m_changedCount++].swap(property);
}

std::uint32_t PublishLists::countOfChanges() const {
    const KeltoGuard guard(m_changedLock);
    return m_changedCount;
}

PublishLists::Properties PublishLists::takeChanges() {
    Properties changes;
    changes.reserve(kMostChanges);
    const KeltoGuard guard(m_changedLock);
    while (m_changedCount != 0)
        changes.push_back(std::move(m_changedProperties[--m_changedCount]));
    return changes;
}

PublishLists::Properties PublishLists::polled() const {
    const KeltoGuard guard(m_polledPropertiesLock);
    return m_polledProperties;
}

PublishLists::Properties PublishLists::takeRemoved() {
    Properties removed;
    removed.reserve(kUsualRemoved); // what stays behind keeps its room
    const KeltoGuard guard(m_removedPropertiesLock);
    m_removedProperties.swap(removed);
    return removed;
}
