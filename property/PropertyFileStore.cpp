#include "property/PropertyFileStore.h"

#include "platform/FileStream.h"
#include "platform/ThreadFactory.h"
#include "prefs/FileHelpers.h"
#include "property/Property.h"
#include "property/PropertyKey.h"
#include "property/PropertyTable.h"
#include "property/WorkerBits.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

namespace {

std::wstring backupOf(const std::wstring& file) { return file + L".bak"; }

// What is larger is no property file, whatever it is: a folder tells such a size.
constexpr std::uint32_t kLargestFile = 256U * 1024 * 1024;

// Returns the bytes of the file; nothing if it is there and cannot be read whole. An absent file has none.
std::optional<std::string> readFile(const std::wstring& path) {
    FileStream stream(path, FileRead);
    if (!stream.isGood())
        return pathExists(path) ? std::optional<std::string>() : std::string();
    const std::uint32_t length = stream.size();
    if (length > kLargestFile)
        return {};
    std::string bytes(length, '\0');
    const auto size = static_cast<std::int32_t>(bytes.size());
    if (size > 0 && stream.read(bytes.data(), size) != size)
        return {};
    return bytes;
}

bool writeFile(const std::wstring& path, const std::string& bytes) {
    FileStream stream(path, FileWrite | FileTruncate);
    const auto size = static_cast<std::int32_t>(bytes.size());
    return stream.isGood() && stream.write(bytes.data(), size) == size && stream.sync();
}

bool loads(const std::string& file) {
    PropertyFileEntries ignored;
    return parsePropertyFile(file, ignored);
}

std::string linesOf(std::string file) {
    file.resize(file.size() - kFileCheckSize);
    return file;
}

// A number that its property refuses leaves the property as it is.
void loadQuietly(Property& property, std::string_view value) {
    try {
        property.loadFromString(value);
    } catch (const std::exception&) {
        return;
    }
}

// The thread holds what it works on, so that it may be let go.
std::uint32_t runWriter(void* argument) {
    const std::unique_ptr<std::shared_ptr<PropertyFileWriter>> writer(
        static_cast<std::shared_ptr<PropertyFileWriter>*>(argument));
    (*writer)->run();
    return 0;
}

} // namespace

PropertyFileWriter::PropertyFileWriter() : m_writeEvent(createEvent(true)) {}

void PropertyFileWriter::queueLine(std::string_view linePrefix, std::string_view value,
                                   const std::wstring& file, std::wstring removeAfterwards) {
    FileWriteRequest request{{linePrefix, value}, file, std::move(removeAfterwards)};
    if (request.line.text.find('\n') != std::string::npos)
        return; // it would end its line early, and the file would not load any more
    {
        const KeltoGuard guard(m_queueLock);
        if (m_isStopped)
            return;
        m_writeQueue.push_back(std::move(request));
    }
    m_writeEvent->set(WorkBit);
}

void PropertyFileWriter::run() {
    while ((m_writeEvent->waitAny(WorkBit | StopBit) & StopBit) == 0)
        drainWriteQueue();
    drainWriteQueue();
}

void PropertyFileWriter::stop() {
    {
        const KeltoGuard guard(m_queueLock);
        m_isStopped = true;
    }
    m_writeEvent->set(StopBit);
}

std::string PropertyFileWriter::queuedLines(const std::wstring& file) {
    std::string lines;
    const KeltoGuard guard(m_queueLock);
    for (const FileWriteRequest& request : m_writeQueue) {
        if (request.file == file)
            lines.append(request.line.text).append(1, '\n');
    }
    return lines;
}

void PropertyFileWriter::drainWriteQueue() {
    for (;;) {
        // From the queue into the file under one lock: a load finds a line in one of them.
        const KeltoGuard guard(m_fileLock);
        std::vector<FileWriteRequest> batch = takeBatch();
        if (batch.empty())
            return;
        if (!rewrite(batch)) {
            putBack(std::move(batch));
            return;
        }
        for (const FileWriteRequest& request : batch) {
            if (!request.removeAfterwards.empty())
                static_cast<void>(removeFile(request.removeAfterwards)); // else it is applied once more
        }
    }
}

