#include "property/PropertyFileStore.h"

#include "property/Property.h"
#include "property/PropertyFileWriter.h"
#include "property/PropertyKey.h"
#include "property/PropertyTable.h"

#include <exception>
#include <utility>

namespace {

// A number that the property rejects leaves the property unchanged.
void loadIfValid(Property& property, std::string_view value) {
    try {
        property.loadFromString(value);
    } catch (const std::exception&) {
        return;
    }
}

} // namespace

PropertyFileStore::PropertyFileStore(const std::shared_ptr<ThreadFactory>& threads,
                                     std::int32_t writerPriority)
    : m_writer(std::make_shared<PropertyFileWriter>()),
      m_writeThread(*threads, writerPriority),
      m_writesOnThread(m_writeThread.start([writer = m_writer] { writer->run(); })) {}

PropertyFileStore::~PropertyFileStore() {
    m_writer->stop();
    if (!m_writesOnThread)
        m_writer->run(); // returns after it has written
}

bool PropertyFileStore::parseFile(const std::wstring& path, PropertyFileEntries& entries) {
    std::optional<std::string> bytes = readPropertyFile(path);
    return bytes && parsePropertyFile(std::move(*bytes), entries);
}

bool PropertyFileStore::loadFiles(const PropertyTable& table, const std::wstring& file,
                                  const std::wstring& overrideFile) {
    PropertyFileEntries entries;
    if (!m_writer->load(file, overrideFile, entries))
        return false;
    applyEntries(table, std::move(entries));
    return true;
}

void PropertyFileStore::applyEntries(const PropertyTable& table, PropertyFileEntries entries) {
    for (const PropertyFileEntry& entry : entries) {
        const SplitKey key = splitKey(entry.key);
        const bool isFullKey = key.guid.size() < entry.key.size(); // else it has no ":"
        if (const auto property = isFullKey ? table.findProperty(key.guid, key.groupGuid) : nullptr) {
            loadIfValid(*property, entry.value);
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
            loadIfValid(property, *value);
            return;
        }
    }
}

bool PropertyFileStore::writeProperty(const Property& property, const std::wstring& file) {
    m_writer->writeProperty(property, file);
    return true;
}

bool PropertyFileStore::queueLine(std::string_view linePrefix, std::string_view value,
                                  const std::wstring& file) {
    m_writer->queueLine(linePrefix, value, file);
    return true;
}

bool PropertyFileStore::writeAll(const std::deque<std::shared_ptr<Property>>& properties,
                                 const std::wstring& file) {
    for (const std::shared_ptr<Property>& property : properties)
        m_writer->writeProperty(*property, file);
    return true;
}

void PropertyFileStore::drainWriteQueue() { m_writer->drainWriteQueue(); }
