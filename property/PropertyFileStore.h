#pragma once

#include "platform/Event.h"
#include "platform/KeltoMutex.h"
#include "platform/Thread.h"
#include "property/PropertyFile.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class Property;
class PropertyTable;
class ThreadFactory;

/// A line that waits to be written.
struct FileWriteRequest {
    PropertyFileLine line;
    std::wstring file;
    std::wstring removeAfterwards; ///< A file that goes as soon as the line is on the medium; may be empty.
};

/// The lines that wait to be written, and their writing. Shared with the thread that writes and with the
/// listeners of properties, which may all outlive the store.
///
/// A rewrite happens in place: what protects the data meanwhile is the check at the end of the file, and the
/// copy with the extension ".bak". Every line of a file is in one of the two at every moment: before a file
/// is rewritten that has lines that its copy lacks, it is copied again. Both are synced to the medium.
///
/// Order of locks: m_fileLock before m_queueLock.
class PropertyFileWriter {
public:
    PropertyFileWriter();

    /// Queues the line @p linePrefix "=" @p value for @p file; not one that holds a 0x0A, nor
    /// any after stop(). Never waits for a file. Thread: any.
    void queueLine(std::string_view linePrefix, std::string_view value, const std::wstring& file,
                   std::wstring removeAfterwards = {});

    /// Writes all that is queued, as many lines of one file at once as stand together. A file that cannot be
    /// read whole or written ends it; its lines stay queued and wait for the next time. Blocks for the files.
    /// Thread: any.
    void drainWriteQueue();

    /// Writes what is queued whenever something is, until stop(). Blocks. Thread: the writer's.
    void run();

    /// Lets run() write what is still queued, and end; nothing more is queued. Thread: any.
    void stop();

    /// Held while a file is rewritten, and while a load reads and copies it.
    KeltoMutex& fileLock() KELTO_RETURN_CAPABILITY(m_fileLock) { return m_fileLock; }

    /// Returns the lines that wait for @p file, each with its 0x0A. Thread: any.
    std::string queuedLines(const std::wstring& file);

    /// Tells whether the copy of the file that was loaded has all its lines. Requires: fileLock() is held.
    void setBackupIsComplete(bool isComplete) KELTO_REQUIRES(m_fileLock) { m_backupIsComplete = isComplete; }

private:
    std::vector<FileWriteRequest> takeBatch();
    void putBack(std::vector<FileWriteRequest> batch);
    [[nodiscard]] bool rewrite(const std::vector<FileWriteRequest>& batch) KELTO_REQUIRES(m_fileLock);
    std::optional<std::string> linesToBuildOn(const std::wstring& file) KELTO_REQUIRES(m_fileLock);

    KeltoMutex m_fileLock;
    bool m_backupIsComplete KELTO_GUARDED_BY(m_fileLock) = false;
    // What the file held before a rewrite that failed on the way: what is left of it there is not to be built
    // on.
    std::optional<std::string> m_brokenOff KELTO_GUARDED_BY(m_fileLock);
    std::string m_lastWritten KELTO_GUARDED_BY(m_fileLock); // a file that holds this is good
    KeltoMutex m_queueLock;
    bool m_isStopped KELTO_GUARDED_BY(m_queueLock) = false;
    std::deque<FileWriteRequest> m_writeQueue KELTO_GUARDED_BY(m_queueLock);
    std::unique_ptr<Event> m_writeEvent;
};

/// The file side of a PropertyManager: reads property files, keeps what they say of properties that do not
/// exist yet, and writes lines on a thread of its own.
class PropertyFileStore {
public:
    /// Starts the thread that writes, at @p writerPriority.
    PropertyFileStore(const std::shared_ptr<ThreadFactory>& threads, std::int32_t writerPriority);

    /// Writes what is queued; waits for that at most 500 ms, then lets the thread go, which goes on by
    /// itself.
    ~PropertyFileStore();

    PropertyFileStore(const PropertyFileStore&) = delete;
    PropertyFileStore& operator=(const PropertyFileStore&) = delete;

    /// Gives the values of @p file to the properties of @p table, silently, and keeps the others as
    /// placeholders. A file that is missing or damaged is replaced from its copy first; a good one is copied.
    /// Values of @p overrideFile go before those of the file, and into it; that file is removed once they are
    /// there. A stored value that its property refuses is skipped. Returns false if neither the file nor its
    /// copy can be read: then no property has changed. Blocks for the files.
    bool loadFiles(const PropertyTable& table, const std::wstring& file, const std::wstring& overrideFile);

    /// Reads the file at @p path into @p entries. Returns false if it cannot be read, is damaged, or has a
    /// line without a key. Blocks for the file. Thread: any.
    static bool parseFile(const std::wstring& path, PropertyFileEntries& entries);

    /// Gives @p property the value that a file held for it, if any, silently. Each value is given once.
    void applyPlaceholder(Property& property);

    /// Queues the lines of all @p properties. Returns true.
    bool writeAll(const std::deque<std::shared_ptr<Property>>& properties, const std::wstring& file);

    /// Returns the part that may outlive this object.
    [[nodiscard]] std::weak_ptr<PropertyFileWriter> writer() const { return m_writer; }

private:
    struct Loaded {
        PropertyFileEntries entries;
        std::vector<PropertyFileEntry> overridden; // those that the override changed
        bool hasOverride = false;
    };

    bool readFiles(const std::wstring& file, const std::wstring& overrideFile, Loaded& loaded);
    static bool takeFromBackup(const std::wstring& file, PropertyFileEntries& entries);
    void queueOverrides(const Loaded& loaded, const std::wstring& file, const std::wstring& overrideFile);
    void applyEntries(const PropertyTable& table, PropertyFileEntries entries);

    KeltoMutex m_placeholderLock;
    // What each load said of properties that were not there; the first load comes first.
    std::vector<PropertyFileEntries> m_placeholders KELTO_GUARDED_BY(m_placeholderLock);
    std::shared_ptr<PropertyFileWriter> m_writer;
    std::shared_ptr<Thread> m_writeThread;
};