std::vector<FileWriteRequest> PropertyFileWriter::takeBatch() {
    std::vector<FileWriteRequest> batch;
    const KeltoGuard guard(m_queueLock);
    while (!m_writeQueue.empty() && (batch.empty() || m_writeQueue.front().file == batch.front().file)) {
        batch.push_back(std::move(m_writeQueue.front()));
        m_writeQueue.pop_front();
    }
    return batch;
}

void PropertyFileWriter::putBack(std::vector<FileWriteRequest> batch) {
    // Of several lines of one property the last is enough; so the queue does not grow while a medium is full.
    std::vector<FileWriteRequest> latest;
    for (FileWriteRequest& request : batch) {
        const auto older = std::ranges::find_if(latest, [&request](const FileWriteRequest& other) {
            return other.line.prefix() == request.line.prefix() && other.removeAfterwards.empty();
        });
        if (older != latest.end())
            *older = std::move(request);
        else
            latest.push_back(std::move(request));
    }
    const KeltoGuard guard(m_queueLock);
    m_writeQueue.insert(m_writeQueue.begin(), std::make_move_iterator(latest.begin()),
                        std::make_move_iterator(latest.end()));
}

std::optional<std::string> PropertyFileWriter::linesToBuildOn(const std::wstring& file) {
    if (m_brokenOff)
        return m_brokenOff;
    const std::optional<std::string> bytes = readFile(file);
    if (!bytes)
        return {};
    if (!bytes->empty() && (*bytes == m_lastWritten || loads(*bytes))) {
        const bool isCovered = m_backupIsComplete && pathExists(backupOf(file));
        if (!isCovered && !copyFileWhole(file, backupOf(file), true))
            return {}; // a rewrite that breaks off would leave nothing whole
        m_backupIsComplete = true;
        return linesOf(*bytes);
    }
    // What is left of a damaged file is built on only where there is nothing better.
    const std::optional<std::string> copied = readFile(backupOf(file));
    return copied && loads(*copied) ? linesOf(*copied) : linesWithKeys(*bytes);
}

bool PropertyFileWriter::rewrite(const std::vector<FileWriteRequest>& batch) {
    const std::wstring& file = batch.front().file;
    std::optional<std::string> old = linesToBuildOn(file);
    if (!old)
        return false;
    std::vector<PropertyFileLine> changes;
    changes.reserve(batch.size());
    for (const FileWriteRequest& request : batch)
        changes.push_back(request.line);
    MergedLines merged = mergeLines(*old, changes);
    // The copy lacks a new line; and a value from outside, once its file is gone, stands nowhere else.
    const bool isFromOutside = std::ranges::any_of(
        batch, [](const FileWriteRequest& request) { return !request.removeAfterwards.empty(); });
    if (merged.hasNewLine || isFromOutside)
        m_backupIsComplete = false;
    m_lastWritten = withFileCheck(std::move(merged.lines));
    const bool isWritten = writeFile(file, m_lastWritten);
    m_brokenOff = isWritten ? std::optional<std::string>() : std::move(old);
    return isWritten;
}

PropertyFileStore::PropertyFileStore(const std::shared_ptr<ThreadFactory>& threads,
                                     std::int32_t writerPriority)
    : m_writer(std::make_shared<PropertyFileWriter>()),
      m_writeThread(threads->createThread(runWriter, writerPriority, 0)) {
    m_writeThread->start(new std::shared_ptr<PropertyFileWriter>(m_writer));
}

PropertyFileStore::~PropertyFileStore() { m_writer->stop(); }

