#include "property/PropertyManager.h"

#include "platform/WideText.h"
#include "property/BoolProperty.h"
#include "property/PropertyFileWriter.h"
#include "property/PropertyKey.h"
#include "property/PropertyVocabulary.h"
#include "property/StringProperty.h"
#include "property/TriggerProperty.h"
#include "property/WorkerBits.h"

#include <optional>
#include <utility>

namespace {

namespace groups = vocabulary::groups;
namespace properties = vocabulary::properties;

template <typename Type, typename Value>
std::shared_ptr<Type> makeProperty(const VocabularyEntry& property, const VocabularyEntry& group,
                                   const Value& value) {
    return std::make_shared<Type>(value, property.guid, property.name, group.guid, group.name);
}

} // namespace

/// The way from what may outlive the manager (its worker, the listeners of its triggers) back to it.
struct PropertyManager::Self {
    KeltoMutex lock;
    PropertyManager* manager KELTO_GUARDED_BY(lock) = nullptr; // null once the manager goes
};

struct PropertyManager::Removals {
    std::optional<RemovalRequest> take() {
        const KeltoGuard guard(lock);
        if (queue.empty())
            return {};
        std::optional<RemovalRequest> first(std::move(queue.front()));
        queue.pop_front();
        return first;
    }

    KeltoMutex lock;
    std::deque<RemovalRequest> queue KELTO_GUARDED_BY(lock);
    std::unique_ptr<Event> event = createEvent(true);
    std::shared_ptr<Self> self;
};

PropertyManager::PropertyManager(const std::shared_ptr<ThreadFactory>& threads, std::int32_t removalPriority,
                                 std::int32_t writerPriority, std::wstring fileName,
                                 std::wstring overrideFileName)
    : m_removals(std::make_shared<Removals>()),
      m_self(std::make_shared<Self>()),
      m_removalThread(*threads, removalPriority),
      m_fileName(std::move(fileName)),
      m_overrideFileName(std::move(overrideFileName)),
      m_fileStore(threads, writerPriority) {
    m_removals->self = m_self;
    {
        const KeltoGuard guard(m_self->lock);
        m_self->manager = this;
    }
    m_fileNameProperty =
        makeProperty<StringProperty>(properties::kNameOfPropertyFile, groups::kGeneral, toNarrow(m_fileName));
    m_overrideNameProperty = makeProperty<StringProperty>(properties::kNameOfPropertyOverrideFile,
                                                          groups::kGeneral, toNarrow(m_overrideFileName));
    m_loadingError = makeProperty<BoolProperty>(properties::kPropertyLoadingError, groups::kError, true);
    m_loadTrigger = makeProperty<TriggerProperty>(properties::kLoadProperties, groups::kGeneral, false);
    m_storeTrigger = makeProperty<TriggerProperty>(properties::kStoreProperties, groups::kGeneral, false);
    load();
    addPersistentProperty(m_fileNameProperty);
    addPersistentProperty(m_overrideNameProperty);
    PropertyTable::addProperty(m_storeTrigger);
    PropertyTable::addProperty(m_loadingError);

    // The triggers may outlive the manager; so may its lock, which a listener holds while it works.
    const auto fire = [self = m_self](TriggerProperty& trigger, bool (PropertyManager::*work)()) {
        const KeltoGuard guard(self->lock);
        if (self->manager != nullptr)
            trigger.recordResult((self->manager->*work)());
    };
    m_loadTrigger->addListener([fire, trigger = m_loadTrigger.get()](const std::shared_ptr<Property>&) {
        fire(*trigger, &PropertyManager::load);
    });
    m_storeTrigger->addListener([fire, trigger = m_storeTrigger.get()](const std::shared_ptr<Property>&) {
        fire(*trigger, &PropertyManager::storeAll);
    });
}

PropertyManager::~PropertyManager() {
    m_removals->event->set(StopBit);
    {
        const KeltoGuard guard(m_self->lock);
        m_self->manager = nullptr;
    }
    const KeltoGuard guard(m_persistentLock);
    m_persistentProperties.clear();
}

bool PropertyManager::load() {
    const KeltoGuard persistentGuard(m_persistentLock);
    const KeltoGuard tableGuard(m_tableLock);
    const bool isLoaded = m_fileStore.loadFiles(*this, m_fileName, m_overrideFileName);
    m_loadingError->setValue(!isLoaded);
    return isLoaded;
}

bool PropertyManager::storeAll() {
    const KeltoGuard guard(m_persistentLock);
    return m_fileStore.writeAll(m_persistentProperties, m_fileName);
}

bool PropertyManager::isRegistered(const Property& property) const {
    for (const std::shared_ptr<Property>& registered : m_persistentProperties) {
        if (registered->getGuid() == property.getGuid() &&
            registered->getGroupGuid() == property.getGroupGuid())
            return true;
    }
    return false;
}

bool PropertyManager::addPersistentProperty(const std::shared_ptr<Property>& property) {
    const KeltoGuard persistentGuard(m_persistentLock);
    if (isRegistered(*property))
        return false;
    m_fileStore.applyPlaceholder(*property);
    writeWhenChanged(*property);
    m_persistentProperties.push_back(property);
    return addProperty(property);
}

void PropertyManager::writeWhenChanged(Property& property) {
    // The property can outlive the manager; its changes are not written then.
    property.addListener([lock = m_persistentLock, writer = m_fileStore.writer(),
                          file = m_fileName](const std::shared_ptr<Property>& changed) mutable {
        const std::shared_ptr<PropertyFileWriter> alive = writer.lock();
        if (!alive)
            return;
        const KeltoGuard guard(lock);
        alive->writeProperty(*changed, file);
    });
}

void PropertyManager::startWorker() {
    m_workerIsStarted =
        m_workerIsStarted || m_removalThread.start([removals = m_removals] { runRemovals(*removals); });
}

void PropertyManager::removeProperty(const std::shared_ptr<Property>& property,
                                     std::shared_ptr<SimpleEvent> done) {
    if (!property)
        return;
    {
        const KeltoGuard guard(m_removals->lock);
        m_removals->queue.push_back(
            {fullKey(property->getGroupGuid(), property->getGuid()), std::move(done)});
    }
    m_removals->event->set(WorkBit);
}

void PropertyManager::runRemovals(Removals& removals) {
    while ((removals.event->waitAny(WorkBit | StopBit) & StopBit) == 0) {
        while (const std::optional<RemovalRequest> request = removals.take()) {
            const KeltoGuard guard(removals.self->lock);
            if (removals.self->manager != nullptr)
                removals.self->manager->carryOut(*request);
        }
    }
}

void PropertyManager::carryOut(const RemovalRequest& request) {
    if (splitKey(request.key).guid.empty())
        removeGroup(request.key);
    else
        removeByKey(request.key);
    if (request.done)
        request.done->signal();
}
