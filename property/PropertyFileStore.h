#pragma once

#include "platform/KeltoMutex.h"
#include "platform/Worker.h"
#include "property/PropertyFileEntries.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class Property;
class PropertyFileWriter;
class PropertyTable;
class ThreadFactory;

/// The file side of a PropertyManager: gives loaded values to properties, keeps the values of properties that
/// do not exist yet, and owns the writer thread. Thread-safe.
class PropertyFileStore {
public:
    /// Starts the writer thread at @p writerPriority. If the host cannot create it, the next load and the
    /// destructor write the queued lines.
    PropertyFileStore(const std::shared_ptr<ThreadFactory>& threads, std::int32_t writerPriority);

    /// Blocks for up to 500 ms while the writer thread writes the queued lines; after that it finishes
    /// detached. Without a thread it blocks until they are written.
    ~PropertyFileStore();

    PropertyFileStore(const PropertyFileStore&) = delete;
    PropertyFileStore& operator=(const PropertyFileStore&) = delete;

    /// Loads @p file and @p overrideFile as PropertyFileWriter::load() does and gives each value to its
    /// property in @p table, without notification. Values without a property are kept as placeholders; a
    /// value that its property rejects is skipped. A set that happens during the load can be overwritten by
    /// the loaded value. Returns false, and changes no property, if neither the file nor its backup loads.
    /// Blocks for the files.
    [[nodiscard]] bool loadFiles(const PropertyTable& table, const std::wstring& file,
                                 const std::wstring& overrideFile);

    /// Reads the file at @p path into @p entries. Returns false if it cannot be read, is damaged, or has a
    /// line without a key. Blocks for the file.
    [[nodiscard]] static bool parseFile(const std::wstring& path, PropertyFileEntries& entries);

    /// Gives @p property its placeholder value, if any, without notification. Each value is given once.
    void applyPlaceholder(Property& property);

    /// Queues the line of @p property. Always returns true.
    bool writeProperty(const Property& property, const std::wstring& file);

    /// Queues a line as PropertyFileWriter::queueLine() does. Always returns true.
    bool queueLine(std::string_view linePrefix, std::string_view value, const std::wstring& file);

    /// Queues the lines of all @p properties. Always returns true.
    bool writeAll(const std::deque<std::shared_ptr<Property>>& properties, const std::wstring& file);

    /// Writes the queued lines on the calling thread. Blocks for the files.
    void drainWriteQueue();

    /// Returns the writer, for listeners that may outlive this object.
    [[nodiscard]] std::weak_ptr<PropertyFileWriter> writer() const { return m_writer; }

private:
    void applyEntries(const PropertyTable& table, PropertyFileEntries entries);

    KeltoMutex m_placeholderLock;
    // The remaining entries of each load, the first load first.
    std::vector<PropertyFileEntries> m_placeholders KELTO_GUARDED_BY(m_placeholderLock);
    std::shared_ptr<PropertyFileWriter> m_writer;
    Worker m_writeThread;
    const bool m_writesOnThread; // false if the host could not create the thread
};
