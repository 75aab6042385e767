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
        return std::string();
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
    {
        const KeltoGuard guard(m_queueLock);
        m_writeQueue.push_back(std::move(request));
    }
    m_writeEvent->set(WorkBit);
}

void PropertyFileWriter::run() {
    while ((m_writeEvent->waitAny(WorkBit | StopBit) & StopBit) == 0)
        drainWriteQueue();
    drainWriteQueue();
}

void PropertyFileWriter::stop() { m_writeEvent->set(StopBit); }

void PropertyFileWriter::drainWriteQueue() {
    for (std::vector<FileWriteRequest> batch = takeBatch(); !batch.empty(); batch = takeBatch()) {
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

bool PropertyFileWriter::rewrite(const std::vector<FileWriteRequest>& batch) {
    const KeltoGuard guard(m_fileLock);
    const std::wstring& file = batch.front().file;
    std::optional<std::string> old = m_brokenOff ? m_brokenOff : readFile(file);
    if (!old)
        return false;
    if (!m_backupIsComplete && !m_brokenOff && hasGoodFileCheck(*old))
        m_backupIsComplete = copyFileWhole(file, backupOf(file), true);

    std::vector<PropertyFileLine> changes;
    changes.reserve(batch.size());
    for (const FileWriteRequest& request : batch)
        changes.push_back(request.line);
    const bool hasLines = old->size() > kFileCheckSize;
    MergedLines merged =
        mergeLines(hasLines ? std::string_view(*old).substr(0, old->size() - kFileCheckSize) : "", changes);
    if (merged.hasNewLine)
        m_backupIsComplete = false;
    const bool isWritten = writeFile(file, withFileCheck(std::move(merged.lines)));
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
    const bool isWhole = parseFile(file, loaded.entries);
    if (!isWhole && !takeFromBackup(file, loaded.entries))
        return false;
    PropertyFileEntries overrides;
    loaded.hasOverride = pathExists(overrideFile) && parseFile(overrideFile, overrides);
    if (loaded.hasOverride)
        loaded.overridden = loaded.entries.assignKnown(std::move(overrides));
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
        if (const std::shared_ptr<Property> property = table.findProperty(key.guid, key.groupGuid)) {
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
