#include "property/PropertyFileWriter.h"

#include "platform/Log.h"
#include "platform/WideText.h"
#include "prefs/FileHelpers.h"
#include "property/Property.h"
#include "property/WorkerBits.h"

#include <algorithm>
#include <utility>

namespace {

std::wstring backupOf(const std::wstring& file) { return file + L".bak"; }

std::string linesOf(std::string_view goodFile) {
    return std::string(goodFile.substr(0, goodFile.size() - kFileCheckSize));
}

// A line with the prefix of another replaces it, so that the queue has one line for each property.
void append(std::vector<PropertyFileLine>& lines, PropertyFileLine line) {
    const auto older = std::find_if(lines.rbegin(), lines.rend(), [&line](const PropertyFileLine& other) {
        return other.prefix() == line.prefix();
    });
    if (older != lines.rend())
        *older = std::move(line);
    else
        lines.push_back(std::move(line));
}

} // namespace

PropertyFileWriter::PropertyFileWriter() : m_writeEvent(createEvent(true)) {}

void PropertyFileWriter::writeProperty(const Property& property, const std::wstring& file) {
    queueLine(propertyLinePrefix(property), property.getStringValue(), file);
}

void PropertyFileWriter::queueLine(std::string_view linePrefix, std::string_view value,
                                   const std::wstring& file) {
    PropertyFileLine line(linePrefix, value);
    if (line.text.find('\n') != std::string::npos)
        return;
    {
        const KeltoGuard guard(m_queueLock);
        if (m_isStopped)
            return;
        append(m_writeQueue[file], std::move(line));
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

void PropertyFileWriter::drainWriteQueue() {
    const KeltoGuard fileGuard(m_fileLock); // a load finds each line in the queue or in the file
    std::map<std::wstring, Lines> queue;
    {
        const KeltoGuard guard(m_queueLock);
        queue.swap(m_writeQueue);
    }
    for (auto& [file, lines] : queue) {
        if (!rewrite(file, lines))
            putBack(file, std::move(lines));
    }
}

void PropertyFileWriter::putBack(const std::wstring& file, Lines lines) {
    const KeltoGuard guard(m_queueLock);
    Lines& queued = m_writeQueue[file];
    for (PropertyFileLine& newer : std::exchange(queued, std::move(lines)))
        append(queued, std::move(newer));
}

PropertyFileEntries PropertyFileWriter::waitingEntries(const std::wstring& file) {
    std::string lines;
    {
        const KeltoGuard guard(m_queueLock);
        if (const auto queued = m_writeQueue.find(file); queued != m_writeQueue.end()) {
            for (const PropertyFileLine& line : queued->second)
                lines.append(line.text).append(1, '\n');
        }
    }
    PropertyFileEntries entries;
    static_cast<void>(parsePropertyFile(withFileCheck(std::move(lines)), entries));
    return entries;
}

void PropertyFileWriter::useGoodFile(const std::wstring& file, std::string_view bytes, FileState& state) {
    std::string lines = linesOf(bytes);
    if (state.lines != lines) { // another process wrote the file
        state.lines = std::move(lines);
        state.backupIsComplete = false;
    }
    if (state.backupIsComplete && pathExists(backupOf(file)))
        return;
    state.backupIsComplete = replaceByCopy(file, backupOf(file));
    if (!state.backupIsComplete && !std::exchange(state.backupFailureIsLogged, true))
        logLine("cannot copy \"" + toNarrow(file) + "\" to \"" + toNarrow(backupOf(file)) +
                "\"; values are stored without a backup");
}

const std::string& PropertyFileWriter::baseOfRewrite(const std::wstring& file, std::string_view bytes,
                                                     FileState& state) {
    if (isGoodPropertyFile(bytes)) {
        useGoodFile(file, bytes, state);
    } else if (!state.lines) {
        const std::optional<std::string> backup = readPropertyFile(backupOf(file));
        state.lines = backup && isGoodPropertyFile(*backup) ? linesOf(*backup) : linesWithKeys(bytes);
    }
    return *state.lines;
}

bool PropertyFileWriter::rewrite(const std::wstring& file, const Lines& changes) {
    FileState& state = m_states[file];
    MergedLines merged;
    if (!rewriteFile(file, [&](std::string_view bytes) {
            merged = mergeLines(baseOfRewrite(file, bytes, state), changes);
            return withFileCheck(merged.lines);
        }))
        return false;
    // The backup lacks a new line; an overridden value is in no other file once the override file is removed.
    if (merged.hasNewLine || !state.overrideFile.empty())
        state.backupIsComplete = false;
    state.lines = std::move(merged.lines);
    if (!state.overrideFile.empty())
        static_cast<void>(removeFile(std::exchange(state.overrideFile, {}))); // else it is applied once more
    return true;
}

bool PropertyFileWriter::load(const std::wstring& file, const std::wstring& overrideFile,
                              PropertyFileEntries& entries) {
    const KeltoGuard guard(m_fileLock);
    drainWriteQueue();
    FileState& state = m_states[file];
    if (!readFileOrBackup(file, state, entries))
        return false;
    entries.assignAll(waitingEntries(file));
    if (state.overrideFile.empty()) // else its lines are among those that wait
        applyOverride(file, overrideFile, state, entries);
    return true;
}

bool PropertyFileWriter::readFileOrBackup(const std::wstring& file, FileState& state,
                                          PropertyFileEntries& entries) {
    const std::optional<std::string> bytes = readPropertyFile(file);
    state.backupIsComplete = false;
    if (bytes && parsePropertyFile(*bytes, entries)) {
        useGoodFile(file, *bytes, state);
        return true;
    }
    const std::optional<std::string> backup = readPropertyFile(backupOf(file));
    if (!backup || !parsePropertyFile(*backup, entries))
        return false;
    state.lines = linesOf(*backup);
    state.backupIsComplete = true;
    if (bytes)
        static_cast<void>(copyFileWhole(backupOf(file), file, true)); // else the next rewrite repairs it
    return true;
}

void PropertyFileWriter::applyOverride(const std::wstring& file, const std::wstring& overrideFile,
                                       FileState& state, PropertyFileEntries& entries) {
    const std::optional<std::string> bytes = readPropertyFile(overrideFile);
    PropertyFileEntries overrides;
    if (!bytes || !parsePropertyFile(*bytes, overrides))
        return;
    const std::vector<PropertyFileEntry> changed = entries.assignKnown(std::move(overrides));
    for (const PropertyFileEntry& entry : changed)
        queueLine(entry.linePrefix, entry.value, file);
    if (changed.empty())
        static_cast<void>(removeFile(overrideFile)); // if it stays, it has no effect the next time either
    else
        state.overrideFile = overrideFile;
}
