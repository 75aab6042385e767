#include "property/PublishingPropertyManager.h"

#include "picl/PICLInterface.h"

#include <utility>

PublishingPropertyManager::~PublishingPropertyManager() = default;

bool PublishingPropertyManager::addProperty(std::shared_ptr<Property> property) {
    std::shared_ptr<PICLInterface> listening;
    {
        const KeltoGuard guard(m_publisherLock);
        listening = m_publisher.lock();
        m_pendingProperties.push_back(property);
    }
    if (listening)
        listening->addProperty(property);
    return PropertyManager::addProperty(std::move(property));
}

void PublishingPropertyManager::removeProperty(const std::shared_ptr<Property>& property,
                                               std::shared_ptr<SimpleEvent> done) {
    announceRemoval(property);
    {
        const KeltoGuard guard(m_publisherLock);
        std::erase(m_pendingProperties, property);
    }
    PropertyManager::removeProperty(property, std::move(done));
}

void PublishingPropertyManager::announceRemoval(const std::shared_ptr<Property>& property) {
    if (const std::shared_ptr<PICLInterface> listening = publisher(); listening && property)
        listening->removeProperty(property);
}

void PublishingPropertyManager::setPublisher(const std::shared_ptr<PICLInterface>& publisher) {
    std::deque<std::shared_ptr<Property>> remembered;
    {
        const KeltoGuard guard(m_publisherLock);
        m_publisher = publisher;
        remembered = m_pendingProperties;
    }
    for (const std::shared_ptr<Property>& property : remembered)
        publisher->addProperty(property);
}

std::shared_ptr<PICLInterface> PublishingPropertyManager::publisher() const {
    const KeltoGuard guard(m_publisherLock);
    return m_publisher.lock();
}
