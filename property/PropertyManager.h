#pragma once

#include "platform/Event.h"
#include "platform/KeltoMutex.h"
#include "platform/SimpleEvent.h"
#include "platform/Thread.h"
#include "property/PropertyFileStore.h"
#include "property/PropertyTable.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

class BoolProperty;
class StringProperty;
class ThreadFactory;
class TriggerProperty;

/// A property, or a whole group, that is to leave the table.
struct RemovalRequest {
    std::string key; ///< A `fullKey`; without a GUID behind its first ":" it means the group.
    std::shared_ptr<SimpleEvent> done; ///< Signalled when it has left; may be empty.
};

/// An application's own table of properties, with a memory: what was stored in its file comes back when a
/// property is registered, and goes there when it changes. No file work happens on the thread of whoever sets
/// a property; a load, which the manager's owner alone can fire, holds the table while it reads.
///
/// The file format is told in PropertyFile.h, what protects the file in PropertyFileStore.h.
///
/// Order of locks: m_persistentLock, the lock of the table, the locks of the file store. A registration and a
/// load both hold m_persistentLock throughout, so neither comes between the steps of the other.
class PropertyManager : public PropertyTable {
public:
    /// Loads @p fileName and @p overrideFileName, registers the manager's own properties, and starts the
    /// writer. A file that cannot be read is no failure: "Property Loading Error" tells. Blocks for the
    /// files.
    PropertyManager(const std::shared_ptr<ThreadFactory>& threads, std::int32_t removalPriority,
                    std::int32_t writerPriority, std::wstring fileName, std::wstring overrideFileName);

    /// Ends both threads. What is queued for the file is written, so long as that takes no more than 500 ms.
    ~PropertyManager() override;

    /// Takes @p property out of the table, on the removal worker, and signals @p done, which may be empty.
    /// Neither the property nor its file line goes. An empty @p property does nothing. Thread: any.
    virtual void removeProperty(const std::shared_ptr<Property>& property, std::shared_ptr<SimpleEvent> done);

    /// Gives @p property its stored value, silently, writes it to the file whenever it changes from now on,
    /// and enters it in the table. Returns false, and does nothing, for a repeated registration; false, too,
    /// if the table has another property of that key. Thread: any.
    bool addPersistentProperty(const std::shared_ptr<Property>& property);

    /// Starts the removal worker. If the host cannot create its thread, removals wait until a later call
    /// succeeds. Thread: the first.
    void startWorker();

    /// Set to true, it loads the files again. It is in no table: the manager's owner alone can fire it.
    [[nodiscard]] std::shared_ptr<TriggerProperty> loadTrigger() const { return m_loadTrigger; }

private:
    struct Removals;
    struct Self;

    static void runRemovals(Removals& removals);
    bool load();
    bool storeAll();
    [[nodiscard]] bool isRegistered(const Property& property) const KELTO_REQUIRES(m_persistentLock);
    void writeWhenChanged(Property& property);
    void carryOut(const RemovalRequest& request);

    std::shared_ptr<Removals> m_removals;
    std::shared_ptr<Self> m_self;
    Worker m_removalThread;
    bool m_workerIsStarted = false;
    std::deque<std::shared_ptr<Property>> m_persistentProperties KELTO_GUARDED_BY(m_persistentLock);
    KeltoMutex m_persistentLock; // serialises the queuing of writes, too
    std::shared_ptr<TriggerProperty> m_loadTrigger;
    std::shared_ptr<TriggerProperty> m_storeTrigger;
    std::shared_ptr<BoolProperty> m_loadingError;
    std::shared_ptr<StringProperty> m_fileNameProperty;
    std::shared_ptr<StringProperty> m_overrideNameProperty;
    std::wstring m_fileName;
    std::wstring m_overrideFileName;
    PropertyFileStore m_fileStore;
};