bool PropertyFileStore::parseFile(const std::wstring& path, PropertyFileEntries& entries) {
    std::optional<std::string> bytes = readFile(path);
    return bytes && parsePropertyFile(std::move(*bytes), entries);
}

bool PropertyFileStore::loadFiles(const PropertyTable& table, const std::wstring& file,
                                  const std::wstring& overrideFile) {
    Loaded loaded;
    if (!readFiles(file, overrideFile, loaded))
        return false;
    queueOverrides(loaded, file, overrideFile);
    applyEntries(table, std::move(loaded.entries));
    return true;
}

bool PropertyFileStore::readFiles(const std::wstring& file, const std::wstring& overrideFile,
                                  Loaded& loaded) {
    const KeltoGuard guard(m_writer->fileLock());
    m_writer->drainWriteQueue(); // a load must not bring back what a set has replaced
    m_writer->setBackupIsComplete(false);
    const bool isWhole = parseFile(file, loaded.entries);
    if (!isWhole && !takeFromBackup(file, loaded.entries))
        return false;
    PropertyFileEntries overrides;
    PropertyFileEntries
        queued; // what there was no room for, perhaps of this override: it counts more, and comes first
    static_cast<void>(parsePropertyFile(withFileCheck(m_writer->queuedLines(file)), queued));
    loaded.hasOverride = queued.empty() && pathExists(overrideFile) && parseFile(overrideFile, overrides);
    if (loaded.hasOverride)
        loaded.overridden = loaded.entries.assignKnown(std::move(overrides));
    loaded.entries.assignAll(std::move(queued));
    m_writer->setBackupIsComplete(isWhole ? copyFileWhole(file, backupOf(file), true)
                                          : copyFileWhole(backupOf(file), file, true));
    return true;
}

// Only a good copy counts, and goes over the file: the lines of a damaged file are worth more than those of
// another.
bool PropertyFileStore::takeFromBackup(const std::wstring& file, PropertyFileEntries& entries) {
    PropertyFileEntries copied;
    if (!parseFile(backupOf(file), copied))
        return false;
    entries.assignAll(std::move(copied));
    return true;
}

void PropertyFileStore::queueOverrides(const Loaded& loaded, const std::wstring& file,
                                       const std::wstring& overrideFile) {
    if (!loaded.hasOverride)
        return;
    if (loaded.overridden.empty()) {
        static_cast<void>(removeFile(overrideFile)); // one that stays has nothing to say the next time either
        return;
    }
    for (const PropertyFileEntry& entry : loaded.overridden) {
        const bool isLast = &entry == &loaded.overridden.back();
        m_writer->queueLine(entry.linePrefix, entry.value, file, isLast ? overrideFile : std::wstring());
    }
}

void PropertyFileStore::applyEntries(const PropertyTable& table, PropertyFileEntries entries) {
    for (const PropertyFileEntry& entry : entries) {
        const SplitKey key = splitKey(entry.key);
        const bool isFullKey = key.guid.size() < entry.key.size(); // else it has no ":"
        if (const auto property = isFullKey ? table.findProperty(key.guid, key.groupGuid) : nullptr) {
            loadQuietly(*property, entry.value);
            entries.take(entry.key);
        }
    }
    const KeltoGuard guard(m_placeholderLock);
    if (!entries.empty())
        m_placeholders.push_back(std::move(entries));
}

void PropertyFileStore::applyPlaceholder(Property& property) {
    const KeltoGuard guard(m_placeholderLock);
    const std::string key = fullKey(property);
    for (PropertyFileEntries& placeholders : m_placeholders) {
        if (const std::string_view* value = placeholders.take(key)) {
            loadQuietly(property, *value);
            return;
        }
    }
}

bool PropertyFileStore::writeAll(const std::deque<std::shared_ptr<Property>>& properties,
                                 const std::wstring& file) {
    for (const std::shared_ptr<Property>& property : properties)
        m_writer->queueLine(propertyLinePrefix(*property), property->getStringValue(), file);
    return true;
}
