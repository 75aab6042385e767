#pragma once

#include "platform/Event.h"
#include "platform/KeltoMutex.h"
#include "property/PropertyFile.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class Property;

/// Reads, backs up and rewrites property files, and queues the lines to write. Thread-safe.
///
/// A file is rewritten in place: new lines are merged into a base, which is the first of these that exists:
///   1. the lines of the file, if it loads;
///   2. the lines that this object last read or wrote for the file;
///   3. the lines of the backup (the same path with ".bak"), if it loads;
///   4. those lines of the damaged file that have a key.
/// A file that exists but cannot be opened may be good, so it is left alone. The backup is refreshed before a
/// rewrite of a file that has lines which the backup lacks. If that fails, the rewrite goes ahead: one copy
/// of the new value is better than none.
///
/// The writer thread and the listeners of properties share ownership, so this object can outlive its store.
///
/// Lock order: m_fileLock, then m_queueLock.
class PropertyFileWriter {
public:
    PropertyFileWriter();

    /// Queues the line of @p property for @p file, as queueLine() does.
    void writeProperty(const Property& property, const std::wstring& file);

    /// Queues the line @p linePrefix "=" @p value for @p file. It replaces a waiting line of the same prefix.
    /// Ignored after stop(), and if the line contains 0x0A, which would damage the file. Does not wait for a
    /// file.
    void queueLine(std::string_view linePrefix, std::string_view value, const std::wstring& file);

    /// Writes the queued lines, those of one file in one rewrite. The lines of a file that cannot be written
    /// stay queued. Blocks for the files.
    void drainWriteQueue();

    /// Reads @p file, or its backup if the file is missing or damaged, into @p entries, and applies the lines
    /// that still wait to be written. Repairs the file from its backup, or refreshes the backup.
    ///
    /// Values of @p overrideFile replace those of @p entries with the same key and are queued for @p file;
    /// the override file is removed once they are on the medium. A damaged override file is ignored.
    ///
    /// Returns false if neither the file nor its backup loads. Blocks for the files.
    [[nodiscard]] bool load(const std::wstring& file, const std::wstring& overrideFile,
                            PropertyFileEntries& entries);

    /// Drains the queue whenever a line is added, until stop(). Blocks. Writer thread only.
    void run();

    /// Closes the queue and ends run() after a last drain. Does not block.
    void stop();

private:
    using Lines = std::vector<PropertyFileLine>;

    /// What this object knows of one file.
    struct FileState {
        std::optional<std::string> lines; // as last read or written
        bool backupIsComplete = false;    // whether the backup has all lines of the file
        bool backupFailureIsLogged = false;
        std::wstring overrideFile; // removed after the next rewrite; may be empty
    };

    [[nodiscard]] bool rewrite(const std::wstring& file, const Lines& changes) KELTO_REQUIRES(m_fileLock);
    static const std::string& baseOfRewrite(const std::wstring& file, std::string_view bytes,
                                            FileState& state);
    static void useGoodFile(const std::wstring& file, std::string_view bytes, FileState& state);
    static bool readFileOrBackup(const std::wstring& file, FileState& state, PropertyFileEntries& entries);
    void applyOverride(const std::wstring& file, const std::wstring& overrideFile, FileState& state,
                       PropertyFileEntries& entries) KELTO_REQUIRES(m_fileLock);
    PropertyFileEntries waitingEntries(const std::wstring& file);
    void putBack(const std::wstring& file, Lines lines);

    KeltoMutex m_fileLock; // held while a file is read or rewritten
    std::map<std::wstring, FileState> m_states KELTO_GUARDED_BY(m_fileLock);
    KeltoMutex m_queueLock;
    bool m_isStopped KELTO_GUARDED_BY(m_queueLock) = false;
    std::map<std::wstring, Lines> m_writeQueue KELTO_GUARDED_BY(m_queueLock); // by file
    std::unique_ptr<Event> m_writeEvent;
};
