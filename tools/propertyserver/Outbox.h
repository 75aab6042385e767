#pragma once

#include "tools/propertyserver/Peer.h"

#include <cstddef>
#include <deque>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// What waits to be sent to one program.
///
/// Frames and answers go in their order. Changes wait behind them, of each property the last one only, until
/// there is nothing else to send. Answers and changes become frames one at a time, when it is theirs to be
/// written: so what waits for a program that reads slowly, or not at all, does not grow with the number of
/// changes, and is not kept twice. Belongs to one thread.
class Outbox {
public:
    /// Adds a frame.
    void send(std::string frame);

    /// Adds an answer, which takes a frame at least. Changes that wait may be of its properties: they are no
    /// older.
    void answer(std::vector<SharedReport> reports, bool isForAll);

    /// Has @p report told, in place of an older one on its property.
    void publish(const SharedReport& report);

    /// Returns how much text next() would have to make first, roughly.
    [[nodiscard]] std::size_t unmade() const;

    /// Returns what is to be written next, empty if there is nothing. It stays until sent() took it.
    [[nodiscard]] std::string_view next();

    /// Takes @p count bytes from what next() returned.
    void sent(std::size_t count);

    /// Returns how many bytes wait, but for changes and the answer that came when nothing did: they are as
    /// long as what there is to tell.
    [[nodiscard]] std::size_t waitingForReader() const { return m_counted; }

    /// Returns how many bytes of changes wait, of properties that have gone meanwhile too.
    [[nodiscard]] std::size_t waitingChanges() const { return m_changesBytes; }

    /// Returns how many bytes wait in all.
    [[nodiscard]] std::size_t waiting() const { return m_bytes + m_changesBytes; }

private:
    struct Entry {
        std::string frame;                 // to be written, empty where it is not made
        std::vector<SharedReport> reports; // of an answer
        std::size_t made = 0;              // of the reports, in frames
        std::size_t left = 0;              // bytes of those that are not
        std::size_t bytes = 0;             // that count as long as it is here
        bool isForAll = false;
        bool isCounted = false;
    };
    using Changes = std::list<SharedReport>;

    [[nodiscard]] std::string_view made() const;
    void make();
    void add(Entry entry);
    void forget(const SharedReport& report);
    [[nodiscard]] Entry takeChanges();

    std::deque<Entry> m_entries;
    std::size_t m_sent = 0;    // of the frame in front
    std::size_t m_bytes = 0;   // of the entries
    std::size_t m_counted = 0; // of those, of entries that are counted
    Changes m_changes;         // the newest at the end
    std::size_t m_changesBytes = 0;
    std::unordered_map<std::string_view, Changes::iterator> m_places; // of the changes, by their own ids
};
