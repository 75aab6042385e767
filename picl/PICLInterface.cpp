#include "picl/PICLInterface.h"

#include "property/MakeProperty.h"
#include "property/PropertyManager.h"
#include "property/UInt32Property.h"

#include <utility>

namespace {

constexpr std::uint32_t kDefaultPeriodMs = 500;

/// Returns the period in @p manager; a second endpoint finds the one that the first entered.
std::shared_ptr<UInt32Property> publishingPeriodIn(PropertyManager& manager) {
    const VocabularyEntry& property = vocabulary::properties::kPropertyPublishingPeriodInMs;
    const VocabularyEntry& group = vocabulary::groups::kGeneral;
    auto period = std::dynamic_pointer_cast<UInt32Property>(manager.findProperty(property.guid, group.guid));
    if (!period) {
        period = makeProperty<UInt32Property>(group, property, kDefaultPeriodMs);
        manager.addPersistentProperty(period);
    }
    return period;
}

} // namespace

PICLInterface::PICLInterface(std::shared_ptr<PropertyManager> manager,
                             const std::shared_ptr<ThreadFactory>& threads, std::int32_t priority,
                             std::shared_ptr<Property> component)
    : m_propertyManager(std::move(manager)),
      m_lists(std::make_shared<PublishLists>()),
      m_publishingPeriod(publishingPeriodIn(*m_propertyManager)),
      m_componentProperty(std::move(component)),
      m_publisherThread(*threads, priority) {}

PICLInterface::~PICLInterface() = default;

void PICLInterface::addProperty(const std::shared_ptr<Property>& property) { m_lists->add(property); }

void PICLInterface::addPolledKey(PropertyKey key) { m_lists->addPolledKey(std::move(key)); }

void PICLInterface::removeProperty(std::shared_ptr<Property> property) {
    m_lists->remove(std::move(property));
}

bool PICLInterface::startPublishing() {
    m_isPublishing = m_isPublishing || m_publisherThread.start(run());
    return m_isPublishing;
}

void PICLInterface::stopPublishing() { m_publisherThread.stop(); }

bool PICLInterface::getProperties(const PropertyGetRequest& request, const ReportSink& add) const {
    return reportAnswer(*m_propertyManager, request, *m_componentProperty, add);
}

bool PICLInterface::getAllProperties(const ReportSink& add) const {
    return reportAll(*m_propertyManager, *m_componentProperty, add);
}

void PICLInterface::queueChangedProperty(std::shared_ptr<Property> property) {
    m_lists->queueChange(std::move(property));
}
